#include "ui/strip/channel_strip_view.h"

#include "ui/controls/console_button.h"
#include "ui/controls/segmented_picker.h"
#include "ui/controls/text_label.h"
#include "ui/controls/value_slider.h"
#include "ui/strip/channel_name.h"
#include "ui/strip/name_field.h"
#include "ui/strip/plugin_slot_view.h"
#include "ui/strip/strip_levels.h"
#include "ui/strip/strip_mark.h"
#include "ui/strip/strip_signs.h"
#include "ui/theme/theme.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QVBoxLayout>

#include <variant>

namespace orvane::ui {

namespace {

constexpr int stripWidth = 140;
constexpr int smallestMixWidth = 100;
constexpr int largestMixWidth = 160;
constexpr int padding = 10;
constexpr int contentWidth = stripWidth - 2 * padding;
constexpr int gap = 4;
constexpr int groupGap = 6;
constexpr int nameHeight = 24;
constexpr int rowHeight = 22;
constexpr int panHeight = 18;
constexpr int stereoWidth = 32;
constexpr int mixPadding = 6;
/// The distance of the open mark from the strip's edge and from the name.
constexpr int markDistance = 3;
constexpr int mixMarkHeight = 15;
constexpr int mixNameHeight = 28;
constexpr int mixNameSize = 16;
constexpr double cornerRadius = 6.0;

const QString genderHelp = QStringLiteral(
    "Automix trigger filter — never touches the audible signal, only an internal copy used to decide how "
    "\"active\" this channel is for gain-sharing. — (neutral): unfiltered, no frequency bias. ♂ (Male): "
    "de-emphasizes below 180 Hz by ~16 dB, so proximity-effect bass buildup, handling rumble, and plosive "
    "pops don't inflate this channel's detected level. ♀ (Female): the mirror image — de-emphasizes above "
    "3500 Hz by ~16 dB, so sibilance and breath noise don't inflate it instead. Both are gentle shelves, not "
    "hard cuts, and only change how this channel's level is weighed against the others when sharing gain."
);
const QString roleHelp = QStringLiteral(
    "Vocal group tag — purely a mix-organization label, it has NO effect on the automix gain-sharing "
    "decision itself (ducking/opening behavior for this channel is unchanged either way). — (none): not in "
    "either group. L (Lead): this channel's final output gets the \"Lead\" group fader (Master section, "
    "below the channel strips) applied on top of its own automix gain and trim. B (Backing): same, but gets "
    "the \"Backing\" group fader instead. Use it to pull the whole backing-vocal group down a few dB, or "
    "push a lead vocal up, without touching each singer's individual trim or how the automix balances them "
    "against each other."
);
const QString stereoHelp =
    QStringLiteral("Route this channel to a stereo output pair instead of a single mono output.");

} // namespace

ChannelStripView::ChannelStripView(
    engine::MixerEngine& mixerEngine, const InstalledComponents& installedComponents, std::size_t index,
    QWidget* parent
)
    : ControlGroup(parent),
      engine(mixerEngine),
      stripIndex(index),
      stripID(mixerEngine.state().channelStrips.get().at(index).id),
      mark(new StripMark(this)),
      name(new NameField),
      genderMode(new SegmentedPicker(
          QStringLiteral("Trigger filter"), {QStringLiteral("—"), QStringLiteral("♂"), QStringLiteral("♀")},
          [this](int choice) { engine.setGenderMode(stripID, static_cast<dsp::GenderTriggerMode>(choice)); }
      )),
      vocalRole(new SegmentedPicker(
          QStringLiteral("Vocal group"), {QStringLiteral("—"), QStringLiteral("L"), QStringLiteral("B")},
          [this](int choice) { engine.setVocalRole(stripID, static_cast<dsp::VocalRole>(choice)); }
      )),
      input(
          QStringLiteral("Input"), contentWidth,
          [this](std::optional<std::int64_t> channel) { engine.setInputChannel(stripID, channel); }
      ),
      output(
          QStringLiteral("Output"), contentWidth - stereoWidth - gap,
          [this](std::optional<std::int64_t> channel) { chooseOutput(channel); }
      ),
      setupRows(new QWidget),
      inputRow(new QHBoxLayout),
      outputRow(new QHBoxLayout),
      signs(new StripSigns([this] {
          if (openSetup) openSetup();
      })),
      levels(new StripLevels(mixerEngine, index)) {
    name->setObjectName(QStringLiteral("flat"));
    name->setPlaceholderText(QStringLiteral("Name"));
    name->setAccessibleName(QStringLiteral("Name"));
    name->setAlignment(Qt::AlignCenter);
    name->installEventFilter(this);
    connect(name, &QLineEdit::editingFinished, this, [this] { commitName(); });
    connect(name, &QLineEdit::textChanged, this, [this](const QString& text) {
        const bool fits = elidedIn(text, name->fontMetrics(), name->width()) == text;
        name->setToolTip(fits ? QString() : text);
    });
    fillSetupRows(installedComponents);
    auto* const lines = new QVBoxLayout(this);
    lines->setSpacing(gap);
    lines->addWidget(name);
    lines->addWidget(setupRows);
    lines->addWidget(signs);
    lines->addWidget(levels, 1);
    lines->addLayout(makeSwitches());
    for (QWidget* control : findChildren<QWidget*>())
        if (!control->accessibleName().isEmpty() && dynamic_cast<PluginSlotView*>(control) == nullptr)
            control->setAccessibleName(ofChannel(control->accessibleName(), index));
    setPresentation(StripPresentation::setup);
    subscribe();
    refresh();
}

void ChannelStripView::fillSetupRows(const InstalledComponents& installedComponents) {
    genderMode->setToolTip(genderHelp);
    vocalRole->setToolTip(roleHelp);
    for (SegmentedPicker* picker : {genderMode, vocalRole}) {
        picker->setNeutral(0);
        picker->setFixedHeight(rowHeight);
    }
    auto* const lines = new QVBoxLayout(setupRows);
    lines->setContentsMargins(0, 0, 0, groupGap - gap);
    lines->setSpacing(gap);
    lines->addWidget(genderMode);
    lines->addWidget(vocalRole);
    lines->addSpacing(groupGap - gap);
    inputRow->addWidget(input.widget());
    lines->addLayout(inputRow);
    lines->addLayout(makeOutputRow());
    lines->addLayout(makePanRow());
    lines->addSpacing(groupGap - gap);
    auto* const slotRows = new QVBoxLayout;
    slotRows->setSpacing(2);
    for (std::size_t slot = 0; slot < slotViews.size(); ++slot) {
        slotViews[slot] = new PluginSlotView(engine, installedComponents, stripIndex, slot);
        slotRows->addWidget(slotViews[slot]);
    }
    lines->addLayout(slotRows);
}

void ChannelStripView::setPresentation(StripPresentation now) {
    presentation = now;
    const bool isMix = presentation == StripPresentation::mix;
    setupRows->setVisible(!isMix);
    signs->setVisible(isMix);
    levels->setPresentation(presentation);
    name->setFont(isMix ? systemFont(mixNameSize, QFont::Bold) : textFont(TextStyle::body, QFont::Bold));
    name->setFixedHeight(isMix ? mixNameHeight : nameHeight);
    const int margin = isMix ? mixPadding : padding;
    const int top = isMix ? 2 * markDistance + mixMarkHeight : padding;
    layout()->setContentsMargins(margin, top, margin, margin);
    setMinimumWidth(isMix ? smallestMixWidth : stripWidth);
    setMaximumWidth(isMix ? largestMixWidth : stripWidth);
    if (isMix) {
        signs->hold(input, output);
    } else {
        hold(*inputRow, input, contentWidth);
        hold(*outputRow, output, contentWidth - stereoWidth - gap);
    }
    showSigns();
}

void ChannelStripView::resizeEvent(QResizeEvent*) {
    // The mark lies in the margin above the name.
    const bool isMix = presentation == StripPresentation::mix;
    const int margin = isMix ? mixPadding : padding;
    mark->setGeometry(
        margin, markDistance, width() - 2 * margin, isMix ? mixMarkHeight : padding - 2 * markDistance
    );
}

void ChannelStripView::setOpen(bool isOpen) {
    const StripMark::State now{.isOpen = isOpen, .isMuted = strip().muted, .isBypassed = strip().bypassed};
    if (now == mark->state()) return;
    const bool isPainted = now.isMuted != mark->state().isMuted || now.isBypassed != mark->state().isBypassed;
    mark->setState(now);
    if (!isPainted) return;
    levels->setDimmed(now.isMuted || now.isBypassed);
    update();
}

void ChannelStripView::hold(QHBoxLayout& row, const RoutingPicker& picker, int width) {
    row.insertWidget(0, picker.widget());
    picker.widget()->setFixedSize(width, rowHeight);
    picker.widget()->setSign({});
    picker.widget()->setToolTip({});
}

QLayout* ChannelStripView::makeOutputRow() {
    stereo = new ConsoleButton(QStringLiteral("St"), [this] {
        engine.setStereo(stripID, !std::holds_alternative<session::output::Stereo>(strip().outputRouting));
    });
    stereo->setAccessibleName(QStringLiteral("Stereo"));
    stereo->setToolTip(stereoHelp);
    stereo->setFixedSize(stereoWidth, rowHeight);
    outputRow->setSpacing(gap);
    outputRow->addWidget(output.widget());
    outputRow->addWidget(stereo);
    return outputRow;
}

QLayout* ChannelStripView::makePanRow() {
    panRow = new QWidget;
    panRow->setFixedHeight(panHeight);
    // Keeps the rows of all strips aligned, whether the pan slider is visible or not.
    QSizePolicy policy = panRow->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    panRow->setSizePolicy(policy);
    auto* const inside = new QHBoxLayout(panRow);
    inside->setContentsMargins(0, 0, 0, 0);
    inside->setSpacing(6);
    inside->addWidget(makeText(QStringLiteral("Pan"), TextStyle::caption2, theme::secondaryText));
    pan = new ValueSlider(
        QStringLiteral("Pan"),
        {.lowest = -1.0, .highest = 1.0, .defaultValue = 0.0, .fillsFromDefault = true},
        [this](double position) { engine.setPan(stripID, position); }
    );
    inside->addWidget(pan, 1);
    auto* const row = new QHBoxLayout;
    row->addWidget(panRow);
    return row;
}

QLayout* ChannelStripView::makeSwitches() {
    mute = new ConsoleButton(QStringLiteral("Mute"), [this] { engine.setMuted(stripID, !strip().muted); });
    mute->setActiveColor(theme::red);
    bypass =
        new ConsoleButton(QStringLiteral("Byp"), [this] { engine.setBypassed(stripID, !strip().bypassed); });
    bypass->setActiveColor(theme::orange);
    bypass->setAccessibleName(QStringLiteral("Bypass"));
    auto* const row = new QHBoxLayout;
    row->setSpacing(gap);
    row->addWidget(mute);
    row->addWidget(bypass);
    return row;
}

void ChannelStripView::subscribe() {
    const engine::EngineState& state = engine.state();
    const auto follow = [this](const auto& value, void (ChannelStripView::*display)()) {
        subscriptions.push_back(value.subscribe([this, display](const auto&) {
            if (isVisible()) (this->*display)();
        }));
    };
    follow(state.channelStrips, &ChannelStripView::showStrip);
    follow(state.selectedDevice, &ChannelStripView::showRouting);
    follow(state.pluginLoadStates, &ChannelStripView::showSlots);
    follow(state.pluginClipboardArmState, &ChannelStripView::showSlots);
    follow(state.pluginClipboard, &ChannelStripView::showSlots);
}

const session::ChannelStrip& ChannelStripView::strip() const {
    return engine.state().channelStrips.get()[stripIndex];
}

void ChannelStripView::showEvent(QShowEvent*) {
    refresh();
}

void ChannelStripView::refresh() {
    showStrip();
    showRouting();
}

void ChannelStripView::showStrip() {
    const session::ChannelStrip& shown = strip();
    showName();
    genderMode->setCurrent(static_cast<int>(shown.genderMode));
    vocalRole->setCurrent(static_cast<int>(shown.vocalRole));
    showRouting();
    showSlots();
    levels->setTrim(shown.trim);
    setOpen(mark->state().isOpen);
    mute->setActive(shown.muted);
    bypass->setActive(shown.bypassed);
}

void ChannelStripView::showName() {
    // Keeps a name that is being typed.
    if (name->hasFocus() && name->isModified()) return;
    const QString shown = QString::fromStdString(strip().name);
    setAccessibleName(shown.isEmpty() ? QStringLiteral("Channel %1").arg(stripIndex + 1) : shown);
    if (shown == name->text()) return;
    name->setText(shown);
    name->setCursorPosition(0);
}

void ChannelStripView::commitName() {
    if (!name->isModified()) return;
    name->setModified(false);
    name->setCursorPosition(0);
    engine.setName(stripID, name->text().toStdString());
}

bool ChannelStripView::eventFilter(QObject* receiver, QEvent* event) {
    // Scrolls a long name back to its beginning.
    if (event->type() == QEvent::FocusOut && !name->isModified()) name->setCursorPosition(0);
    if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(receiver, event);
    switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Escape:
        name->setModified(false);
        showName();
        name->clearFocus();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        commitName();
        name->clearFocus();
        return true;
    default:
        return QWidget::eventFilter(receiver, event);
    }
}

void ChannelStripView::showRouting() {
    const auto& device = engine.state().selectedDevice.get();
    const ShownRouting now{
        .inputs = device ? device->inputChannelCount : 0,
        .outputs = device ? device->outputChannelCount : 0,
        .input = strip().inputChannelIndex,
        .output = strip().outputRouting};
    if (now == shownRouting) return;
    shownRouting = now;
    input.present(RoutingMenu::inputs(shownRouting.inputs, shownRouting.input));
    output.present(RoutingMenu::outputs(shownRouting.outputs, shownRouting.output));
    const auto* const routed = std::get_if<session::output::Stereo>(&shownRouting.output);
    stereo->setActive(routed != nullptr);
    panRow->setVisible(routed != nullptr);
    if (routed != nullptr) pan->setValue(routed->pan);
    showSigns();
}

void ChannelStripView::showSlots() {
    for (PluginSlotView* slot : slotViews)
        slot->refresh();
}

void ChannelStripView::showSigns() {
    if (presentation == StripPresentation::mix) signs->present(strip(), input, output);
}

void ChannelStripView::chooseOutput(std::optional<std::int64_t> channel) {
    if (channel && std::holds_alternative<session::output::Stereo>(strip().outputRouting))
        engine.setStereoPair(stripID, *channel);
    else
        engine.setOutputChannel(stripID, channel);
}

void ChannelStripView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF outline = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const auto paint = [&](const QBrush& brush, const QPen& pen) {
        painter.setBrush(brush);
        painter.setPen(pen);
        painter.drawRoundedRect(outline, cornerRadius, cornerRadius);
    };
    paint(theme::panelBackground, QPen(theme::divider, 1.0));
    // Muted and bypassed strips differ by more than colours.
    if (strip().muted)
        paint(QBrush(theme::raised, Qt::BDiagPattern), QPen(theme::red, 1.0));
    else if (strip().bypassed)
        paint(Qt::NoBrush, QPen(theme::orange, 1.5, Qt::DashLine));
}

} // namespace orvane::ui
