#pragma once

#include <filesystem>

namespace orvane::platform::lv2 {

// The program that reads bundles in a separate process, so that hostile data can only end that process.

/// The first argument, followed by a folder: what to report about it.
inline constexpr const char* listArgument = "--list";
inline constexpr const char* bundleArgument = "--bundle";
/// Followed by the path of a bundle, the URI of a preset and the URI of a plugin.
inline constexpr const char* presetArgument = "--preset";

/// The program's path: beside the running program, or at its installed place relative to it. Any thread.
std::filesystem::path scanProgram();

/// The main function: writes the bundles in a folder, the contents of a bundle, or the full state of a preset
/// to the standard output, as a property list. Returns the exit code.
int runScanProgram(int argumentCount, const char* const* arguments);

} // namespace orvane::platform::lv2
