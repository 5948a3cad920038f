#pragma once

#include <lv2/core/lv2.h>

#include <array>

namespace orvane::platform::lv2_units {

/// The features by which plugins turn the paths in their state into files: state:mapPath and state:freePath.
/// A session may come from anybody, so no path in it leads to a file; paths are as if the file were gone.
std::array<LV2_Feature, 2> statePathFeatures();

} // namespace orvane::platform::lv2_units
