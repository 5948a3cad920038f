#include "cli/message.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <string>

namespace orvane::cli {

void printMessage(std::string_view sentence) {
    std::string line(sentence);
    std::ranges::replace(line, '\n', ' ');
    fmt::print(stderr, "orvane-cli: {}\n", line);
}

} // namespace orvane::cli
