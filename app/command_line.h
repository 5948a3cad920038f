#pragma once

#include "machine/audio_machine.h"
#include "ui/windows/launch_options.h"

#include <filesystem>
#include <optional>
#include <string_view>
#include <variant>

namespace orvane::app {

/// What the program was started with.
struct CommandLine {
    machine::AudioMachineOptions machine = {};
    std::optional<std::filesystem::path> session = {};
    /// Without the session, which has not been read yet.
    ui::LaunchOptions launch = {};
};

/// Reads the arguments, or gives the exit code with which the program is to end: having printed its help or
/// version, or what is wrong with them. Main thread.
std::variant<CommandLine, int> readCommandLine(int argc, const char* const* argv);

/// Writes a sentence to standard error as one line "orvane: ...", as far as that can be written. Main thread.
void printMessage(std::string_view sentence);

} // namespace orvane::app
