#include "ui/bridge/meter_bridge.h"

#include "ui/meters/segments.h"
#include "ui/theme/theme.h"

#include <QAccessible>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvane::ui {

namespace {

constexpr int margin = 6;
constexpr int gap = 2;
constexpr double widestCell = 120.0;
constexpr int barHeight = 7;
constexpr int titleSize = 11;
constexpr int titlePadding = 3;
/// From this width on, a cell also has the name of its channel.
constexpr int widthForName = 56;
constexpr double cornerRadius = 3.0;

} // namespace

MeterBridge::MeterBridge(
    const engine::EngineState& state, const audio::MeterModel& model, const OpenChannels& open,
    std::function<void(std::size_t)> onPick
)
    : engineState(state),
      meters(model),
      openChannels(open),
      picked(std::move(onPick)),
      cells(state.channelStrips.get().size()) {
    setMouseTracking(true);
    setAccessibleName(QStringLiteral("Meter bridge"));
    const auto follow = [this](const auto& value, void (MeterBridge::*display)()) {
        subscriptions.push_back(value.subscribe([this, display](const auto&) {
            if (isVisible()) (this->*display)();
        }));
    };
    follow(state.channelStrips, &MeterBridge::showStates);
    follow(open.channels(), &MeterBridge::showStates);
    follow(model.channelMeters, &MeterBridge::showLevels);
    follow(state.isRunning, &MeterBridge::showLevels);
}

void MeterBridge::showEvent(QShowEvent*) {
    showStates();
    showLevels();
}

void MeterBridge::resizeEvent(QResizeEvent*) {
    showStates();
    showLevels();
    update();
}

void MeterBridge::showStates() {
    const auto& strips = engineState.channelStrips.get();
    const std::vector<bool>& open = openChannels.channels().get();
    for (std::size_t channel = 0; channel < cells.size(); ++channel) {
        Cell& cell = cells[channel];
        const session::ChannelStrip& strip = strips[channel];
        const QRect frame = frameOf(channel);
        QString title = QString::number(channel + 1);
        if (frame.width() >= widthForName) title += ' ' + QString::fromStdString(strip.name);
        const bool isSame = cell.title == title && cell.isOpen == open[channel] && cell.isMuted == strip.muted
                            && cell.isBypassed == strip.bypassed;
        if (isSame) continue;
        cell.title = title;
        cell.isOpen = open[channel];
        cell.isMuted = strip.muted;
        cell.isBypassed = strip.bypassed;
        update(frame);
    }
    if (QAccessible::isActive()) describe();
}

void MeterBridge::describe() {
    QStringList open;
    for (std::size_t channel = 0; channel < cells.size(); ++channel)
        if (cells[channel].isOpen) open.append(QString::number(channel + 1));
    setAccessibleDescription(
        open.isEmpty() ? QStringLiteral("No channel is open")
                       : QStringLiteral("Open: %1").arg(open.join(QStringLiteral(", ")))
    );
}

void MeterBridge::showLevels() {
    const std::vector<double>& levels = meters.channelMeters.get();
    const bool isRunning = engineState.isRunning.get();
    for (std::size_t channel = 0; channel < cells.size(); ++channel) {
        const QRect bar = barOf(channel);
        const double level = isRunning && channel < levels.size() ? levels[channel] : 0.0;
        const int lit = litLevelSegments(level, bar.width());
        const int before = std::exchange(cells[channel].lit, lit);
        const auto [from, to] = std::minmax({before, lit});
        if (from != to) update(bar.left() + from, bar.top(), to - from, bar.height());
    }
}

void MeterBridge::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    for (std::size_t channel = 0; channel < cells.size(); ++channel) {
        const QRect frame = frameOf(channel);
        const QRect bar = barOf(channel);
        if (event->region().intersects(frame.adjusted(0, 0, 0, -barHeight)))
            paintTitle(painter, cells[channel], frame);
        if (event->region().intersects(bar)) paintLevel(painter, cells[channel], bar);
    }
}

void MeterBridge::paintTitle(QPainter& painter, const Cell& cell, const QRect& frame) const {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF title = QRectF(frame).adjusted(0.5, 0.5, -0.5, -barHeight - 1.5);
    const QColor color = cell.isBypassed ? theme::orange : theme::accent;
    painter.setBrush(cell.isOpen ? QBrush(color) : QBrush(theme::panelBackground));
    painter.setPen(QPen(cell.isOpen || cell.isBypassed ? color : theme::divider, 1.0));
    painter.drawRoundedRect(title, cornerRadius, cornerRadius);
    if (cell.isMuted) {
        painter.setBrush(QBrush(theme::red, Qt::BDiagPattern));
        painter.drawRoundedRect(title, cornerRadius, cornerRadius);
    }
    QFont font = systemFont(titleSize, cell.isOpen ? QFont::Bold : QFont::Normal);
    font.setStrikeOut(cell.isMuted);
    painter.setFont(font);
    painter.setPen(cell.isOpen ? theme::well : cell.isMuted ? theme::primaryText : theme::secondaryText);
    const QString shown = painter.fontMetrics().elidedText(
        cell.title, Qt::ElideRight, frame.width() - (cell.title.contains(' ') ? 2 * titlePadding : 0)
    );
    // The hatching of a muted channel leaves out its text.
    if (cell.isMuted) {
        const QRectF behind = painter.boundingRect(title, Qt::AlignCenter, shown);
        painter.fillRect(behind.adjusted(-1.0, 1.0, 1.0, -1.0) & title, theme::panelBackground);
    }
    painter.drawText(title, Qt::AlignCenter, shown);
    painter.restore();
}

void MeterBridge::paintLevel(QPainter& painter, const Cell& cell, const QRect& bar) const {
    painter.fillRect(bar, theme::windowBackground);
    painter.fillRect(bar, theme::unlit);
    const int width = bar.width();
    int begin = 0;
    while (begin < cell.lit) {
        const QColor color = levelColor(begin, width);
        int end = begin;
        while (end < cell.lit && levelColor(end, width) == color)
            ++end;
        painter.fillRect(bar.left() + begin, bar.top(), end - begin, bar.height(), color);
        begin = end;
    }
}

QRect MeterBridge::frameOf(std::size_t channel) const {
    const double pitch = std::min((width() - 2.0 * margin) / static_cast<double>(cells.size()), widestCell);
    const int left = static_cast<int>(std::lround(static_cast<double>(channel) * pitch));
    const int right = static_cast<int>(std::lround(static_cast<double>(channel + 1) * pitch));
    return {margin + left, gap, right - left - gap, height() - 2 * gap};
}

QRect MeterBridge::barOf(std::size_t channel) const {
    return frameOf(channel).adjusted(0, frameOf(channel).height() - barHeight, 0, 0);
}

std::size_t MeterBridge::channelAt(double x) const {
    std::size_t channel = 0;
    while (channel + 1 < cells.size() && x >= frameOf(channel + 1).left())
        ++channel;
    return channel;
}

void MeterBridge::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) picked(channelAt(event->position().x()));
}

void MeterBridge::mouseMoveEvent(QMouseEvent* event) {
    const std::size_t channel = channelAt(event->position().x());
    const Cell& cell = cells[channel];
    const QString state = cell.isMuted  ? QStringLiteral("muted")
                          : cell.isOpen ? QStringLiteral("open")
                                        : QStringLiteral("closed");
    const QString name = QString::fromStdString(engineState.channelStrips.get()[channel].name);
    setToolTip(QStringLiteral("%1 %2: %3%4. Click to scroll to the strip.")
                   .arg(channel + 1)
                   .arg(name, state, cell.isBypassed ? QStringLiteral(", bypassed") : QString()));
}

} // namespace orvane::ui
