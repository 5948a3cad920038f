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

/// A window and what keeps it: closes it when destroyed. Main thread.
class NSWindowController {
  public:
    virtual ~NSWindowController() = default;

    virtual void showWindow() = 0;
    /// In front of all others, with the keyboard.
    virtual void makeKeyAndOrderFront() = 0;
    /// The user has closed the window; it does not come back.
    [[nodiscard]] virtual bool isClosed() const = 0;
};

/// Makes windows for editors. Of a program that has windows. Main thread.
class EditorWindows {
  public:
    virtual ~EditorWindows() = default;

    /// A window, not yet shown, whose content is the editor; the content lives as long as the window.
    virtual std::unique_ptr<NSWindowController> windowWithContentViewController(
        std::shared_ptr<AUViewController> content, const std::string& title, std::uint32_t styleMask
    ) = 0;
};

} // namespace orvane::platform
