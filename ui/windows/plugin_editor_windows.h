#pragma once

#include "platform/effects/editor_windows.h"

#include <memory>
#include <string>

namespace orvane::ui {

/// Shows the editors of plugins in windows of their own. Must outlive the windows it makes. Main thread.
class PluginEditorWindows final : public platform::EditorWindows {
  public:
    std::unique_ptr<platform::NSWindowController> windowWithContentViewController(
        std::shared_ptr<platform::AUViewController> content, const std::string& title, std::uint32_t styleMask
    ) override;
};

} // namespace orvane::ui
