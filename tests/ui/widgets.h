#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QPaintEvent>
#include <QRegion>
#include <QTest>
#include <QWheelEvent>
#include <QWidget>

#include <cstdint>
#include <stdexcept>
#include <vector>

namespace orvane::test {

/// All views of one class within another; the class need not be known to Qt's meta-object system.
template <class View>
std::vector<View*> viewsIn(const QWidget& view) {
    std::vector<View*> found;
    for (QWidget* each : view.findChildren<QWidget*>())
        if (auto* const matching = dynamic_cast<View*>(each)) found.push_back(matching);
    return found;
}

/// Whether a view has this accessible name, with or without its channel.
inline bool isNamed(const QWidget& view, const QString& name) {
    return view.accessibleName() == name || view.accessibleName().startsWith(name + ", channel ");
}

/// The view of this class and accessible name, visible or not; it must exist.
template <class View>
View& viewNamed(const QWidget& within, const QString& name) {
    for (View* each : viewsIn<View>(within))
        if (isNamed(*each, name)) return *each;
    throw std::runtime_error("There is no " + name.toStdString());
}

/// Chooses an entry as the user does; setting the box's index would not emit the signal.
inline void choose(QComboBox& box, int entry) {
    box.setCurrentIndex(entry);
    Q_EMIT box.activated(entry);
}

/// The entries of a box.
inline QStringList itemsOf(const QComboBox& menu) {
    QStringList items;
    for (int i = 0; i < menu.count(); ++i)
        items.append(menu.itemText(i));
    return items;
}

/// Collects the regions that a widget repaints.
struct RepaintLog final : QObject {
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) region += static_cast<QPaintEvent*>(event)->region();
        return false;
    }

    QRegion region;
};

/// Opens the context menu of a widget; null if it has none.
inline QMenu* openContextMenu(QWidget& widget) {
    qDeleteAll(widget.findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly));
    QContextMenuEvent event(QContextMenuEvent::Mouse, {5, 5}, widget.mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(&widget, &event);
    return widget.findChild<QMenu*>(QString(), Qt::FindDirectChildrenOnly);
}

/// Repeats the Enter key as a keyboard does while it is held. Returns whether the widget takes it.
inline bool holdEnter(QWidget& widget) {
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, {}, true);
    QApplication::sendEvent(&widget, &held);
    return held.isAccepted();
}

/// Processes pending deferred deletions.
inline void deleteWhatIsDone() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// Sends the events of a double click of a mouse.
inline void doubleClick(QWidget& widget, QPoint place) {
    QTest::mouseClick(&widget, Qt::LeftButton, {}, place);
    QTest::mouseDClick(&widget, Qt::LeftButton, {}, place);
}

/// Turns the wheel by one notch towards the user at a time in milliseconds. As with hardware, events that the
/// widget ignores go to its parent.
inline void turnWheelAt(QWidget& widget, std::uint64_t milliseconds) {
    QWheelEvent event({5, 5}, {5, 5}, {}, {0, -120}, {}, {}, Qt::NoScrollPhase, false);
    event.setTimestamp(milliseconds);
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(&widget, &event);
}

/// The button with this accessible name or text, visible or not; it must exist.
inline QAbstractButton& buttonOf(const QWidget& view, const QString& name) {
    for (QAbstractButton* button : view.findChildren<QAbstractButton*>())
        if (isNamed(*button, name) || button->text() == name) return *button;
    throw std::runtime_error("There is no button " + name.toStdString());
}

/// Whether a label with this text is visible.
inline bool shows(const QWidget& view, const QString& text) {
    for (const QLabel* label : view.findChildren<QLabel*>())
        if (label->isVisibleTo(&view) && label->text() == text) return true;
    return false;
}

} // namespace orvane::test
