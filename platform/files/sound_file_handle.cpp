#include "platform/files/sound_file_handle.h"

#include <string_view>

namespace orvane::platform {

std::string soundFileProblem(SNDFILE* file) {
    constexpr std::string_view systemPrefix = "System error : ";
    std::string_view problem = sf_strerror(file);
    if (problem.starts_with(systemPrefix)) problem.remove_prefix(systemPrefix.size());
    if (problem.ends_with('.')) problem.remove_suffix(1);
    return std::string(problem);
}

} // namespace orvane::platform
