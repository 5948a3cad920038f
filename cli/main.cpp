#include "cli/command_line.h"
#include "cli/printing.h"
#include "machine/process.h"
#include "machine/signals.h"

#include <fmt/format.h>

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
        return orvane::cli::fail("There is not enough memory for this.");
    } catch (const std::system_error& error) {
        return orvane::cli::fail(fmt::format("The system lacks a resource: {}.", error.code().message()));
    }
}
