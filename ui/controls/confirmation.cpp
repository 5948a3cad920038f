#include "ui/controls/confirmation.h"

#include <QMessageBox>
#include <QPushButton>

#include <utility>

namespace orvane::ui {

namespace {

QMessageBox* makeBox(QWidget* parent, QMessageBox::Icon icon, const QString& title, const QString& message) {
    auto* const box = new QMessageBox(parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::WindowModal);
    box->setIcon(icon);
    box->setTextFormat(Qt::PlainText);
    box->setWindowTitle(title);
    box->setText(title);
    box->setInformativeText(message);
    // Nothing else gives the box a width that a sentence is read well in.
    box->setStyleSheet(QStringLiteral("#qt_msgbox_label { font-weight: bold; }"
                                      "#qt_msgbox_informativelabel { min-width: 340px; }"));
    return box;
}

} // namespace

void confirm(
    QWidget* parent, const Confirmation& question, std::function<void()> onConfirm,
    std::function<void()> onAlternative
) {
    QMessageBox* const box = makeBox(parent, QMessageBox::Warning, question.title, question.message);
    QPushButton* const action = box->addButton(question.action, QMessageBox::DestructiveRole);
    if (!question.alternative.isEmpty())
        QObject::connect(
            box->addButton(question.alternative, QMessageBox::AcceptRole), &QPushButton::clicked, box,
            std::move(onAlternative)
        );
    QPushButton* const cancel = box->addButton(QMessageBox::Cancel);
    cancel->setText(QStringLiteral("Cancel"));
    box->setDefaultButton(cancel);
    box->setEscapeButton(cancel);
    QObject::connect(action, &QPushButton::clicked, box, std::move(onConfirm));
    box->open();
}

void showAlert(QWidget* parent, const QString& title, const QString& message) {
    makeBox(parent, QMessageBox::Warning, title, message)->open();
}

} // namespace orvane::ui
