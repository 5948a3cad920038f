#pragma once

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

/// The features that an instance of a plugin is offered. Lives as long as the instance; stays where it is,
/// for the plugin keeps pointers into it.
class HostFeatures final {
  public:
    /// `schedule`: of the instance's worker. `paths`: the instance's. `sampleRate` in Hz, `maximumFrames` per
    /// block.
    HostFeatures(
        HostServices& hostServices, const std::string& pluginName, LV2_Worker_Schedule* schedule,
        StatePaths& paths, double sampleRate, std::uint32_t maximumFrames
    );
    HostFeatures(const HostFeatures&) = delete;
    HostFeatures& operator=(const HostFeatures&) = delete;

    /// As plugins take them: pointers, the last one null.
    [[nodiscard]] const LV2_Feature* const* list() const { return pointers.data(); }

    /// Why a plugin that must have something else cannot be hosted.
    static std::optional<Error> whyUnsupported(const PluginDescription& description);

  private:
    static constexpr std::size_t featureCount = 9;

    CommonFeatures common;
    std::array<std::int32_t, 4> blockLengths;
    float optionSampleRate;
    std::array<LV2_Options_Option, 6> options;
    std::array<LV2_Feature, featureCount> features;
    std::array<const LV2_Feature*, featureCount + 1> pointers;
};

} // namespace orvane::platform::lv2
