#include "cli/command_line.h"
#include "cli/message.h"
#include "machine/process.h"
#include "machine/signals.h"

#include <fmt/format.h>

#include <cstdlib>
#include <new>
#include <system_error>
#include <variant>

int main(int argc, char** argv) {
    // A request to save that arrives before or after the mix must not end the program.
    orvane::machine::keepSaveSignal();
    orvane::machine::prepareProcess();
    try {
        const auto asked = orvane::cli::readCommandLine(argc, argv);
        if (const int* const exitCode = std::get_if<int>(&asked)) return *exitCode;
        return std::get<orvane::cli::Action>(asked)();
    } catch (const std::bad_alloc&) {
        orvane::cli::printMessage("There is not enough memory for this.");
        return EXIT_FAILURE;
    } catch (const std::system_error& error) {
        orvane::cli::printMessage(
            fmt::format("The system refuses what is needed for this: {}.", error.code().message())
        );
        return EXIT_FAILURE;
    }
}
