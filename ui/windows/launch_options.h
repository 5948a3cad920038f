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

/// The command line's options for the first session of a launch. A plain value.
struct LaunchOptions {
    /// The session to open.
    std::optional<session::MixerDocumentData> session = {};
    /// The file of that session.
    std::optional<std::filesystem::path> sessionFile = {};
    /// Number of strips; the session's, or else the remembered number, if absent.
    std::optional<std::int64_t> channels = {};
    /// The uid of the main device; that of last time, if it is there, if absent.
    std::optional<std::string> device = {};
    /// The uid of a device for the master bus; that of last time, if it is there, if absent.
    std::optional<std::string> masterDevice = {};
    /// In frames; the session's if absent.
    std::optional<std::int64_t> bufferSize = {};
    /// The sample rate of the devices, in Hz; their own if absent.
    std::optional<unsigned> sampleRate = {};
    /// Whether to start the audio at once, on the first usable device if none is named.
    bool start = false;
};

/// Returns the number of strips that the options ask for. If only a session does, returns the smallest
/// offered count that holds it, or the largest one. Absent if they leave it open.
std::optional<std::int64_t> channelCountFor(const LaunchOptions& options);

/// Selects the devices that the options name in a new engine. Called before the session is loaded, whose
/// routing then takes precedence. Returns a sentence for each failure; everything else is done. Main thread.
std::vector<std::string>
selectDevices(engine::MixerEngine& mixer, platform::AudioHardware& hardware, const LaunchOptions& options);

/// Applies the remaining options to an engine that has its devices and its session, and starts it if
/// requested. Main thread.
void launch(engine::MixerEngine& mixer, const LaunchOptions& options);

} // namespace orvane::ui
