#pragma once

#include "platform/base/result.h"

#include <lv2/core/lv2.h>
#include <lv2/state/state.h>

#include <array>
#include <mutex>
#include <optional>
#include <string>

namespace orvane::platform::lv2 {

/// The paths in the state of one plugin, and the features by which it turns them into files: state:mapPath
/// and state:freePath. States keep absolute paths. A state may come from anybody, so a plugin gets a path of
/// it only if that is an existing regular file that the user may read; any other path becomes an empty one.
/// Owned by the plugin's instance. Any thread but the audio ones.
class StatePaths final {
  public:
    explicit StatePaths(std::string pluginName);
    StatePaths(const StatePaths&) = delete;
    StatePaths& operator=(const StatePaths&) = delete;

    /// Valid as long as this object.
    std::array<LV2_Feature, 2> features();

    /// Returns whether the plugin may have a path; an empty one is no file and may be had. Keeps the first
    /// refusal.
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
