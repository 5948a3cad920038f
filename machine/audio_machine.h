#pragma once

#include "platform/audio_hardware/system_audio_hardware.h"
#include "platform/base/result.h"
#include "platform/base/system_log.h"
#include "platform/desktop/device_reservations.h"
#include "platform/desktop/realtime_kit.h"
#include "platform/jack/jack_clients.h"
#include "platform/lv2/lv2_unit_host.h"
#include "platform/midi_services/midi_driver.h"
#include "platform/midi_services/system_midi_services.h"
#include "platform/pipewire/pipewire_graph.h"
#include "platform/virtual/output_recorder.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvane::machine {

/// The sound servers that the program's drivers share. Outlives them.
struct SoundServers {
    /// `clientName`: the name of the program's JACK clients and PipeWire nodes.
    explicit SoundServers(const std::string& clientName = "ORVANE");

    platform::jack::JackClients jack;
    /// Null if ORVANE_DRIVERS excludes PipeWire.
    std::unique_ptr<platform::pipewire::PipeWireGraph> pipeWire;

    /// Whether ORVANE_DRIVERS names JACK or nothing, and JACK would not only list PipeWire's nodes again.
    [[nodiscard]] bool isJackWanted() const;
};

/// Makes the MIDI drivers that ORVANE_DRIVERS names, or all of them. The ALSA sequencer, which reaches
/// hardware directly, comes before the servers, which may bridge to it. `servers` must outlive them.
std::vector<std::unique_ptr<platform::MIDIDriver>>
makeMIDIDrivers(SoundServers& servers, platform::SystemLog* log = nullptr);

/// The sample rates that can be requested, in Hz.
inline constexpr unsigned lowestSampleRate = 8000;
inline constexpr unsigned highestSampleRate = 384000;

/// The program's options for its audio hardware.
struct AudioMachineOptions {
    /// The sound file that a virtual device plays.
    std::optional<std::filesystem::path> virtualInput = {};
    /// The sound file to record the main device's outputs to; the main device is then a virtual one.
    std::optional<std::filesystem::path> record = {};
    /// The uid of the main device; the first usable one if absent.
    std::optional<std::string> device = {};
    /// In Hz, for devices that offer it; the device's own if absent.
    std::optional<unsigned> sampleRate = {};
    /// The name of the program's JACK clients and PipeWire nodes.
    std::string clientName = "ORVANE";
};

/// The audio hardware, effects, MIDI services and log of a program. Made by its composition root. Outlives
/// the engine; is destroyed before the main thread that the engine posts to.
class AudioMachine final {
  public:
    /// Without hardware; programs call `make`.
    explicit AudioMachine(const std::string& clientName);
    /// Writes the remaining log lines.
    ~AudioMachine() { log.flush(); }
    AudioMachine(const AudioMachine&) = delete;
    AudioMachine& operator=(const AudioMachine&) = delete;

    /// Makes the drivers that ORVANE_DRIVERS names, or all of them: PipeWire, JACK, ALSA, and the
    /// virtual devices last. JACK is left out where it would only list the nodes of PipeWire again.
    /// Fails if a file cannot be played or recorded.
    static platform::Result<std::unique_ptr<AudioMachine>> make(const AudioMachineOptions& options);

    platform::SystemLog log{platform::quietUntilAnError(platform::standardErrorSink())};

    /// The uid of the device that the options ask for: the one they name, or the virtual one that plays or is
    /// recorded; absent if they leave it open.
    std::optional<std::string> mainUID;

    /// The recorder of the main device; null if it is not recorded.
    [[nodiscard]] platform::virtual_devices::OutputRecorder* recorder() { return outputRecorder.get(); }
    [[nodiscard]] platform::AudioHardware& hardware() { return *audioHardware; }
    [[nodiscard]] platform::AudioUnitHost& audioUnits() { return audioUnitHost; }
    /// Cancels the search for effects, so that the program can end at once. Any thread.
    void cancelScan() { audioUnitHost.cancelScan(); }
    [[nodiscard]] platform::PriorityLender& priorityLender() { return realtimeKit; }
    [[nodiscard]] platform::MIDIServices& midi() { return midiServices; }

  private:
    SoundServers servers;
    platform::desktop::RealtimeKit realtimeKit;
    platform::desktop::DeviceReservations reservations;
    platform::lv2::Lv2UnitHost audioUnitHost{
        log, platform::lv2::environmentSearchPath(), platform::lv2::effectCacheFile()};
    platform::SystemMIDIServices midiServices{makeMIDIDrivers(servers, &log)};
    std::shared_ptr<platform::virtual_devices::OutputRecorder> outputRecorder;
    std::unique_ptr<platform::SystemAudioHardware> audioHardware;
};

} // namespace orvane::machine
