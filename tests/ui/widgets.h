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

/// All views of one class within another, also of a class that Qt knows nothing of.
template <class View>
std::vector<View*> viewsIn(const QWidget& view) {
    std::vector<View*> found;
    for (QWidget* each : view.findChildren<QWidget*>())
        if (auto* const matching = dynamic_cast<View*>(each)) found.push_back(matching);
    return found;
}

/// Deletes what was left to be deleted later.
inline void deleteWhatIsDone() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// Clicks twice in quick succession, as a mouse tells of it.
inline void doubleClick(QWidget& widget, QPoint place) {
    QTest::mouseClick(&widget, Qt::LeftButton, {}, place);
    QTest::mouseDClick(&widget, Qt::LeftButton, {}, place);
}

/// Turns the wheel by one notch towards the user, at a time in milliseconds, as hardware does: what the
/// widget leaves goes on to what it stands in.
inline void turnWheelAt(QWidget& widget, std::uint64_t milliseconds) {
    QWheelEvent event({5, 5}, {5, 5}, {}, {0, -120}, {}, {}, Qt::NoScrollPhase, false);
    event.setTimestamp(milliseconds);
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(&widget, &event);
}

/// The button of that accessible name or text, visible or not; it must be there.
inline QAbstractButton& buttonOf(const QWidget& view, const QString& name) {
    for (QAbstractButton* button : view.findChildren<QAbstractButton*>())
        if (button->accessibleName() == name || button->text() == name) return *button;
    throw std::runtime_error("There is no button " + name.toStdString());
}

/// Whether a label with that text can be seen.
inline bool shows(const QWidget& view, const QString& text) {
    for (const QLabel* label : view.findChildren<QLabel*>())
        if (label->isVisibleTo(&view) && label->text() == text) return true;
    return false;
}

} // namespace orvane::test
