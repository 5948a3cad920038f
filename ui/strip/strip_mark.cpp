#include "ui/strip/strip_mark.h"

#include "ui/theme/theme.h"

#include <QPainter>

namespace orvane::ui {

namespace {

constexpr int smallestTextHeight = 14;
constexpr int textSize = 10;
constexpr double cornerRadius = 3.0;

QString wordFor(const StripMark::State& state) {
    if (state.isMuted) return QStringLiteral("MUTED");
    if (state.isBypassed) return QStringLiteral("BYPASSED");
    return state.isOpen ? QStringLiteral("OPEN") : QString();
}

QColor colorFor(const StripMark::State& state) {
    if (state.isMuted) return theme::red;
    if (state.isBypassed) return theme::orange;
    return state.isOpen ? theme::accent : theme::divider;
}

} // namespace

StripMark::StripMark(QWidget* parent) : QWidget(parent) {
    setAccessibleName(QStringLiteral("Open mark"));
    setToolTip(QStringLiteral("Filled while this channel is open: it has a signal, is not muted, and the "
                              "automix turns it down by at "
                              "most 6 dB more than the channel that it turns down least."));
    setState({});
}

void StripMark::setState(const State& state) {
    const bool isNew = state != shown;
    shown = state;
    if (!isNew && !accessibleDescription().isEmpty()) return;
    QString description = state.isOpen ? QStringLiteral("open") : QStringLiteral("closed");
    if (state.isMuted) description += QStringLiteral(", muted");
    if (state.isBypassed) description += QStringLiteral(", bypassed");
    setAccessibleDescription(description);
    update();
}

void StripMark::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor color = colorFor(shown);
    painter.setPen(QPen(color, 1.0));
    painter.setBrush(shown.isOpen ? QBrush(color) : QBrush(theme::panelBackground));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
    if (height() < smallestTextHeight) return;
    painter.setFont(systemFont(textSize, QFont::Bold));
    painter.setPen(shown.isOpen ? theme::well : theme::primaryText);
    painter.drawText(rect(), Qt::AlignCenter, wordFor(shown));
}

} // namespace orvane::ui
