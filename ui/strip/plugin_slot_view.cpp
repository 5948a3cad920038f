#include "ui/strip/plugin_slot_view.h"

#include "plugins/insert_components.h"
#include "ui/controls/enter_key.h"
#include "ui/controls/text_prompt.h"
#include "ui/strip/channel_name.h"
#include "ui/strip/plugin_picker_view.h"
#include "ui/theme/theme.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>

#include <utility>
#include <variant>

namespace orvane::ui {

namespace {

constexpr int slotHeight = 24;
constexpr int textSize = 11;
constexpr int textInset = 8;
constexpr double cornerRadius = 3.0;
constexpr double dimmed = 0.5;
/// The width of the outline of a slot to which the armed clipboard applies.
constexpr double armedOutline = 2.0;
/// The mark at the left edge of a slot with a live plugin.
constexpr double markWidth = 3.0;
constexpr int longestMenuText = 400;
/// A shorter delay would be shown as 0.0 ms.
constexpr double shortestShownLatencyMs = 0.05;

QString textOf(const std::optional<std::string>& name, const QString& otherwise) {
    return name ? QString::fromStdString(*name) : otherwise;
}

/// Returns a name for menus, shortened and with its special characters escaped.
QString menuText(const std::string& name) {
    const QString text = QString::fromStdString(name).simplified();
    return QFontMetrics(QApplication::font("QMenu"))
        .elidedText(text, Qt::ElideRight, longestMenuText)
        .replace(QChar(u'&'), QStringLiteral("&&"));
}

} // namespace

PluginSlotView::PluginSlotView(
    engine::MixerEngine& mixerEngine, const InstalledComponents& installedComponents, std::size_t strip,
    std::size_t slot, QWidget* parent
)
    : QAbstractButton(parent),
      engine(mixerEngine),
      components(installedComponents),
      stripIndex(strip),
      slotIndex(slot),
      stripID(mixerEngine.state().channelStrips.get().at(strip).id) {
    setFont(systemFont(textSize));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    connect(this, &QAbstractButton::clicked, this, [this] { press(); });
    refresh();
}

QSize PluginSlotView::sizeHint() const {
    return {100, slotHeight};
}

const session::ChannelStrip* PluginSlotView::strip() const {
    const auto& strips = engine.state().channelStrips.get();
    return stripIndex < strips.size() ? &strips[stripIndex] : nullptr;
}

const session::PluginSlot* PluginSlotView::record() const {
    const session::ChannelStrip* const held = strip();
    return held != nullptr && slotIndex < held->pluginSlots.size() ? &held->pluginSlots[slotIndex] : nullptr;
}

PluginSlotView::Plugin PluginSlotView::plugin() const {
    const session::PluginSlot* const slot = record();
    const platform::AVAudioUnitComponent* const live = engine.livePlugin(slotIndex, stripID);
    if (live != nullptr && (slot == nullptr || slot->component != plugins::identityOf(*live)))
        return {live->name, plugins::identityOf(*live)};
    if (slot == nullptr) return {};
    return {slot->pluginName, slot->component};
}

const plugins::PluginLoadState* PluginSlotView::loadState() const {
    const auto& states = engine.state().pluginLoadStates.get();
    const auto found = states.find({stripID, slotIndex});
    return found == states.end() ? nullptr : &found->second;
}

PluginSlotView::Content PluginSlotView::contentNow() const {
    const Plugin shown = plugin();
    const plugins::PluginLoadState* const state = loadState();
    if (state != nullptr && std::holds_alternative<plugins::load_state::Failed>(*state))
        return Content::failed;
    if (!shown.name) return Content::empty;
    if (state == nullptr || !shown.component) return Content::notLive;
    return std::holds_alternative<plugins::load_state::Loaded>(*state) ? Content::loaded : Content::loading;
}

QString PluginSlotView::helpNow() const {
    using enum plugins::PluginClipboardArmState;
    const Plugin shown = plugin();
    const QString name = textOf(shown.name, QStringLiteral("Plugin"));
    switch (engine.state().pluginClipboardArmState.get()) {
    case armedForPaste: {
        const auto& clipboard = engine.state().pluginClipboard.get();
        return QStringLiteral("Click to paste %1 here, replacing whatever's in this slot.")
            .arg(clipboard ? QString::fromStdString(clipboard->name) : QStringLiteral("the copied plugin"));
    }
    case armedForCopy:
        return shown.name ? QStringLiteral("Click to copy \"%1\" (and its current settings).").arg(name)
                          : QStringLiteral("Empty -- pick a slot with a plugin loaded to copy from.");
    case none:
        break;
    }
    const auto* const state = loadState();
    if (const auto* const failed = state ? std::get_if<plugins::load_state::Failed>(state) : nullptr) {
        // A plugin that was live before may remain.
        const auto wanted = record() != nullptr ? record()->pluginName : std::nullopt;
        return QStringLiteral("%1 failed to load: %2")
            .arg(textOf(wanted, QStringLiteral("Plugin")), QString::fromStdString(failed->message));
    }
    if (!shown.name)
        return QStringLiteral("Empty insert slot %1 — click to pick an installed plugin.").arg(slotIndex + 1);
    if (!shown.component)
        return QStringLiteral(
                   "%1 — from an older session, not linked to an installed plugin. Click to pick one."
        )
            .arg(name);
    return QStringLiteral("%1 — click to open its editor. Right-click for more options.").arg(name)
           + latencyLine();
}

QString PluginSlotView::latencyLine() const {
    const session::PluginSlot* const slot = record();
    const double latencyMs = engine.pluginLatencyMs(slotIndex, stripID);
    if (latencyMs < shortestShownLatencyMs || (slot != nullptr && slot->bypassed)) return {};
    return QStringLiteral("\nadds %1 ms").arg(latencyMs, 0, 'f', 1);
}

void PluginSlotView::refresh() {
    const session::PluginSlot* const slot = record();
    const QString name = textOf(plugin().name, {});
    const Content now = contentNow();
    const bool bypassed = slot != nullptr && slot->bypassed;
    if (name != text() || now != content || bypassed != isBypassed || accessibleName().isEmpty()) {
        content = now;
        isBypassed = bypassed;
        setText(name);
        // An "&" in a name must not become a shortcut.
        setShortcut({});
        setAccessibleName(ofChannel(
            QStringLiteral("Insert %1 %2")
                .arg(slotIndex + 1)
                .arg(name.isEmpty() ? QStringLiteral("(empty)") : name),
            stripIndex
        ));
        update();
    }
    const plugins::PluginClipboardArmState armedNow = engine.state().pluginClipboardArmState.get();
    if (std::exchange(armed, armedNow) != armedNow || armed != plugins::PluginClipboardArmState::none)
        showArmed();
    if (const QString help = helpNow(); help != toolTip()) setToolTip(help);
}

bool PluginSlotView::isClipboardTarget() const {
    using enum plugins::PluginClipboardArmState;
    return armed == armedForPaste || (armed == armedForCopy && content == Content::loaded);
}

void PluginSlotView::showArmed() {
    using enum plugins::PluginClipboardArmState;
    if (armed == none)
        unsetCursor();
    else if (armed == armedForPaste)
        setCursor(Qt::PointingHandCursor);
    else
        setCursor(isClipboardTarget() ? Qt::DragCopyCursor : Qt::ForbiddenCursor);
    update();
}

void PluginSlotView::enterEvent(QEnterEvent* event) {
    // The latency may have changed since the last refresh.
    refresh();
    QAbstractButton::enterEvent(event);
}

void PluginSlotView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isFailed = content == Content::failed;
    const QRectF box = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QColor fill = content == Content::empty ? theme::well : theme::raised;
    if (isDown() || underMouse()) fill = fill.lighter(isDown() ? 160 : 130);
    QPen outline(
        hasFocus() ? theme::accent
        : isFailed ? theme::red
                   : theme::divider,
        hasFocus() ? theme::focusWidth : 1.0
    );
    if (content == Content::notLive) outline.setStyle(Qt::DashLine);
    if (isClipboardTarget()) {
        fill = underMouse() ? theme::selection.lighter(130) : theme::selection;
        outline = QPen(theme::accent, armedOutline);
    }
    painter.setBrush(fill);
    painter.setPen(outline);
    painter.drawRoundedRect(box, cornerRadius, cornerRadius);
    if (content == Content::empty && text().isEmpty()) return;

    // A failed plugin stays legible even if it is bypassed.
    const bool isDimmed =
        !isFailed && (isBypassed || content == Content::loading || content == Content::notLive);
    painter.setOpacity(isDimmed ? dimmed : 1.0);
    if (content == Content::loaded) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(isBypassed ? theme::secondaryText : theme::accent);
        painter.drawRoundedRect(QRectF(2.0, 4.0, markWidth, height() - 8.0), 1.5, 1.5);
    }
    QRect room = rect().adjusted(textInset, 0, -textInset + 2, 0);
    painter.setPen(isFailed ? theme::red : theme::primaryText);
    if (isFailed) {
        painter.drawText(room, Qt::AlignRight | Qt::AlignVCenter, QStringLiteral("⚠"));
        room.adjust(0, 0, -14, 0);
    }
    const QString shown = content == Content::loading ? text() + QStringLiteral("…") : text();
    painter.drawText(
        room, Qt::AlignLeft | Qt::AlignVCenter, fontMetrics().elidedText(shown, Qt::ElideRight, room.width())
    );
}

void PluginSlotView::keyPressEvent(QKeyEvent* event) {
    if (!pressWithEnter(*this, *event)) QAbstractButton::keyPressEvent(event);
}

void PluginSlotView::press() {
    if (engine.handleClipboardClick(slotIndex, stripID)) return;
    switch (contentNow()) {
    case Content::loading:
        return;
    case Content::loaded:
        return engine.openPluginEditor(slotIndex, stripID);
    case Content::empty:
    case Content::notLive:
    case Content::failed:
        openPicker();
    }
}

void PluginSlotView::openPicker() {
    auto* const picker = new PluginPickerView(engine, components, stripID, slotIndex, this);
    picker->setAttribute(Qt::WA_DeleteOnClose);
    picker->open();
}

void PluginSlotView::contextMenuEvent(QContextMenuEvent* event) {
    const session::PluginSlot* const slot = record();
    const Plugin shown = plugin();
    if (slot == nullptr || (!shown.name && !shown.component)) return;
    const bool isLive = engine.livePlugin(slotIndex, stripID) != nullptr;
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (isLive)
        menu->addAction(QStringLiteral("Open Editor"), this, [this] {
            engine.openPluginEditor(slotIndex, stripID);
        });
    menu->addAction(QStringLiteral("Change Plugin…"), this, [this] { openPicker(); });
    menu->addAction(
        slot->bypassed ? QStringLiteral("Un-bypass") : QStringLiteral("Bypass"), this,
        [this, bypassed = !slot->bypassed] { engine.setPluginBypassed(bypassed, slotIndex, stripID); }
    );
    menu->addAction(QStringLiteral("Remove"), this, [this] { engine.removePlugin(slotIndex, stripID); });
    if (isLive) addPresetActions(*menu);
    menu->popup(event->globalPos());
}

void PluginSlotView::addPresetActions(QMenu& menu) {
    menu.addSeparator();
    QMenu* const load = menu.addMenu(QStringLiteral("Load Preset"));
    if (const auto component = plugin().component)
        for (const plugins::NamedPreset& preset : engine.pluginPresets(*component))
            load->addAction(menuText(preset.name), this, [this, preset] {
                engine.applyPluginPreset(preset, slotIndex, stripID);
            });
    addFactoryPresets(*load);
    if (load->isEmpty()) load->addAction(QStringLiteral("No saved presets"))->setEnabled(false);
    menu.addAction(QStringLiteral("Save Preset…"), this, [this] { askForPresetName(); });
}

/// Adds the factory presets below the user's own, each bank in a submenu.
void PluginSlotView::addFactoryPresets(QMenu& menu) {
    const auto presets = engine.factoryPresets(slotIndex, stripID);
    if (!presets.empty() && !menu.isEmpty()) menu.addSeparator();
    QMenu* list = &menu;
    std::string bank;
    for (const platform::AUAudioUnitPreset& preset : presets) {
        // Presets without a bank come first.
        if (preset.bank != bank) list = menu.addMenu(menuText(preset.bank));
        bank = preset.bank;
        list->addAction(menuText(preset.name), this, [this, preset] {
            engine.applyFactoryPreset(preset, slotIndex, stripID);
        });
    }
}

void PluginSlotView::askForPresetName() {
    const QString name = textOf(plugin().name, QStringLiteral("this plugin"));
    const TextPrompt prompt{
        .title = QStringLiteral("Save Preset"),
        .message = QStringLiteral("Saves %1's current settings so you can recall them later on any insert "
                                  "slot that loads the same plugin.")
                       .arg(name),
        .placeholder = QStringLiteral("Preset name"),
        .text = {}};
    askForText(this, prompt, [this](const QString& presetName) {
        engine.savePluginPreset(presetName.toStdString(), slotIndex, stripID);
    });
}

} // namespace orvane::ui
