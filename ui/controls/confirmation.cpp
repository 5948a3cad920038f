#include "ui/controls/confirmation.h"

#include <QFontMetrics>
#include <QMessageBox>
#include <QPushButton>

#include <utility>

namespace orvane::ui {

namespace {

/// A readable line length.
constexpr int messageWidth = 340;
constexpr QChar zeroWidthSpace(0x200b);

/// Returns the text with break opportunities in words that are wider than a line.
QString breakable(const QString& text, const QFontMetrics& metrics) {
    QString broken;
    QString word;
    for (const QChar character : text) {
        if (character.isSpace())
            word.clear();
        else if (metrics.horizontalAdvance(word + character) > messageWidth) {
            broken += zeroWidthSpace;
            word = character;
        } else
            word += character;
        broken += character;
    }
    return broken;
}

QMessageBox* makeBox(QWidget* parent, QMessageBox::Icon icon, const QString& title, const QString& message) {
    auto* const box = new QMessageBox(parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::WindowModal);
    box->setIcon(icon);
    box->setTextFormat(Qt::PlainText);
    box->setWindowTitle(title);
    box->setText(title);
    box->setInformativeText(breakable(message, box->fontMetrics()));
    // The style sheet is the only way to set the width of the box.
    box->setStyleSheet(QStringLiteral("#qt_msgbox_label { font-weight: bold; }"
                                      "#qt_msgbox_informativelabel { min-width: %1px; }")
                           .arg(messageWidth));
    return box;
}

} // namespace

void confirm(
    QWidget* parent, const Confirmation& question, std::function<void()> onConfirm,
    std::function<void()> onAlternative
) {
    QMessageBox* const box = makeBox(parent, QMessageBox::Warning, question.title, question.message);
    auto* const action = new QPushButton(question.action);
    // Set before the box applies the style sheet.
    action->setObjectName(QStringLiteral("destructive"));
    box->addButton(action, QMessageBox::DestructiveRole);
    if (!question.alternative.isEmpty())
        QObject::connect(
            box->addButton(question.alternative, QMessageBox::AcceptRole), &QPushButton::clicked, box,
            std::move(onAlternative)
        );
    QPushButton* const cancel = box->addButton(QMessageBox::Cancel);
    cancel->setText(QStringLiteral("Cancel"));
    box->setDefaultButton(question.enterGoesAhead ? action : cancel);
    box->setEscapeButton(cancel);
    QObject::connect(action, &QPushButton::clicked, box, std::move(onConfirm));
    box->open();
}

void showAlert(QWidget* parent, const QString& title, const QString& message) {
    makeBox(parent, QMessageBox::Warning, title, message)->open();
}

} // namespace orvane::ui
