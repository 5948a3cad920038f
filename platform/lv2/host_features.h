#pragma once

#include "platform/base/result.h"
#include "platform/lv2/common_features.h"
#include "platform/lv2/host_services.h"
#include "platform/lv2/plugin_description.h"
#include "platform/lv2/state_paths.h"

#include <lv2/core/lv2.h>
#include <lv2/options/options.h>
#include <lv2/worker/worker.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace orvane::platform::lv2 {

/// The features offered to an instance of a plugin. Must outlive the instance, which keeps pointers into it;
/// not movable.
class HostFeatures final {
  public:
    /// `schedule` and `paths` belong to the same instance. `sampleRate` in Hz, `maximumFrames` per block.
    HostFeatures(
        HostServices& hostServices, const std::string& pluginName, LV2_Worker_Schedule* schedule,
        StatePaths& paths, double sampleRate, std::uint32_t maximumFrames
    );
    HostFeatures(const HostFeatures&) = delete;
    HostFeatures& operator=(const HostFeatures&) = delete;

    /// The null-terminated list that plugins expect.
    [[nodiscard]] const LV2_Feature* const* list() const { return pointers.data(); }

  private:
    static constexpr std::size_t featureCount = 9;

    CommonFeatures common;
    std::array<std::int32_t, 4> blockLengths;
    float optionSampleRate;
    std::array<LV2_Options_Option, 6> options;
    std::array<LV2_Feature, featureCount> features;
    std::array<const LV2_Feature*, featureCount + 1> pointers;
};

/// Why a plugin cannot be instantiated, judged by its description; absent if it can.
std::optional<Error> whyNotInstantiable(const PluginDescription& description);

/// Whether a plugin can be instantiated and supports a format, judged by its description.
bool isHostable(const PluginDescription& description);

} // namespace orvane::platform::lv2
