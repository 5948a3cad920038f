#include "platform/files/program_data.h"

#include <system_error>

namespace orvane::platform {

std::filesystem::path programDataDirectory() {
    std::error_code ignored;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", ignored);
    return (program.parent_path() / ORVANE_DATA_FROM_PROGRAMS).lexically_normal();
}

} // namespace orvane::platform
