#pragma once

#include "cli/output_overrides.h"
#include "cli/render_report.h"
#include "platform/base/result.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>

namespace orvane::cli {

/// The options of an offline run.
struct RenderOptions {
    /// The sound file whose channels are the device's inputs; "-" is standard input.
    std::filesystem::path input = {};
    /// The sound file for the device's outputs; "-" is standard output.
    std::filesystem::path output = {};
    /// The session that sets the mix up; a fresh one if absent.
    std::optional<std::filesystem::path> session = {};
    /// Number of strips; the session's, or else the number of input channels, if absent.
    std::optional<std::size_t> channels = {};
    /// Number of device outputs; enough for the highest one in use, at least two, if absent.
    std::optional<std::size_t> outputs = {};
    /// In frames, one of the sizes that the mixer offers; the session's if absent.
    std::optional<std::int64_t> bufferSize = {};
    OutputOverrides outputOverrides = {};
    /// The folder for one sound file per strip.
    std::optional<std::filesystem::path> stems = {};
    /// The file for the figures.
    std::optional<std::filesystem::path> report = {};
};

/// The most channels that a sound file holds, and so the most strips and outputs of a render.
inline constexpr std::size_t mostRenderChannels = 1024;

/// Receives the progress of a run.
struct RenderObserver {
    /// Called with a sentence about anything that will not sound as requested.
    std::function<void(std::string_view)> warn;
    /// Called after every block with the share of the work that is done, 0 to 1.
    std::function<void(double)> progress;
    /// Returns whether to stop.
    std::function<bool()> isCancelled;
    /// Called when all files are complete; only the mixer remains to be destroyed.
    std::function<void()> written = [] {};
};

/// Mixes a sound file as the live mixer would, faster than real time. The same input gives the same bytes. If
/// it fails or is cancelled, it leaves no new file and keeps existing ones.
platform::Result<RenderReport> render(const RenderOptions& options, const RenderObserver& observer);

} // namespace orvane::cli
