#pragma once

#include "cli/render_report.h"
#include "platform/base/result.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::cli {

/// What is to be rendered.
struct RenderOptions {
    /// The sound whose channels are the device's inputs; "-" is standard input.
    std::filesystem::path input = {};
    /// What the device's outputs carry; "-" is standard output.
    std::filesystem::path output = {};
    /// The session that sets the mix up; a fresh one if absent.
    std::optional<std::filesystem::path> session = {};
    /// Strips; as many as the session or else the input has if absent.
    std::optional<std::size_t> channels = {};
    /// Outputs of the device; enough for the highest one in use, at least two, if absent.
    std::optional<std::size_t> outputs = {};
    /// In frames, one of the sizes that the mixer offers; the session's if absent.
    std::optional<std::int64_t> bufferSize = {};
    /// The folder for one sound file per strip.
    std::optional<std::filesystem::path> stems = {};
    /// The file for the figures.
    std::optional<std::filesystem::path> report = {};
};

/// The most channels that a sound file holds, and so the most strips and outputs that can be rendered.
inline constexpr std::size_t mostRenderChannels = 1024;

/// How a run speaks while it works.
struct RenderObserver {
    /// A sentence about something that will not be heard as asked.
    std::function<void(std::string_view)> warn;
    /// The share of the work that is done, 0 to 1, after every block.
    std::function<void(double)> progress;
    /// Whether to give up.
    std::function<bool()> isCancelled;
    /// All files are whole; what follows only lets go of the mixer.
    std::function<void()> written = [] {};
};

/// Mixes a sound file as the mixer would live, faster than real time. Nothing that fails or is cancelled
/// leaves a file behind, and what had the name before stays. Same input, same bytes out.
platform::Result<RenderReport> render(const RenderOptions& options, const RenderObserver& observer);

} // namespace orvane::cli
