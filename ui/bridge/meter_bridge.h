#pragma once

#include "audio/meter_model.h"
#include "engine/engine_state.h"
#include "platform/base/published.h"
#include "ui/bridge/open_channels.h"

#include <QString>
#include <QWidget>

#include <cstddef>
#include <functional>
#include <vector>

namespace orvane::ui {

/// Every channel of the session in one line: its number, and its name if there is room; its level; and
/// whether it is open, muted or bypassed. Paints all cells itself, and only what has changed. Main thread.
class MeterBridge final : public QWidget {
  public:
    /// The first three parameters must outlive the view. `onPick` receives the index of a clicked channel.
    MeterBridge(
        const engine::EngineState& state, const audio::MeterModel& model, const OpenChannels& openChannels,
        std::function<void(std::size_t)> onPick
    );

    /// The length of the lit part of a channel's level, in pixels.
    [[nodiscard]] int litLength(std::size_t channel) const { return cells[channel].lit; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    struct Cell {
        QString title;
        bool isOpen = false;
        bool isMuted = false;
        bool isBypassed = false;
        int lit = 0;
    };

    void showStates();
    void showLevels();
    void describe();
    void paintTitle(QPainter& painter, const Cell& cell, const QRect& frame) const;
    void paintLevel(QPainter& painter, const Cell& cell, const QRect& bar) const;
    [[nodiscard]] QRect frameOf(std::size_t channel) const;
    /// Where the level of a channel is.
    [[nodiscard]] QRect barOf(std::size_t channel) const;
    /// The channel at this distance from the left, the nearest one if it is beyond the cells.
    [[nodiscard]] std::size_t channelAt(double x) const;

    const engine::EngineState& engineState;
    const audio::MeterModel& meters;
    const OpenChannels& openChannels;
    const std::function<void(std::size_t)> picked;
    std::vector<Cell> cells;
    std::vector<platform::Subscription> subscriptions;
};

} // namespace orvane::ui
