#include "cli/print_result.h"

#include "cli/message.h"
#include "cli/terminal_text.h"

#include <fmt/format.h>

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>

namespace orvane::cli {

namespace {

bool write(std::string_view text) {
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
}

} // namespace

int printResult(std::string_view text) {
    if (::isatty(STDOUT_FILENO) == 1 ? write(terminalText(text)) : write(text)) return 0;
    const int error = errno;
    if (error == EPIPE) return 0;
    printMessage(fmt::format("The result could not be written: {}.", std::generic_category().message(error)));
    return 1;
}

} // namespace orvane::cli
