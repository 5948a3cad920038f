#include "ui/controls/value_field.h"

#include "ui/theme/theme.h"

#include <QKeyEvent>
#include <QRegularExpression>

#include <algorithm>
#include <optional>
#include <utility>

namespace orvane::ui {

namespace {

constexpr int textSize = 11;
constexpr int fieldHeight = 18;

/// Returns the first number in a text, with a point or a comma.
std::optional<double> numberIn(QString text) {
    static const QRegularExpression number(QStringLiteral("[-+]?(\\d+(\\.\\d*)?|\\.\\d+)"));
    text.replace(QChar(u'−'), QChar(u'-')).replace(QChar(u','), QChar(u'.'));
    const QRegularExpressionMatch match = number.match(text);
    if (!match.hasMatch()) return std::nullopt;
    return match.captured().toDouble();
}

} // namespace

ValueField::ValueField(const QString& name, Style fieldStyle, std::function<void(double)> onChange)
    : style(std::move(fieldStyle)), changed(std::move(onChange)) {
    setAccessibleName(name);
    setObjectName(QStringLiteral("flat"));
    setFont(monospacedFont(textSize));
    setFixedSize(style.width, fieldHeight);
    // Compensates for the margin that every line edit adds.
    setTextMargins(-2, 0, -2, 0);
    setAlignment(style.alignment | Qt::AlignVCenter);
    setContextMenuPolicy(Qt::NoContextMenu);
    connect(this, &QLineEdit::editingFinished, this, [this] { commit(); });
}

void ValueField::setValue(double value) {
    current = value;
    if (hasFocus() && isModified()) return;
    const QString written = style.write(value);
    if (written != text()) setText(written);
}

bool ValueField::event(QEvent* event) {
    // Esc ends the editing here instead of closing the window.
    if (event->type() == QEvent::ShortcutOverride
        && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    return QLineEdit::event(event);
}

void ValueField::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        setText(style.write(current));
        clearFocus();
    } else {
        QLineEdit::keyPressEvent(event);
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) clearFocus();
    }
}

void ValueField::mouseReleaseEvent(QMouseEvent* event) {
    QLineEdit::mouseReleaseEvent(event);
    if (!isModified() && !hasSelectedText()) selectAll();
}

void ValueField::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    selectAll();
}

void ValueField::commit() {
    const bool wasTyped = isModified();
    const std::optional<double> typed = wasTyped ? numberIn(text()) : std::nullopt;
    setModified(false);
    if (typed && changed) {
        const double value = style.read ? style.read(*typed, text()) : *typed;
        changed(std::clamp(value, style.lowest, style.highest));
    }
    setText(style.write(current));
}

} // namespace orvane::ui
