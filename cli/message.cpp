#include "cli/message.h"

#include "machine/process.h"

namespace orvane::cli {

void printMessage(std::string_view sentence) {
    machine::printMessage("orvane-cli", sentence);
}

} // namespace orvane::cli
