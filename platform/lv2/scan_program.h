#pragma once

#include <filesystem>

namespace orvane::platform::lv2 {

// The program that reads bundles in a process of its own, so that hostile data ends only that.

/// Its first argument, before the path of a folder: what to write about it.
inline constexpr const char* listArgument = "--list";
inline constexpr const char* bundleArgument = "--bundle";
/// Before the path of a bundle, the URI of a preset and the URI of a plugin that the preset is for.
inline constexpr const char* presetArgument = "--preset";

/// Where it is: beside the program that runs, or at its installed place from there. Any thread.
std::filesystem::path scanProgram();

/// Its main function: writes the bundles in a folder, the contents of a bundle, or the full state that a
/// preset stands for, to the standard output as a property list. Returns the exit code.
int runScanProgram(int argumentCount, const char* const* arguments);

} // namespace orvane::platform::lv2
