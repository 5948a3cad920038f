#include "machine/message.h"

#include "platform/base/plain_text.h"
#include "platform/base/standard_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

namespace orvane::machine {

void printMessage(std::string_view program, std::string_view sentence) {
    std::string text(sentence);
    std::ranges::replace(text, '\n', ' ');
    platform::writeToStandardError(fmt::format("{}: {}\n", program, platform::plainText(text)));
}

} // namespace orvane::machine
