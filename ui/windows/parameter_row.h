#pragma once

#include "platform/effects/audio_unit_host.h"

#include <QWidget>

#include <functional>

namespace orvane::ui {

/// One parameter of a plugin in its editor: what it is called, and a control that fits what it takes. Main
/// thread.
class ParameterRow final : public QWidget {
  public:
    /// `edited` outlives the row.
    explicit ParameterRow(platform::AUParameter& edited);

    /// Shows the value as it is now, if that has changed.
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
    /// The value, and the range, that are shown.
    float shownValue = 0.0F;
    float shownMin = 0.0F;
    float shownMax = 0.0F;
};

} // namespace orvane::ui
