#include "ui/sheets/device_row.h"

#include "ui/controls/text_label.h"
#include "ui/theme/symbols.h"
#include "ui/theme/theme.h"

#include <QFontMetrics>
#include <QPainter>

#include <cstdint>

namespace orvane::ui {

namespace {

constexpr int padding = 4;
constexpr int inset = 6;
constexpr int lineSpacing = 2;
constexpr int markSize = 18;
constexpr double cornerRadius = 4.0;

QFont nameFont() {
    return textFont(TextStyle::body, QFont::Bold);
}

QFont captionFont() {
    return textFont(TextStyle::caption);
}

QString describe(const audio::AudioDeviceInfo& device) {
    return QStringLiteral("%1 in / %2 out · %3 Hz")
        .arg(device.inputChannelCount)
        .arg(device.outputChannelCount)
        .arg(static_cast<std::int64_t>(device.sampleRate));
}

} // namespace

DeviceRow::DeviceRow(const audio::AudioDeviceInfo& device) : caption(describe(device)) {
    setText(QString::fromStdString(device.name));
    // An "&" in a name must not become a shortcut.
    setShortcut({});
    setAccessibleName(text());
    setAccessibleDescription(caption);
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize DeviceRow::sizeHint() const {
    const int lines = QFontMetrics(nameFont()).height() + lineSpacing + QFontMetrics(captionFont()).height();
    return {200, lines + 2 * padding};
}

void DeviceRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(
        underMouse() || isDown() ? theme::panelBackground.lighter(isDown() ? 190 : 150)
                                 : theme::panelBackground
    );
    painter.setPen(hasFocus() ? QPen(theme::accent, 1.0) : QPen(Qt::NoPen));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);

    const QRect mark(width() - padding - inset - markSize, (height() - markSize) / 2, markSize, markSize);
    const int textWidth = mark.left() - 2 * (padding + inset);
    const QFontMetrics nameMetrics(nameFont());
    QRect line(padding + inset, padding, textWidth, nameMetrics.height());
    painter.setFont(nameFont());
    painter.setPen(theme::primaryText);
    painter.drawText(line, Qt::AlignLeft, nameMetrics.elidedText(text(), Qt::ElideMiddle, textWidth));
    line.translate(0, line.height() + lineSpacing);
    painter.setFont(captionFont());
    painter.setPen(theme::secondaryText);
    painter.drawText(line, Qt::AlignLeft, caption);
    if (isChecked()) symbol(QStringLiteral("selected")).paint(&painter, mark);
}

} // namespace orvane::ui
