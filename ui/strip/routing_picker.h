#pragma once

#include "ui/controls/menu_picker.h"
#include "ui/strip/routing_menu.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

namespace orvane::ui {

/// A menu of device channels. `onChoose` receives the channel of the chosen entry.
class RoutingPicker final {
  public:
    using OnChoose = std::function<void(std::optional<std::int64_t>)>;

    RoutingPicker(const QString& name, int width, OnChoose onChoose)
        : picker(new MenuPicker(name, width, [this, choose = std::move(onChoose)](int choice) {
              if (choice != menu.current) choose(menu.channelOf(choice));
          })) {}
    RoutingPicker(const RoutingPicker&) = delete;
    RoutingPicker& operator=(const RoutingPicker&) = delete;

    /// Belongs to the widget that it is added to, which must also own the picker.
    [[nodiscard]] MenuPicker* widget() const { return picker; }

    void present(RoutingMenu offered) {
        menu = std::move(offered);
        picker->present(menu.labels, menu.current);
    }

  private:
    RoutingMenu menu;
    MenuPicker* const picker;
};

} // namespace orvane::ui
