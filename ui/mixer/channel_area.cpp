#include "ui/mixer/channel_area.h"

#include "ui/bridge/meter_bridge.h"
#include "ui/controls/console_button.h"
#include "ui/controls/divider.h"
#include "ui/controls/segmented_picker.h"
#include "ui/controls/text_label.h"
#include "ui/keys.h"
#include "ui/mixer/presentation.h"
#include "ui/mixer/strip_rows.h"
#include "ui/theme/theme.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>

namespace orvane::ui {

namespace {

constexpr int pickerWidth = 320;
constexpr int presentationWidth = 140;
constexpr int pageButtonWidth = 74;
constexpr int padding = 12;
constexpr int headerHeight = 46;
constexpr int bridgeHeight = 24;
constexpr int mixBridgeHeight = 32;
constexpr int dividerHeight = 20;

QStringList labelsOf(const ChannelLayout& layout, const std::vector<ChannelLayoutMode>& modes) {
    QStringList labels;
    for (const ChannelLayoutMode mode : modes)
        labels.append(layout.label(mode));
    return labels;
}

} // namespace

ChannelArea::ChannelArea(
    engine::MixerEngine& mixerEngine, const InstalledComponents& installedComponents,
    Presentation& mixerPresentation, QWidget* parent
)
    : QWidget(parent),
      presentation(mixerPresentation),
      shown({.channelCount = mixerEngine.state().channelStrips.get().size()}),
      modes(shown.offeredModes()),
      modePicker(new SegmentedPicker(
          QStringLiteral("Channel layout"), labelsOf(shown, modes),
          [this](int choice) { setLayoutMode(modes[static_cast<std::size_t>(choice)]); }
      )),
      presentationPicker(new SegmentedPicker(
          QStringLiteral("Presentation"), {QStringLiteral("Setup"), QStringLiteral("Mix")},
          [this](int choice) { presentation.choose(static_cast<StripPresentation>(choice)); }
      )),
      pages(new QWidget),
      fileErrorMessage(makeText({}, TextStyle::callout, theme::red)),
      openChannels(mixerEngine.state(), mixerEngine.meterModel()),
      bridge(new MeterBridge(
          mixerEngine.state(), mixerEngine.meterModel(), openChannels,
          [this](std::size_t strip) {
              reveal(strip);
              rows->setFocusTo({.strip = strip, .control = std::nullopt});
          }
      )),
      rows(new StripRows(mixerEngine, installedComponents, openChannels)) {
    fileErrorMessage->setContentsMargins(padding, padding, padding, 0);
    fileErrorMessage->setTextInteractionFlags(Qt::TextSelectableByMouse);
    fileErrorMessage->hide();
    auto* const lines = new QVBoxLayout(this);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(0);
    lines->addWidget(makeHeader());
    lines->addWidget(makeHorizontalDivider());
    lines->addWidget(bridge);
    lines->addWidget(makeHorizontalDivider());
    lines->addWidget(fileErrorMessage);
    lines->addWidget(rows, 1);
    rows->setOpenSetup([this](std::size_t strip) {
        presentation.show(StripPresentation::setup);
        reveal(strip);
    });
    presentationSubscription = presentation.shown().subscribe([this](auto) { showPresentation(); });
    showPresentation();
    if (std::ranges::find(modes, shown.mode) == modes.end()) shown.mode = modes.front();
    showPages();
}

QWidget* ChannelArea::makeHeader() {
    modePicker->setToolTip(QStringLiteral("Switch which channels are shown."));
    modePicker->setFixedSize(pickerWidth, theme::touchTarget);
    presentationPicker->setToolTip(
        QStringLiteral("Setup shows every control of a strip. Mix shows names, meters, trim, Mute and Byp as "
                       "large as the window allows, and the rest as small signs (%1).")
            .arg(keysOf(KeyCommand::presentation).first().toString())
    );
    presentationPicker->setFixedSize(presentationWidth, theme::touchTarget);
    pages->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto* const pageRow = new QHBoxLayout(pages);
    pageRow->setContentsMargins(0, 0, 0, 0);
    pageRow->setSpacing(6);
    pageRow->addWidget(makeVerticalDivider(dividerHeight));
    pageRow->addSpacing(6);
    auto* const header = new QWidget;
    header->setFixedHeight(headerHeight);
    auto* const row = new QHBoxLayout(header);
    row->setContentsMargins(padding, 0, padding, 0);
    row->setSpacing(padding);
    row->addWidget(modePicker);
    row->addWidget(pages);
    row->addStretch();
    row->addWidget(presentationPicker);
    return header;
}

void ChannelArea::setLayoutMode(ChannelLayoutMode mode) {
    if (mode == shown.mode) return;
    shown.mode = mode;
    // A mode without pages keeps the page for later.
    if (shown.isPaged()) shown.page = std::min(shown.page, shown.pageCount() - 1);
    showPages();
}

void ChannelArea::setPage(std::size_t page) {
    if (page == shown.page || page >= shown.pageCount()) return;
    shown.page = page;
    arrange();
}

void ChannelArea::reveal(std::size_t strip) {
    if (shown.isPaged()) setPage(shown.pageOf(strip));
    rows->reveal(strip);
}

int ChannelArea::heightForSetup() const {
    constexpr int dividers = 2;
    return headerHeight + bridgeHeight + dividers + rows->heightForSetup();
}

void ChannelArea::showPresentation() {
    const StripPresentation now = presentation.shown().get();
    presentationPicker->setCurrent(static_cast<int>(now));
    bridge->setFixedHeight(now == StripPresentation::mix ? mixBridgeHeight : bridgeHeight);
    rows->setPresentation(now);
}

void ChannelArea::turn(bool forwards) {
    if (!shown.isPaged()) return rows->scrollSideways(forwards);
    if (forwards || shown.page > 0) setPage(forwards ? shown.page + 1 : shown.page - 1);
}

void ChannelArea::step(int by) {
    const std::optional<StripRows::Place> from = rows->placeInFocus();
    // Left of the first strip, this exceeds the count as well.
    const std::size_t strip = from ? from->strip + static_cast<std::size_t>(by) : shown.rows().front().first;
    if (strip >= shown.channelCount) return;
    reveal(strip);
    rows->setFocusTo({.strip = strip, .control = from ? from->control : std::nullopt});
}

std::optional<std::size_t> ChannelArea::stripInFocus() const {
    const std::optional<StripRows::Place> place = rows->placeInFocus();
    return place ? std::optional(place->strip) : std::nullopt;
}

QWidget& ChannelArea::strips() const {
    return *rows;
}

void ChannelArea::setFileErrorMessage(const std::optional<std::string>& sentence) {
    fileErrorMessage->setText(QString::fromStdString(sentence.value_or("")));
    fileErrorMessage->setVisible(sentence.has_value());
}

void ChannelArea::showPages() {
    modePicker->setCurrent(static_cast<int>(std::ranges::find(modes, shown.mode) - modes.begin()));
    for (ConsoleButton* button : pageButtons)
        delete button;
    pageButtons.clear();
    for (std::size_t page = 0; shown.isPaged() && page < shown.pageCount(); ++page) {
        auto* const button = new ConsoleButton(shown.pageTitle(page), [this, page] { setPage(page); });
        button->setFixedWidth(pageButtonWidth);
        pages->layout()->addWidget(button);
        pageButtons.push_back(button);
    }
    pages->setVisible(shown.isPaged());
    arrange();
}

void ChannelArea::arrange() {
    for (std::size_t page = 0; page < pageButtons.size(); ++page)
        pageButtons[page]->setActive(page == shown.page);
    rows->arrange(shown.rows(), shown.rowLength());
}

} // namespace orvane::ui
