#pragma once

#include "audio/meter_model.h"
#include "ui/meters/segment_meter.h"

#include <QColor>
#include <QVariantAnimation>

#include <cstddef>
#include <optional>
#include <vector>

namespace orvane::ui {

/// A signal level, -40 to +6 dB; upright where it is higher than wide.
class MeterView final : public SegmentMeter {
  public:
    /// `tint`: the colour of every lit segment, instead of the level colours.
    explicit MeterView(
        int segmentCount, std::optional<QColor> tint = std::nullopt, QWidget* parent = nullptr
    );

    /// Linear RMS, 1 = full scale.
    void setLevel(double level) { setLit(litLevelSegments(level, segmentCount())); }

  protected:
    [[nodiscard]] QColor colorOf(int segment) const override;

  private:
    const std::optional<QColor> tintColor;
};

/// A gain reduction, 0 to 30 dB; grows from the top where it stands upright.
class GateMeterView final : public SegmentMeter {
  public:
    explicit GateMeterView(int segmentCount, QWidget* parent = nullptr);

    /// In dB, 0 or more.
    void setReductionDB(double reductionDB) { setLit(litReductionSegments(reductionDB, segmentCount())); }

  protected:
    [[nodiscard]] QColor colorOf(int segment) const override;
};

/// The render load, 0 to 1; what changes fades within a tenth of a second once the load fills another number
/// of segments wholly, and at once otherwise.
class LoadMeterView final : public SegmentMeter {
  public:
    explicit LoadMeterView(int segmentCount, QWidget* parent = nullptr);

    void setLoad(double load);

  protected:
    [[nodiscard]] QColor colorOf(int segment) const override;
    [[nodiscard]] double brightnessOf(int segment) const override;

  private:
    void repaintFading();

    int litBefore = 0;
    int full = 0;
    QVariantAnimation fade;
};

/// The dB marks of a level meter of the same length beside it. Its writing stands beyond the scale's own
/// frame at both ends.
class MeterScaleView final : public QWidget {
  public:
    explicit MeterScaleView(QWidget* parent = nullptr);

    /// Puts the scale there, in the parent's coordinates, and the writing around it.
    void setFrame(const QRect& scaleFrame);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    /// In this widget's coordinates.
    QRect frame;
};

/// Level, gain reduction and scale of one strip; dark while no audio runs.
class ChannelMeterColumn final : public QWidget {
  public:
    /// Shows entry `stripIndex` of the model's meters; 0 if it has none. The model and `isRunning` outlive
    /// the column.
    ChannelMeterColumn(
        const audio::MeterModel& meterModel, std::size_t stripIndex, const audio::Published<bool>& isRunning,
        QWidget* parent = nullptr
    );

    [[nodiscard]] const MeterView& levelMeter() const { return level; }
    [[nodiscard]] const GateMeterView& reductionMeter() const { return reduction; }

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void showLevel();
    void showReduction();
    void rest(bool isRunning);

    const audio::MeterModel& model;
    const std::size_t index;
    MeterView level;
    GateMeterView reduction;
    MeterScaleView scale;
    std::vector<audio::Subscription> subscriptions;
};

/// A level above its scale: the master bus's or the reference noise's. Dark while no audio runs.
class WideMeterColumn final : public QWidget {
  public:
    /// `value`: linear RMS; outlives the column, as `isRunning` does.
    WideMeterColumn(
        const audio::Published<double>& value, const audio::Published<bool>& isRunning,
        std::optional<QColor> tint = std::nullopt, QWidget* parent = nullptr
    );

    [[nodiscard]] const MeterView& levelMeter() const { return level; }

  private:
    MeterView level;
    MeterScaleView scale;
    std::vector<audio::Subscription> subscriptions;
};

} // namespace orvane::ui
