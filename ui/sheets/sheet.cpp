#include "ui/sheets/sheet.h"

#include "ui/controls/console_button.h"
#include "ui/controls/screen_room.h"

#include <QScrollArea>

namespace orvane::ui {

namespace {

constexpr int doneWidth = 90;

} // namespace

Sheet::Sheet(const QString& title, const QSize& size, QWidget* parent) : QDialog(parent) {
    setWindowTitle(title);
    setWindowModality(Qt::WindowModal);
    setFixedSize(size.boundedTo(screenRoom(parent != nullptr ? *parent : *this)));
}

QScrollArea* makeSheetArea(QWidget* content) {
    auto* const area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(content);
    return area;
}

QWidget* makeDoneButton(QDialog& sheet) {
    auto* const done = new ConsoleButton(QStringLiteral("Done"), [&sheet] { sheet.accept(); });
    done->setFixedWidth(doneWidth);
    return done;
}

} // namespace orvane::ui
