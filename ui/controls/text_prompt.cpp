#include "ui/controls/text_prompt.h"

#include "ui/controls/text_label.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace orvane::ui {

namespace {

constexpr int promptWidth = 340;

} // namespace

void askForText(QWidget* parent, const TextPrompt& prompt, std::function<void(const QString&)> onSave) {
    auto* const dialog = new QDialog(parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setWindowTitle(prompt.title);
    auto* const lines = new QVBoxLayout(dialog);
    lines->setContentsMargins(20, 20, 20, 16);
    lines->setSpacing(12);
    lines->addWidget(makeText(prompt.title, TextStyle::title3, theme::primaryText, QFont::Bold));
    lines->addWidget(makeText(prompt.message, TextStyle::callout, theme::secondaryText));
    auto* const field = new QLineEdit(prompt.text);
    field->setPlaceholderText(prompt.placeholder);
    field->setAccessibleName(prompt.placeholder);
    field->setMinimumHeight(28);
    field->selectAll();
    lines->addWidget(field);
    auto* const buttons = new QDialogButtonBox;
    QPushButton* const cancel = buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
    QPushButton* const save = buttons->addButton(QStringLiteral("Save"), QDialogButtonBox::AcceptRole);
    cancel->setAutoDefault(false);
    save->setDefault(true);
    lines->addWidget(buttons);
    dialog->setFixedSize(promptWidth, lines->heightForWidth(promptWidth));
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, [dialog, field, save = std::move(onSave)] {
        const QString text = field->text().trimmed();
        if (!text.isEmpty()) save(text);
        dialog->accept();
    });
    dialog->open();
    field->setFocus();
}

} // namespace orvane::ui
