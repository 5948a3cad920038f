#pragma once

#include "platform/effects/audio_unit_host.h"

#include <cstdint>
#include <memory>
#include <string>

namespace orvane::platform {

// The windows that editors of effects are shown in.

inline constexpr std::uint32_t NSWindowStyleMaskTitled = 1;
inline constexpr std::uint32_t NSWindowStyleMaskClosable = 2;
inline constexpr std::uint32_t NSWindowStyleMaskMiniaturizable = 4;
inline constexpr std::uint32_t NSWindowStyleMaskResizable = 8;

/// Owns a window, and closes it when destroyed. Main thread.
class NSWindowController {
  public:
    virtual ~NSWindowController() = default;

    virtual void showWindow() = 0;
    /// Brings the window to the front and gives it the keyboard focus.
    virtual void makeKeyAndOrderFront() = 0;
    /// Whether the user has closed the window; it does not reopen.
    [[nodiscard]] virtual bool isClosed() const = 0;
};

/// Makes windows for editors. Main thread.
class EditorWindows {
  public:
    virtual ~EditorWindows() = default;

    /// Returns a hidden window with the editor as its content, which lives as long as the window.
    virtual std::unique_ptr<NSWindowController> windowWithContentViewController(
        std::shared_ptr<AUViewController> content, const std::string& title, std::uint32_t styleMask
    ) = 0;
};

} // namespace orvane::platform
