#pragma once

#include "audio/meter_model.h"
#include "ui/meters/clip_lamp.h"
#include "ui/meters/segment_meter.h"

#include <QColor>
#include <QVariantAnimation>

#include <cstddef>
#include <optional>
#include <vector>

namespace orvane::ui {

/// A signal level from -40 to +6 dB; vertical if it is higher than wide.
class MeterView final : public SegmentMeter {
  public:
    /// `tint`: the colour of all lit segments instead of the level colours.
    explicit MeterView(
        int segmentCount, std::optional<QColor> tint = std::nullopt, QWidget* parent = nullptr
    );

    /// Linear RMS, 1 = full scale.
    void setLevel(double level);
    [[nodiscard]] Reading reading() const override;

    /// Draws a line across a horizontal meter at a linear peak; none if absent.
    void setPeak(std::optional<double> linearPeak);

  protected:
    [[nodiscard]] QColor colorOf(int segment) const override;
    void paintEvent(QPaintEvent* event) override;

  private:
    [[nodiscard]] QRect peakLine() const;

    const std::optional<QColor> tintColor;
    double shown = 0.0;
    std::optional<double> peak;
};

/// A gain reduction from 0 to 30 dB; a vertical one grows from the top.
class GateMeterView final : public SegmentMeter {
  public:
    explicit GateMeterView(int segmentCount, QWidget* parent = nullptr);

    /// In dB, 0 or more.
    void setReductionDB(double reductionDB);
    [[nodiscard]] Reading reading() const override;

  protected:
    [[nodiscard]] QColor colorOf(int segment) const override;

  private:
    double shownDB = 0.0;
};

/// The render load, 0 to 1. A change of the segments fades within a tenth of a second if the number of full
/// segments changes too, and shows at once otherwise.
class LoadMeterView final : public SegmentMeter {
  public:
    explicit LoadMeterView(int segmentCount, QWidget* parent = nullptr);

    void setLoad(double load);
    [[nodiscard]] Reading reading() const override;

  protected:
    [[nodiscard]] QColor colorOf(int segment) const override;
    [[nodiscard]] double brightnessOf(int segment) const override;

  private:
    void repaintFading();

    double shown = 0.0;
    int litBefore = 0;
    int full = 0;
    QVariantAnimation fade;
};

/// The dB marks beside a level meter of the same length. The labels extend beyond the scale's frame at both
/// ends.
class MeterScaleView final : public QWidget {
  public:
    using QWidget::QWidget;

    /// Places the scale at `scaleFrame`, in the parent's coordinates, with the labels around it.
    void setFrame(const QRect& scaleFrame);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    /// In this widget's coordinates.
    QRect frame;
};

/// Level, gain reduction (labelled "GR") and scale of one strip, dark while the audio is stopped, and the
/// clip lamp of its input.
class ChannelMeterColumn final : public QWidget {
  public:
    /// Shows entry `stripIndex` of the model's meters, or 0 if the model has no such entry. The model and
    /// `isRunning` must outlive the column.
    ChannelMeterColumn(
        audio::MeterModel& meterModel, std::size_t stripIndex, const platform::Published<bool>& isRunning,
        QWidget* parent = nullptr
    );

    /// Whether the meters take the room that there is instead of a fixed size.
    void setGrowing(bool grows);

    void setReductionDimmed(bool isDimmed) { reduction.setDimmed(isDimmed); }

    [[nodiscard]] const MeterView& levelMeter() const { return level; }
    [[nodiscard]] const GateMeterView& reductionMeter() const { return reduction; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    void showLevel();
    void showReduction();
    void showOvers();
    void rest(bool isRunning);

    const audio::MeterModel& model;
    const std::size_t index;
    MeterView level;
    GateMeterView reduction;
    MeterScaleView scale;
    ClipLamp clip;
    std::vector<platform::Subscription> subscriptions;
};

/// A level above its scale, for the master bus or the reference noise. Dark while the audio is stopped.
class WideMeterColumn final : public QWidget {
  public:
    /// `name`: for screen readers. `value`: linear RMS. `value` and `isRunning` must outlive the column.
    WideMeterColumn(
        const QString& name, const platform::Published<double>& value,
        const platform::Published<bool>& isRunning, std::optional<QColor> tint = std::nullopt,
        QWidget* parent = nullptr
    );

    /// Whether the meter may be shorter than its usual length if there is little room.
    void setShrinking(bool shrinks);

    /// Draws a line at a linear peak; none if absent.
    void setPeak(std::optional<double> linearPeak) { level.setPeak(linearPeak); }
    /// Shows a limiter's reduction, in dB, along the lower edge of the level; no limiter if absent.
    void setReductionDB(std::optional<double> reductionDB);
    /// Places a lamp, which it owns from then on, beside the end of the scale.
    void setLamp(ClipLamp* lamp);

    [[nodiscard]] const MeterView& levelMeter() const { return level; }
    [[nodiscard]] const GateMeterView& reductionMeter() const { return reduction; }

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void place();

    MeterView level;
    GateMeterView reduction;
    MeterScaleView scale;
    ClipLamp* clip = nullptr;
    std::vector<platform::Subscription> subscriptions;
};

} // namespace orvane::ui
