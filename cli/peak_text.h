#pragma once

#include "audio/signal_peaks.h"

#include <nlohmann/json.hpp>

#include <span>
#include <string>

namespace orvane::cli {

/// Returns the peaks of the outputs in use for programs: an array of objects with number, peak and overs.
nlohmann::json peaksJSON(std::span<const audio::SignalPeak> outputs);

/// Returns the overs of outputs for people, such as "12 overs on output 1, 1 over on output 2"; empty if
/// there are none.
std::string oversText(std::span<const audio::SignalPeak> outputs);

} // namespace orvane::cli
