#pragma once

#include "platform/audio_hardware/audio_hardware.h"
#include "platform/base/host_clock.h"
#include "platform/base/main_thread.h"
#include "platform/base/system_log.h"
#include "platform/effects/audio_unit_host.h"
#include "platform/effects/editor_windows.h"
#include "platform/midi_services/midi_services.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace orvane::engine {

/// The platform services that an engine works with. Made by the composition root; all outlive the engine.
struct Services {
    platform::AudioHardware& audioHardware;
    platform::MIDIServices& midiServices;
    platform::MainThread& mainThread;
    platform::AudioUnitHost& audioUnitHost;
    platform::SystemLog& log;
    /// Where plugin presets are kept; nowhere if absent.
    std::optional<std::filesystem::path> applicationSupport = {};
    /// Absent in a program without windows.
    platform::EditorWindows* editorWindows = nullptr;
    platform::HostClock clock = platform::HostClock::system();
    /// Real-time threads that help a run with its inserts, `audio::InsertWorkers`, as far as they get that
    /// priority; none if the device's clock is stepped, which they cannot keep up with by themselves.
    std::size_t insertWorkers = 0;
};

} // namespace orvane::engine
