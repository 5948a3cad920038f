#pragma once

#include "platform/base/result.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <stop_token>
#include <string>
#include <vector>

namespace orvane::platform::lv2 {

/// What a child process may take before it is killed.
struct ChildLimits {
    std::chrono::milliseconds time{60'000};
    std::size_t outputBytes = 4U << 20U;
};

/// Why a child gave no output.
struct ChildFailure {
    /// Ends a sentence that names what the child worked on.
    std::string why;
    /// Whether the child itself failed, and so would again.
    bool isItsOwn = false;
};

/// Runs a program with these arguments, in a process that shares nothing with this one but its environment,
/// and returns what it wrote to its standard output. Fails if it cannot be started, does not end with the
/// exit code 0, exceeds a limit, or `stop` is requested. Never waits for a child that cannot be killed. Any
/// thread but the audio ones.
Result<std::vector<std::uint8_t>, ChildFailure> outputOfChild(
    const std::filesystem::path& program, const std::vector<std::string>& arguments,
    const ChildLimits& limits, const std::stop_token& stop
);

} // namespace orvane::platform::lv2
