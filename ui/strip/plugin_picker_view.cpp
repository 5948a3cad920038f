#include "ui/strip/plugin_picker_view.h"

#include "ui/controls/console_button.h"
#include "ui/controls/text_label.h"
#include "ui/theme/theme.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QVBoxLayout>

namespace orvane::ui {

namespace {

constexpr QSize sheetSize(420, 520);
constexpr int padding = 16;
constexpr int lineSpacing = 10;
constexpr int cancelWidth = 90;
constexpr int titleHeight = 24;
/// The item role of a component's index in the whole list.
constexpr int placeRole = Qt::UserRole;

const QString noneText = QStringLiteral("No installed plugins found (LV2 effects).");
const QString scanningText = QStringLiteral("Scanning the installed plugins…");
const QString noMatchText = QStringLiteral("No plugin matches the search.");

bool contains(const std::string& text, const QString& searched) {
    return QString::fromStdString(text).contains(searched, Qt::CaseInsensitive);
}

QListWidgetItem* makeMakerItem(const std::string& maker) {
    auto* const item = new QListWidgetItem(QString::fromStdString(maker));
    item->setFlags(Qt::NoItemFlags);
    item->setSizeHint({0, titleHeight});
    item->setFont(textFont(TextStyle::caption, QFont::Bold));
    item->setForeground(theme::secondaryText);
    return item;
}

} // namespace

PluginPickerView::PluginPickerView(
    engine::MixerEngine& mixerEngine, const InstalledComponents& installedComponents,
    const platform::Uuid& strip, std::size_t slot, QWidget* parent
)
    : Sheet(QStringLiteral("Insert %1").arg(slot + 1), sheetSize, parent),
      engine(mixerEngine),
      components(installedComponents),
      stripID(strip),
      slotIndex(slot),
      search(new QLineEdit),
      list(new QListWidget),
      message(makeText({}, TextStyle::callout, theme::secondaryText)),
      progress(new QProgressBar) {
    search->setPlaceholderText(QStringLiteral("Search"));
    search->setAccessibleName(QStringLiteral("Search"));
    search->setMinimumHeight(theme::touchTarget);
    search->setClearButtonEnabled(true);
    search->installEventFilter(this);
    list->setAccessibleName(QStringLiteral("Installed plugins"));
    list->setObjectName(QStringLiteral("components"));
    list->setUniformItemSizes(true);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    message->setAlignment(Qt::AlignCenter);
    progress->setRange(0, 0);
    progress->setTextVisible(false);
    progress->setFixedHeight(4);

    auto* const lines = new QVBoxLayout(this);
    lines->setContentsMargins(padding, padding, padding, padding);
    lines->setSpacing(lineSpacing);
    auto* const header = new QHBoxLayout;
    header->addWidget(makeText(windowTitle(), TextStyle::title3, theme::primaryText, QFont::Bold), 1);
    auto* const cancel = new ConsoleButton(QStringLiteral("Cancel"), [this] { reject(); });
    cancel->setFixedWidth(cancelWidth);
    header->addWidget(cancel);
    lines->addLayout(header);
    lines->addWidget(search);
    lines->addWidget(list, 1);
    lines->addWidget(message, 1);
    lines->addWidget(progress);

    connect(search, &QLineEdit::textChanged, this, [this] { showComponents(); });
    connect(list, &QListWidget::itemClicked, this, [this](const auto* item) { choose(item); });
    connect(list, &QListWidget::itemActivated, this, [this](const auto* item) { choose(item); });
    subscription = components.list().subscribe([this](const auto&) { showComponents(); });
    showComponents();
    search->setFocus();
}

bool PluginPickerView::eventFilter(QObject* receiver, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return Sheet::eventFilter(receiver, event);
    // Moves through the list and chooses from it while the search field keeps the focus.
    switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        return QCoreApplication::sendEvent(list, event);
    case Qt::Key_Return:
    case Qt::Key_Enter:
        // The key that opened the sheet may still be held.
        if (!static_cast<QKeyEvent*>(event)->isAutoRepeat()) choose(list->currentItem());
        return true;
    default:
        return Sheet::eventFilter(receiver, event);
    }
}

void PluginPickerView::showComponents() {
    const auto& installed = components.list().get();
    const QString searched = search->text();
    list->clear();
    const std::string* maker = nullptr;
    for (std::size_t place = 0; installed && place < installed->size(); ++place) {
        const platform::AVAudioUnitComponent& component = (*installed)[place];
        if (!contains(component.name, searched) && !contains(component.manufacturerName, searched)) continue;
        if (maker == nullptr || *maker != component.manufacturerName)
            list->addItem(makeMakerItem(component.manufacturerName));
        maker = &component.manufacturerName;
        auto* const item = new QListWidgetItem(QString::fromStdString(component.name), list);
        item->setSizeHint({0, theme::touchTarget});
        item->setData(placeRole, QVariant::fromValue(place));
        if (list->currentItem() == nullptr) list->setCurrentItem(item);
    }
    list->setVisible(list->count() > 0);
    message->setVisible(list->count() == 0);
    progress->setVisible(!installed);
    message->setText(!installed ? scanningText : installed->empty() ? noneText : noMatchText);
}

void PluginPickerView::choose(const QListWidgetItem* item) {
    const auto& installed = components.list().get();
    // Clicks that arrive after the sheet was closed are ignored.
    if (item == nullptr || !item->data(placeRole).isValid() || !installed || !isVisible()) return;
    engine.loadPlugin((*installed)[item->data(placeRole).value<std::size_t>()], slotIndex, stripID);
    accept();
}

} // namespace orvane::ui
