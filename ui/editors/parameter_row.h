#pragma once

#include "platform/effects/audio_unit_host.h"

#include <QWidget>

#include <functional>

namespace orvane::ui {

/// One parameter in a plugin's editor: its name and a control for its kind of value. Main thread.
class ParameterRow final : public QWidget {
  public:
    /// `edited` must outlive the row.
    explicit ParameterRow(platform::AUParameter& edited);

    /// Shows the parameter's current value, if it has changed.
    void refresh();

  private:
    void makeControl();
    void makeSlider();
    void makeMenu();
    void makeToggle();
    void makeMeter();
    void choose(double value);
    [[nodiscard]] QString write(double value) const;

    platform::AUParameter& parameter;
    /// Shows a value in the control.
    std::function<void(float)> show;
    /// The value and the range that are shown.
    float shownValue = 0.0F;
    float shownMin = 0.0F;
    float shownMax = 0.0F;
};

} // namespace orvane::ui
