// Arguments of orvane-cli result in a valid request or end the program with one of its exit codes.

#include "cli/command_line.h"
#include "arguments.h"
#include "fuzzer.h"

#include <variant>

using namespace orvane;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::Arguments arguments(data, size);
    const fuzz::Muted muted;
    const auto asked = cli::readCommandLine(arguments.count(), arguments.values());
    if (const int* const exitCode = std::get_if<int>(&asked))
        fuzz::require(*exitCode == 0 || *exitCode == 2);
    else
        fuzz::require(std::get<cli::Action>(asked) != nullptr);
    return 0;
}
