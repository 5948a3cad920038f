#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
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
        if (button->accessibleName() == name || button->text() == name) return *button;
    throw std::runtime_error("There is no button " + name.toStdString());
}

/// Whether a label with this text is visible.
inline bool shows(const QWidget& view, const QString& text) {
    for (const QLabel* label : view.findChildren<QLabel*>())
        if (label->isVisibleTo(&view) && label->text() == text) return true;
    return false;
}

} // namespace orvane::test
