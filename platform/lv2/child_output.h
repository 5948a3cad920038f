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

/// The limits beyond which a child process is killed.
struct ChildLimits {
    std::chrono::milliseconds time{60'000};
    std::size_t outputBytes = 4U << 20U;
};

/// Why a child returned no output.
struct ChildFailure {
    /// The end of a sentence whose subject is the child's input.
    std::string why;
    /// Whether the child itself failed and would fail again.
    bool isPermanent = false;
};

/// Runs a program in a process that shares only its environment with this one, and returns its standard
/// output. Fails if it cannot be started, does not exit with code 0, exceeds a limit, or `stop` is requested.
/// Does not wait for a child that cannot be killed. Any thread except audio threads.
Result<std::vector<std::uint8_t>, ChildFailure> outputOfChild(
    const std::filesystem::path& program, const std::vector<std::string>& arguments,
    const ChildLimits& limits, const std::stop_token& stop
);

} // namespace orvane::platform::lv2
