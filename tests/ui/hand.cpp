#include "hand.h"

#include <QProcess>
#include <QTest>
#include <QWidget>

#include <stdexcept>

namespace orvane::test {

namespace {

void run(const QStringList& arguments) {
    QProcess process;
    process.start(QStringLiteral("xdotool"), arguments);
    const bool hasEnded = QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, 20000);
    if (!hasEnded || process.exitCode() != 0)
        throw std::runtime_error("xdotool " + arguments.join(' ').toStdString() + " failed");
}

bool isWithin(const QPoint& place, const QWidget& widget) {
    const QPoint position = widget.mapToGlobal(place);
    const QWidget* const there = QApplication::widgetAt(position);
    return there != nullptr
           && (there == &widget || widget.isAncestorOf(there) || there->isAncestorOf(&widget));
}

} // namespace

void Hand::click(const QWidget& widget, int button) {
    clickAt(widget, widget.rect().center(), button);
}

void Hand::clickAt(const QWidget& widget, QPoint place, int button) {
    ++touchCount;
    moveTo(widget, place);
    run({QStringLiteral("click"), QString::number(button)});
}

void Hand::drag(const QWidget& widget, QPoint from, QPoint to) {
    ++touchCount;
    moveTo(widget, from);
    run({QStringLiteral("mousedown"), QStringLiteral("1")});
    moveTo(widget, to);
    run({QStringLiteral("mouseup"), QStringLiteral("1")});
}

void Hand::type(const QString& text) {
    run({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("5"), text});
}

void Hand::press(const QString& keys) {
    ++touchCount;
    run({QStringLiteral("key"), keys});
}

void Hand::moveTo(const QWidget& widget, QPoint place) {
    const auto isReady = [&] { return widget.isVisible() && widget.isEnabled() && isWithin(place, widget); };
    if (!QTest::qWaitFor(isReady, 20000))
        throw std::runtime_error("Nobody could touch " + widget.accessibleName().toStdString());
    const QPoint position = widget.mapToGlobal(place);
    run({QStringLiteral("mousemove"), QString::number(position.x()), QString::number(position.y())});
}

} // namespace orvane::test
