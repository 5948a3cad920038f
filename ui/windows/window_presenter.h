#pragma once

#include "ui/windows/about_view.h"
#include "ui/windows/help_view.h"

#include <QWidget>

#include <memory>

namespace orvane::ui {

/// Shows a window in front of the others, even if it was minimised. Esc closes it, and it does not keep the
/// program running. Main thread.
void bringToFront(QWidget& window);

/// Shows a single window: makes it at first use, keeps it, and later brings it to the front. Main thread.
template <class View>
class WindowPresenter final {
  public:
    void show() {
        if (!controller) controller = std::make_unique<View>();
        bringToFront(*controller);
    }

    /// Null until it was first shown.
    [[nodiscard]] View* window() const { return controller.get(); }

  private:
    std::unique_ptr<View> controller;
};

using AboutWindowPresenter = WindowPresenter<AboutView>;
using HelpWindowPresenter = WindowPresenter<HelpView>;

} // namespace orvane::ui
