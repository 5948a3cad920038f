#pragma once

#include "platform/base/published.h"
#include "ui/strip/strip_presentation.h"

#include <optional>
#include <string_view>

namespace orvane::ui {

/// The presentation of the mixer: the one that the user chose last; until then Setup, or Mix if the window is
/// too low for Setup. Owned by the mixer view. Main thread.
class Presentation final {
  public:
    [[nodiscard]] const platform::Published<StripPresentation>& shown() const { return current; }
    /// The user's choice; absent until there is one.
    [[nodiscard]] const platform::Published<std::optional<StripPresentation>>& chosen() const {
        return choice;
    }

    /// Shows a presentation from now on, whatever the size of the window.
    void choose(StripPresentation presentation);
    /// Shows a presentation without making it the user's choice.
    void show(StripPresentation presentation);
    /// Chooses the presentation that is not shown.
    void toggle();
    /// Sets whether the window is high enough for Setup.
    void setSetupFits(bool fits);

  private:
    platform::Published<StripPresentation> current{StripPresentation::setup};
    platform::Published<std::optional<StripPresentation>> choice;
};

/// Returns the name under which a choice is stored.
std::string_view nameOf(StripPresentation presentation);
/// Returns the choice stored under this name; absent if there is none.
std::optional<StripPresentation> presentationNamed(std::string_view name);

} // namespace orvane::ui
