#pragma once

#include "platform/audio_hardware/system_audio_hardware.h"
#include "platform/base/result.h"
#include "platform/base/system_log.h"
#include "platform/desktop/device_reservations.h"
#include "platform/desktop/realtime_kit.h"
#include "platform/jack/jack_audio_driver.h"
#include "platform/jack/jack_clients.h"
#include "platform/lv2/lv2_unit_host.h"
#include "platform/midi_services/midi_driver.h"
#include "platform/midi_services/system_midi_services.h"
#include "platform/virtual/output_recorder.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvane::machine {

/// The ways to MIDI sources that ORVANE_DRIVERS names, or all: the ALSA sequencer, which reaches hardware
/// directly, before JACK, which may have bridges to it. `clients` outlives them.
std::vector<std::unique_ptr<platform::MIDIDriver>>
makeMIDIDrivers(platform::jack::JackClients& clients, platform::SystemLog* log = nullptr);

/// The rates that may be asked for, in Hz.
inline constexpr unsigned lowestSampleRate = 8000;
inline constexpr unsigned highestSampleRate = 384000;

/// What a program is told about the machine's audio.
struct AudioMachineOptions {
    /// The sound file that a virtual device plays.
    std::optional<std::filesystem::path> virtualInput = {};
    /// The sound file that the outputs of the main device are recorded to; it is a virtual device then.
    std::optional<std::filesystem::path> record = {};
    /// The uid of the main device; the first usable one if absent.
    std::optional<std::string> device = {};
    /// In Hz, for the devices that offer it; theirs if absent.
    std::optional<unsigned> sampleRate = {};
    /// What others see as the name of the JACK clients.
    std::string clientName = "ORVANE";
};

/// The audio hardware, effects and MIDI services that a program works with, and its log. Made by its
/// composition root; outlives its engine, and ends before the main thread that the engine posts to.
class AudioMachine final {
  public:
    /// Without hardware yet; `make` is what programs call.
    explicit AudioMachine(std::string clientName);
    /// Writes out what is still in the log.
    ~AudioMachine() { log.flush(); }
    AudioMachine(const AudioMachine&) = delete;
    AudioMachine& operator=(const AudioMachine&) = delete;

    /// With the drivers that ORVANE_DRIVERS names, or all: JACK, ALSA, and the virtual devices last. Fails
    /// where a file cannot be played or recorded.
    static platform::Result<std::unique_ptr<AudioMachine>> make(const AudioMachineOptions& options);

    platform::SystemLog log{platform::quietUntilAnError(platform::standardErrorSink())};

    /// The device that the options ask for: named, or the virtual one that plays or is recorded; nothing if
    /// they leave it open.
    std::optional<std::string> mainUID;

    /// What records the main device; null if nothing does.
    [[nodiscard]] platform::virtual_devices::OutputRecorder* recorder() { return outputRecorder.get(); }
    [[nodiscard]] platform::AudioHardware& hardware() { return *audioHardware; }
    /// What to do if PipeWire runs and no JACK server answers, so that its devices are not listed; nothing
    /// otherwise, or if JACK is not wanted. Main thread.
    [[nodiscard]] std::optional<std::string> deviceAdvice();
    [[nodiscard]] platform::AudioUnitHost& audioUnits() { return audioUnitHost; }
    /// Ends the search for effects, so that the program can end at once. Any thread.
    void cancelScan() { audioUnitHost.cancelScan(); }
    [[nodiscard]] platform::PriorityLender& priorityLender() { return realtimeKit; }
    [[nodiscard]] platform::MIDIServices& midi() { return midiServices; }

  private:
    platform::jack::JackClients jackClients;
    platform::desktop::RealtimeKit realtimeKit;
    platform::desktop::DeviceReservations reservations;
    platform::lv2::Lv2UnitHost audioUnitHost{
        log, platform::lv2::environmentSearchPath(), platform::lv2::effectCacheFile()};
    platform::SystemMIDIServices midiServices{makeMIDIDrivers(jackClients, &log)};
    std::shared_ptr<platform::virtual_devices::OutputRecorder> outputRecorder;
    std::unique_ptr<platform::SystemAudioHardware> audioHardware;
    /// Null if JACK is not wanted; the hardware owns it.
    platform::jack::JackAudioDriver* jackDriver = nullptr;
};

} // namespace orvane::machine
