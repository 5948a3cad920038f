#pragma once

#include "cli/output_overrides.h"
#include "machine/audio_machine.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace orvane::cli {

enum class MeterStyle { text, json, none };

/// The options of a live run.
struct LiveRunOptions {
    machine::AudioMachineOptions machine = {};
    /// The session that sets the mix up; a fresh one if absent.
    std::optional<std::filesystem::path> session = {};
    /// Number of strips; the session's, or else the number of device inputs, if absent.
    std::optional<std::size_t> channels = {};
    /// The uid of a device for the master bus.
    std::optional<std::string> masterDevice = {};
    /// In frames; the session's, or else the device's current size, if absent.
    std::optional<std::int64_t> bufferSize = {};
    OutputOverrides outputOverrides = {};
    /// `engine::Services::insertWorkers`.
    std::size_t insertWorkers = 0;
    /// The id of the MIDI source to listen to; all of them if absent.
    std::optional<std::int32_t> midiSource = {};
    /// The number of the snapshot, from 1, that the next note is to recall from then on.
    std::optional<std::int64_t> learn = {};
    /// Whether to save over a session file that is write-protected or was changed by another program.
    bool force = false;
    /// How long to run; until a signal if absent.
    std::optional<double> seconds = {};
    MeterStyle meters = MeterStyle::text;
};

/// Runs the mixer live without a window until it ends by its options or a signal. Returns the exit code.
/// Prints errors, warnings and a final summary to standard error. Main thread.
int runLive(const LiveRunOptions& options);

} // namespace orvane::cli
