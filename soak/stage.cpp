#include "soak/stage.h"

#include <algorithm>
#include <array>
#include <utility>

namespace orvane::soak {

namespace {

/// An unusable device, whose notifications arrive after those of all others.
constexpr const char* bellUID = "virtual:bell";

/// Simulates a device that restricts buffer sizes.
platform::Result<std::uint32_t, platform::OSStatus> grantWithinLimits(std::uint32_t requested) {
    constexpr std::uint32_t refused = 96;
    if (requested == refused) return platform::kAudioHardwareIllegalOperationError;
    return std::clamp<std::uint32_t>(requested, 64, 1024);
}

std::vector<platform::virtual_devices::VirtualDevice> describedDevices() {
    std::vector<platform::virtual_devices::VirtualDevice> devices(5);
    devices[0].description = {"virtual:stage", "Stage", 48, 48, 48000.0};
    devices[1].description = {"virtual:box", "Box", 8, 8, 44100.0};
    devices[1].answerBufferSize = grantWithinLimits;
    devices[2].description = {"virtual:monitor", "Monitor", 0, 2, 48000.0};
    devices[2].clockOffsetPpm = 300.0;
    devices[3].description = {"virtual:recorder", "Recorder", 4, 0, 96000.0};
    devices[4].description = {bellUID, "Bell", 0, 0, 48000.0};
    return devices;
}

} // namespace

Stage::Stage(const Shape& stageShape)
    : shape(stageShape),
      hardware(makeDrivers()),
      folder(test::memoryFolder()),
      engine(
          shape.strips, {.audioHardware = hardware,
                         .midiServices = midi,
                         .mainThread = mainThread,
                         .audioUnitHost = effects,
                         .log = log,
                         .applicationSupport = folder / "",
                         .editorWindows = &windows,
                         .clock = shape.clock,
                         .insertWorkers = shape.insertWorkers}
      ) {
    effects.add("Mono", {.inputChannels = {1}, .outputChannels = {1}});
    effects.add("Stereo", {.inputChannels = {2}, .outputChannels = {2}});
    effects.add("Stateless", {.hasState = false, .hasEditor = false});
    effects.add("Unwritable", {.hasUnwritableState = true});
    effects.add("Refusing", {.inputChannels = {}, .outputChannels = {}});
    effects.add("Failing", {.allocates = false});
    midi.sources = {{1, 100, "Keys"}, {2, 200, "Pads"}};
    bellWatch = driver->watch(bellUID, [this](platform::AudioDeviceChange) {
        const std::scoped_lock lock(bell.mutex);
        ++bell.count;
        bell.changed.notify_one();
    });
    engine.setBufferSize(shape.bufferSize);
    engine.refreshDevices();
    engine.refreshMIDIDevices();
    engine.selectDevice(engine.state().availableDevices.get().at(0));
}

std::vector<std::unique_ptr<platform::AudioDriver>> Stage::makeDrivers() {
    std::vector<platform::virtual_devices::VirtualDevice> described = describedDevices();
    for (std::size_t i = 0; i < described.size(); ++i) {
        platform::virtual_devices::VirtualDevice& device = described[i];
        if (device.description.uid == bellUID) continue;
        const StageDevice& made = devices.emplace_back(StageDevice{
            .uid = device.description.uid,
            .voices = std::make_shared<Voices>(
                device.description.inputChannelCount, shape.seed + static_cast<std::uint32_t>(i)
            )});
        if (device.description.inputChannelCount > 0) device.input = made.voices;
        device.output = made.output;
    }
    auto made = std::make_unique<platform::virtual_devices::VirtualAudioDriver>(
        std::move(described), shape.pacing, log
    );
    driver = made.get();
    std::vector<std::unique_ptr<platform::AudioDriver>> drivers;
    drivers.push_back(std::move(made));
    return drivers;
}

void Stage::settle() {
    constexpr std::array<std::uint32_t, 2> bellSizes = {128, 256};
    ++rings;
    driver->control(bellUID)->changeBufferSize(bellSizes[rings % 2]);
    {
        std::unique_lock lock(bell.mutex);
        bell.changed.wait(lock, [this] { return bell.count == rings; });
    }
    mainThread.runPosted();
    log.flush();
    midi.takeCalls();
    windows.log.clear();
}

} // namespace orvane::soak
