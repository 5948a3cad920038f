#include "ui/sheets/snapshot_list_view.h"

#include "ui/controls/ordinal.h"
#include "ui/controls/text_label.h"
#include "ui/theme/theme.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QSignalBlocker>
#include <QStyledItemDelegate>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace orvane::ui {

namespace {

constexpr int numberWidth = 24;
constexpr int nameInset = 8;
constexpr double cornerRadius = 4.0;

/// Returns the place of the name in a row.
QRect nameRect(const QRect& row) {
    return row.adjusted(numberWidth + nameInset, 0, -nameInset, 0);
}

/// Paints a row, and edits its name through the engine.
class RowDelegate final : public QStyledItemDelegate {
  public:
    RowDelegate(engine::MixerEngine& mixerEngine, QObject* parent)
        : QStyledItemDelegate(parent), engine(mixerEngine) {}

    void
    paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const bool isSelected = option.state.testFlag(QStyle::State_Selected);
        painter->setPen(Qt::NoPen);
        painter->setBrush(isSelected ? theme::selection : theme::panelBackground);
        painter->drawRoundedRect(option.rect.adjusted(0, 1, 0, -1), cornerRadius, cornerRadius);
        painter->setFont(monospacedFont(12));
        painter->setPen(isSelected ? theme::primaryText : theme::secondaryText);
        painter->drawText(
            QRect(option.rect.left(), option.rect.top(), numberWidth, option.rect.height()),
            Qt::AlignRight | Qt::AlignVCenter, QString::number(index.row() + 1)
        );
        painter->setFont(option.font);
        painter->setPen(theme::primaryText);
        const QRect room = nameRect(option.rect);
        painter->drawText(
            room, Qt::AlignLeft | Qt::AlignVCenter,
            option.fontMetrics.elidedText(index.data().toString(), Qt::ElideRight, room.width())
        );
        painter->restore();
    }

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override {
        return {0, theme::touchTarget};
    }

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex&) const override {
        auto* const field = new QLineEdit(parent);
        field->setAccessibleName(QStringLiteral("Snapshot name"));
        return field;
    }

    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option, const QModelIndex&)
        const override {
        editor->setGeometry(nameRect(option.rect).adjusted(-nameInset, 2, nameInset, -2));
    }

    void setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex& index) const override {
        engine.renameSnapshot(index.row(), static_cast<QLineEdit*>(editor)->text().toStdString());
    }

  private:
    engine::MixerEngine& engine;
};

QString describeTrigger(const session::Snapshot& snapshot) {
    if (!snapshot.midiTrigger) return {};
    return QStringLiteral("Recalled by MIDI channel %1, note %2.")
        .arg(ordinal(snapshot.midiTrigger->channel))
        .arg(snapshot.midiTrigger->note);
}

} // namespace

SnapshotListView::SnapshotListView(engine::MixerEngine& mixerEngine) : engine(mixerEngine) {
    setAccessibleName(QStringLiteral("Snapshots"));
    setFrameShape(QFrame::NoFrame);
    setFont(textFont(TextStyle::body));
    setUniformItemSizes(true);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setEditTriggers(DoubleClicked | EditKeyPressed);
    setItemDelegate(new RowDelegate(engine, this));
    connect(this, &QListWidget::itemSelectionChanged, this, &SnapshotListView::selectRow);
    const engine::EngineState& state = engine.state();
    subscriptions.push_back(state.snapshots.subscribe([this](const auto&) { showSnapshots(); }));
    subscriptions.push_back(state.currentSnapshotIndex.subscribe([this](const auto&) { showSelection(); }));
    showSnapshots();
}

void SnapshotListView::commitRenaming() {
    // A name field that loses the focus commits its text.
    if (state() == EditingState) setFocus();
}

void SnapshotListView::keyPressEvent(QKeyEvent* event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    // The Enter that ends the editing of a name arrives here as well.
    if (!isEnter || state() == EditingState) return QListWidget::keyPressEvent(event);
    if (!event->isAutoRepeat()) engine.recallCurrentSnapshot();
}

void SnapshotListView::showSnapshots() {
    const std::vector<session::Snapshot>& snapshots = engine.state().snapshots.get();
    const QSignalBlocker whileFilling(this);
    while (count() > static_cast<int>(snapshots.size()))
        delete takeItem(count() - 1);
    for (int row = 0; row < static_cast<int>(snapshots.size()); ++row) {
        const session::Snapshot& snapshot = snapshots[static_cast<std::size_t>(row)];
        if (row == count()) {
            auto* const added = new QListWidgetItem(this);
            added->setFlags(added->flags() | Qt::ItemIsEditable);
        }
        const QString name = QString::fromStdString(snapshot.name);
        // Setting an equal text would replace the text that is being typed.
        if (item(row)->text() != name) item(row)->setText(name);
        item(row)->setToolTip(describeTrigger(snapshot));
    }
    showSelection();
}

void SnapshotListView::showSelection() {
    const QSignalBlocker whileShowing(this);
    const std::optional<std::int64_t> selected = engine.state().currentSnapshotIndex.get();
    if (selected && *selected < count())
        setCurrentRow(static_cast<int>(*selected));
    else
        clearSelection();
}

void SnapshotListView::selectRow() {
    const QList<QListWidgetItem*> selected = selectedItems();
    // The selection cannot be emptied.
    if (selected.isEmpty())
        showSelection();
    else
        engine.selectSnapshot(row(selected.first()));
}

} // namespace orvane::ui
