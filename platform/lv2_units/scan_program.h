#pragma once

#include <filesystem>

namespace orvane::platform::lv2_units {

// The program that reads bundles in a process of its own, so that hostile data ends only that.

/// Its first argument, before the path of a folder: what to write about it.
inline constexpr const char* listArgument = "--list";
inline constexpr const char* bundleArgument = "--bundle";

/// Where it is: beside the program that runs, or at its installed place from there. Any thread.
std::filesystem::path scanProgram();

/// Its main function: writes the bundles in a folder, or the contents of a bundle, to the standard output as
/// a property list. Returns the exit code.
int runScanProgram(int argumentCount, const char* const* arguments);

} // namespace orvane::platform::lv2_units
