// Arguments of orvane result in options within their limits or end the program with one of its exit codes.

#include "app/command_line.h"
#include "arguments.h"
#include "engine/buffer_sizes.h"
#include "fuzzer.h"

#include <variant>

using namespace orvane;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::Arguments arguments(data, size);
    const fuzz::Muted muted;
    const auto read = app::readCommandLine(arguments.count(), arguments.values());
    if (const int* const exitCode = std::get_if<int>(&read)) {
        fuzz::require(*exitCode == 0 || *exitCode == 2);
        return 0;
    }
    const ui::LaunchOptions& launch = std::get<app::CommandLine>(read).launch;
    fuzz::require(!launch.channels || (*launch.channels >= 1 && *launch.channels <= 48));
    fuzz::require(!launch.bufferSize || engine::isBufferSize(*launch.bufferSize));
    return 0;
}
