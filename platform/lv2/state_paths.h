#pragma once

#include "platform/base/result.h"

#include <lv2/core/lv2.h>
#include <lv2/state/state.h>

#include <array>
#include <mutex>
#include <optional>
#include <string>

namespace orvane::platform::lv2 {

/// The paths in the state of one plugin, and the state:mapPath and state:freePath features that turn them
/// into files. States keep absolute paths. A state may come from anywhere, so a plugin gets only paths of
/// existing regular files that the user may read; any other path becomes empty. Owned by the plugin's
/// instance. Any thread except audio threads.
class StatePaths final {
  public:
    explicit StatePaths(std::string pluginName);
    StatePaths(const StatePaths&) = delete;
    StatePaths& operator=(const StatePaths&) = delete;

    /// Valid as long as this object.
    std::array<LV2_Feature, 2> features();

    /// Returns whether the plugin may have a path; the empty path is permitted. Keeps the first refusal.
    bool permits(const std::string& path);

    /// Returns the first refusal since the last call, as a sentence for the user.
    std::optional<Error> takeRefusal();

  private:
    std::string name;
    LV2_State_Map_Path mapPath;
    LV2_State_Free_Path freePath;
    std::mutex mutex;
    std::optional<Error> refusal;
};

} // namespace orvane::platform::lv2
