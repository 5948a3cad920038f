#include "cli/print_result.h"

#include "cli/message.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace orvane::cli {

int printResult(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0) return 0;
    const int error = errno;
    if (error == EPIPE) return 0;
    printMessage(fmt::format("The result could not be written: {}.", std::generic_category().message(error)));
    return 1;
}

} // namespace orvane::cli
