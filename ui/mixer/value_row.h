#pragma once

#include "ui/controls/value_field.h"
#include "ui/controls/value_slider.h"

#include <functional>

namespace orvane::ui {

/// A slider and a text field for one value. The widgets belong to the layout that they are added to.
class ValueRow final {
  public:
    struct Style {
        ValueSlider::Range range;
        int sliderWidth = 160;
        int valueWidth = 56;
        std::function<QString(double)> write;
        QString help;
    };

    /// `onChange` receives every value that the user sets.
    ValueRow(const QString& name, const Style& style, const std::function<void(double)>& onChange)
        : slider(new ValueSlider(name, style.range, onChange)),
          value(new ValueField(
              name,
              {.write = style.write,
               .lowest = style.range.lowest,
               .highest = style.range.highest,
               .width = style.valueWidth},
              onChange
          )) {
        slider->setMaximumWidth(style.sliderWidth);
        setShrinking(false);
        slider->setToolTip(style.help);
    }

    void show(double now) {
        slider->setValue(now);
        value->setValue(now);
    }

    /// Whether the slider may be shorter than its usual length if there is little room.
    void setShrinking(bool shrinks) const {
        slider->setMinimumWidth(shrinks ? shortestSlider : slider->maximumWidth());
    }

    ValueSlider* const slider;
    ValueField* const value;

  private:
    static constexpr int shortestSlider = 60;
};

} // namespace orvane::ui
