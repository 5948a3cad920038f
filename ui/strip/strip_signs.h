#pragma once

#include "engine/session/channel_strip.h"
#include "ui/strip/routing_picker.h"

#include <QWidget>

#include <functional>

class QHBoxLayout;

namespace orvane::ui {

class Sign;

/// The settings of a strip in one line of short texts. The input and the output open their menus; the others
/// lead to Setup. Main thread.
class StripSigns final : public QWidget {
  public:
    explicit StripSigns(const std::function<void()>& openSetup);

    /// Shows the pickers as signs at both ends of the line.
    void hold(const RoutingPicker& input, const RoutingPicker& output);
    /// Shows the settings of a strip, with those of its pickers.
    void present(const session::ChannelStrip& strip, const RoutingPicker& input, const RoutingPicker& output);

  private:
    QHBoxLayout* const line;
    Sign* const filter;
    Sign* const group;
    Sign* const inserts;
};

} // namespace orvane::ui
