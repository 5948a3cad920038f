#pragma once

#include "machine/audio_machine.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace orvane::cli {

enum class MeterStyle { text, json, none };

/// What is to be run.
struct LiveRunOptions {
    machine::AudioMachineOptions machine = {};
    /// The session that sets the mix up; a fresh one if absent.
    std::optional<std::filesystem::path> session = {};
    /// Strips; as many as the session or else the device's inputs if absent.
    std::optional<std::size_t> channels = {};
    /// The uid of a device for the master bus.
    std::optional<std::string> masterDevice = {};
    /// In frames; the session's or else the device's present one if absent.
    std::optional<std::int64_t> bufferSize = {};
    /// The id of the MIDI source to listen to; all of them if absent.
    std::optional<std::int32_t> midiSource = {};
    /// The snapshot of the session, counted from 1, that the next note is to recall from then on.
    std::optional<std::int64_t> learn = {};
    /// Whether a save replaces a session file that is write-protected or was changed by another program.
    bool force = false;
    /// How long to run; until a signal if absent.
    std::optional<double> seconds = {};
    MeterStyle meters = MeterStyle::text;
};

/// Runs the mixer live without a window until it is told to stop; returns the exit code. Says on standard
/// error what fails, what to mind, and at the end how the run went. Main thread.
int runLive(const LiveRunOptions& options);

} // namespace orvane::cli
