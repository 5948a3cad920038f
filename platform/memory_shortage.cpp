#include "platform/memory_shortage.h"

#include <unistd.h>

#include <string_view>

namespace orvane::platform {

void reportMemoryShortage() noexcept {
    constexpr std::string_view line = "There was not enough memory for something that was to be done, so it "
                                      "is left out; the mix goes on.\n";
    // Where nobody reads it, there is nobody else to tell.
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, line.data(), line.size());
}

} // namespace orvane::platform
