#include "ui/controls/sign.h"

#include "ui/controls/enter_key.h"
#include "ui/theme/theme.h"

#include <QKeyEvent>
#include <QPainter>

#include <utility>

namespace orvane::ui {

namespace {

constexpr int fontSize = 10;
constexpr QSize smallestSize(13, 24);
constexpr double cornerRadius = 3.0;

} // namespace

void paintSign(QWidget& control, const QString& text, bool isSet) {
    QPainter painter(&control);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor fill = isSet ? theme::raised : theme::well;
    painter.setBrush(control.underMouse() ? fill.lighter(115) : fill);
    painter.setPen(control.hasFocus() ? QPen(theme::accent, theme::focusWidth) : QPen(theme::divider, 1.0));
    painter.drawRoundedRect(
        QRectF(control.rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius
    );
    painter.setFont(systemFont(fontSize, QFont::Medium));
    painter.setPen(isSet ? theme::primaryText : theme::secondaryText);
    painter.drawText(control.rect(), Qt::AlignCenter, text);
}

Sign::Sign(const QString& name, std::function<void()> onPress, QWidget* parent) : QAbstractButton(parent) {
    setAccessibleName(name);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    connect(this, &QAbstractButton::clicked, this, std::move(onPress));
}

void Sign::show(const QString& text, bool differs, const QString& help) {
    setText(text);
    setToolTip(help);
    setAccessibleDescription(help);
    isSet = differs;
    update();
}

QSize Sign::sizeHint() const {
    return smallestSize;
}

void Sign::paintEvent(QPaintEvent*) {
    paintSign(*this, text(), isSet);
}

void Sign::keyPressEvent(QKeyEvent* event) {
    if (!pressWithEnter(*this, *event)) QAbstractButton::keyPressEvent(event);
}

} // namespace orvane::ui
