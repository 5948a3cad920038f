#include "ui/controls/brand_wordmark.h"

#include "ui/theme/theme.h"

#include <QFontMetrics>
#include <QLinearGradient>
#include <QPainter>

namespace orvane::ui {

namespace {

constexpr double letterSpacing = 1.5;
const QString word = QStringLiteral("ORVANE");

} // namespace

BrandWordmark::BrandWordmark(int fontSize, QWidget* parent) : QWidget(parent) {
    QFont heavy = systemFont(fontSize, QFont::Black);
    heavy.setLetterSpacing(QFont::AbsoluteSpacing, letterSpacing);
    setFont(heavy);
    setAccessibleName(word);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize BrandWordmark::sizeHint() const {
    return QFontMetrics(font()).size(Qt::TextSingleLine, word);
}

void BrandWordmark::paintEvent(QPaintEvent*) {
    QLinearGradient gradient(0.0, 0.0, width(), 0.0);
    gradient.setColorAt(0.0, theme::accent);
    gradient.setColorAt(1.0, theme::secondAccent);
    QPainter painter(this);
    painter.setPen(QPen(QBrush(gradient), 1.0));
    painter.drawText(rect(), Qt::AlignCenter, word);
}

} // namespace orvane::ui
