#include "ui/sheets/sheet.h"

#include "ui/controls/console_button.h"

namespace orvane::ui {

namespace {

constexpr int doneWidth = 90;

} // namespace

Sheet::Sheet(const QString& title, const QSize& size, QWidget* parent) : QDialog(parent) {
    setWindowTitle(title);
    setWindowModality(Qt::WindowModal);
    setFixedSize(size);
}

QWidget* makeDoneButton(QDialog& sheet) {
    auto* const done = new ConsoleButton(QStringLiteral("Done"), [&sheet] { sheet.accept(); });
    done->setFixedWidth(doneWidth);
    return done;
}

} // namespace orvane::ui
