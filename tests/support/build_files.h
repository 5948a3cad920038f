#pragma once

#include "platform/files/user_folders.h"

#include <filesystem>
#include <string>
#include <string_view>

// Files of the build that a test runs in, found from the test program itself: no path is compiled in, so that
// all clones of the tree share a compiler cache.

namespace orvane::test {

/// The program `name` of this build.
inline std::string builtProgram(std::string_view name) {
    return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / name).string();
}

/// The library `name` of this build, to be loaded by path.
inline std::string builtModule(std::string_view name) {
    const auto programs = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    return (programs.parent_path() / "lib" / name).string() + ".so";
}

/// The demo panel's recording: eight channels at 48 kHz.
inline std::filesystem::path panelRecording() {
    return platform::programDataDirectory() / "demo/panel-8ch.flac";
}

} // namespace orvane::test
