#pragma once

#include <filesystem>

namespace orvane::platform {

/// Where the files are that the program comes with: at their place from where the program itself is, so that
/// an installed tree may be moved as a whole. Any thread but the audio ones.
std::filesystem::path programDataDirectory();

} // namespace orvane::platform
