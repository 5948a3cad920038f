#pragma once

#include "machine/audio_machine.h"
#include "ui/windows/launch_options.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string_view>
#include <variant>

namespace orvane::app {

/// The arguments that the program was started with.
struct CommandLine {
    machine::AudioMachineOptions machine = {};
    std::optional<std::filesystem::path> session = {};
    /// `engine::Services::insertWorkers`.
    std::size_t insertWorkers = 0;
    /// Without the session, which is read later.
    ui::LaunchOptions launch = {};
};

/// Reads the arguments. Returns an exit code if the program must end at once: it has printed its help, its
/// version, or an error. Main thread.
std::variant<CommandLine, int> readCommandLine(int argc, const char* const* argv);

/// Writes a sentence to standard error as one line "orvane: ..."; a failure to write is ignored. Main thread.
void printMessage(std::string_view sentence);

} // namespace orvane::app
