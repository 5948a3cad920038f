#pragma once

#include "engine/mixer_engine.h"
#include "engine/session/mixer_document_data.h"
#include "platform/audio_hardware/audio_hardware.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orvane::ui {

/// What the first session of a launch is told by the command line. A plain value.
struct LaunchOptions {
    /// The session to begin with.
    std::optional<session::MixerDocumentData> session = {};
    /// The file that it was read from.
    std::optional<std::filesystem::path> sessionFile = {};
    /// Strips; the session's or else the remembered number if absent.
    std::optional<std::int64_t> channels = {};
    /// The uid of the main device.
    std::optional<std::string> device = {};
    /// The uid of a device for the master bus.
    std::optional<std::string> masterDevice = {};
    /// In frames; the session's if absent.
    std::optional<std::int64_t> bufferSize = {};
    /// The rate that the devices are to run at, in Hz; theirs if absent.
    std::optional<unsigned> sampleRate = {};
    /// Whether audio starts at once, on the first usable device if none is named.
    bool start = false;
};

/// The number of strips that the options ask for; where only a session does, the smallest size on offer that
/// holds it, or the largest. Nothing if they leave it open.
std::optional<std::int64_t> channelCountFor(const LaunchOptions& options);

/// Selects the devices that the options name in a fresh engine; before it is given the session, whose routing
/// is then the one that counts. Returns what could not be done, a sentence each; all else is done. Main
/// thread.
std::vector<std::string>
selectDevices(engine::MixerEngine& mixer, platform::AudioHardware& hardware, const LaunchOptions& options);

/// Sets up and starts an engine that has its devices and the session as the rest of the options says. Main
/// thread.
void launch(engine::MixerEngine& mixer, const LaunchOptions& options);

} // namespace orvane::ui
