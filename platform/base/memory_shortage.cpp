#include "platform/base/memory_shortage.h"

#include "platform/base/standard_error.h"

namespace orvane::platform {

void reportMemoryShortage() noexcept {
    writeToStandardError("There was not enough memory for something that was to be done, so it is left out; "
                         "the mix goes on.\n");
}

} // namespace orvane::platform
