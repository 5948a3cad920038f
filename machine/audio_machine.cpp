#include "machine/audio_machine.h"

#include "platform/alsa/alsa_audio_driver.h"
#include "platform/alsa/alsa_midi_driver.h"
#include "platform/files/user_folders.h"
#include "platform/jack/jack_audio_driver.h"
#include "platform/jack/jack_midi_driver.h"
#include "platform/pipewire/pipewire_audio_driver.h"
#include "platform/pipewire/pipewire_midi_driver.h"
#include "platform/virtual/output_recorder.h"
#include "platform/virtual/virtual_audio_driver.h"
#include "platform/virtual/virtual_devices.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::machine {

namespace {

using platform::Error;
using platform::Result;
using platform::virtual_devices::VirtualDevice;

constexpr const char* demoRecording = "demo/panel-8ch.flac";

/// Whether ORVANE_DRIVERS, a comma-separated list, names the driver. An empty or missing list names them all.
bool isWanted(std::string_view driver) {
    const char* const list = std::getenv("ORVANE_DRIVERS");
    if (list == nullptr || *list == '\0') return true;
    std::string_view rest = list;
    while (!rest.empty()) {
        const std::size_t comma = std::min(rest.find(','), rest.size());
        if (rest.substr(0, comma) == driver) return true;
        rest.remove_prefix(std::min(comma + 1, rest.size()));
    }
    return false;
}

/// The virtual devices; one that plays the user's file comes first.
Result<std::vector<VirtualDevice>>
virtualDevices(const AudioMachineOptions& options, platform::SystemLog& log) {
    std::vector<VirtualDevice> devices;
    if (options.virtualInput) {
        auto device = platform::virtual_devices::fileDevice(*options.virtualInput, log);
        if (!device) return device.error();
        devices.push_back(std::move(device).value());
    }
    std::ranges::move(
        platform::virtual_devices::builtInDevices(platform::programDataDirectory() / demoRecording, log),
        std::back_inserter(devices)
    );
    return devices;
}

/// Makes the recorder that the options ask for and attaches it to its device. Null if they ask for none.
Result<std::shared_ptr<platform::virtual_devices::OutputRecorder>>
recordOne(std::vector<VirtualDevice>& devices, const AudioMachineOptions& options) {
    if (!options.record) return std::shared_ptr<platform::virtual_devices::OutputRecorder>();
    if (const auto format = platform::recordingFormat(*options.record); !format) return format.error();
    const std::string uid = options.device.value_or(devices.front().description.uid);
    const auto recorded =
        std::ranges::find(devices, uid, [](const VirtualDevice& device) { return device.description.uid; });
    if (recorded == devices.end())
        return Error{fmt::format("Only virtual devices can be recorded; {} is not one.", uid)};
    auto recorder = std::make_shared<platform::virtual_devices::OutputRecorder>(
        *options.record, recorded->description.outputChannelCount, recorded->description.sampleRate
    );
    recorded->output = recorder;
    return recorder;
}

} // namespace

SoundServers::SoundServers(const std::string& clientName)
    : jack(clientName),
      pipeWire(
          isWanted("pipewire") ? std::make_unique<platform::pipewire::PipeWireGraph>(clientName) : nullptr
      ) {}

bool SoundServers::isJackWanted() const {
    const bool isPipeWireAgain = pipeWire != nullptr && platform::jack::JackClients::areOfPipeWire();
    return isWanted("jack") && !isPipeWireAgain;
}

std::vector<std::unique_ptr<platform::MIDIDriver>>
makeMIDIDrivers(SoundServers& servers, platform::SystemLog* log) {
    std::vector<std::unique_ptr<platform::MIDIDriver>> drivers;
    if (isWanted("alsa")) drivers.push_back(std::make_unique<platform::alsa::AlsaMIDIDriver>());
    if (servers.pipeWire)
        drivers.push_back(std::make_unique<platform::pipewire::PipeWireMIDIDriver>(*servers.pipeWire, log));
    if (servers.isJackWanted())
        drivers.push_back(std::make_unique<platform::jack::JackMIDIDriver>(servers.jack, log));
    return drivers;
}

AudioMachine::AudioMachine(const std::string& clientName) : servers(clientName) {}

Result<std::unique_ptr<AudioMachine>> AudioMachine::make(const AudioMachineOptions& options) {
    auto machine = std::make_unique<AudioMachine>(options.clientName);
    auto devices = virtualDevices(options, machine->log);
    if (!devices) return devices.error();
    auto recorder = recordOne(devices.value(), options);
    if (!recorder) return recorder.error();
    machine->outputRecorder = std::move(recorder).value();
    machine->mainUID = options.device;
    if (!options.device && (options.virtualInput || options.record))
        machine->mainUID = devices.value().front().description.uid;
    std::vector<std::unique_ptr<platform::AudioDriver>> drivers;
    SoundServers& servers = machine->servers;
    if (servers.pipeWire)
        drivers.push_back(std::make_unique<platform::pipewire::PipeWireAudioDriver>(*servers.pipeWire));
    if (servers.isJackWanted())
        drivers.push_back(std::make_unique<platform::jack::JackAudioDriver>(servers.jack));
    if (isWanted("alsa"))
        drivers.push_back(
            std::make_unique<platform::alsa::AlsaAudioDriver>(platform::alsa::AlsaAudioDriver::Setup{
                .sampleRate = options.sampleRate,
                .reservations = &machine->reservations,
                .priorityLender = &machine->realtimeKit})
        );
    if (isWanted("virtual"))
        drivers.push_back(std::make_unique<platform::virtual_devices::VirtualAudioDriver>(
            std::move(devices).value(), platform::virtual_devices::VirtualPacing::live, machine->log
        ));
    machine->audioHardware = std::make_unique<platform::SystemAudioHardware>(std::move(drivers));
    return machine;
}

} // namespace orvane::machine
