#include "platform/virtual/virtual_devices.h"

#include "platform/files/sound_file_reader.h"
#include "platform/virtual/looped_file.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>

namespace orvane::platform::virtual_devices {

namespace {

constexpr double usualRate = 48'000.0;
constexpr std::size_t panelChannels = 8;
constexpr std::size_t fewestFileOutputs = 2;

} // namespace

std::vector<VirtualDevice>
builtInDevices(const std::filesystem::path& panelRecording, SystemLog& log, double monitorOffsetPpm) {
    VirtualDevice panel;
    panel.description = {"virtual:panel", "ORVANE Demo Panel", panelChannels, panelChannels, usualRate};
    panel.input = std::make_shared<LoopedFile>(panelRecording, panelChannels, log);
    VirtualDevice silent;
    silent.description = {"virtual:silent48", "ORVANE Silent 48", 48, 48, usualRate};
    VirtualDevice monitor;
    monitor.description = {"virtual:monitor", "ORVANE Monitor", 0, 2, usualRate};
    monitor.clockOffsetPpm = monitorOffsetPpm;
    return {panel, silent, monitor};
}

Result<VirtualDevice> fileDevice(const std::filesystem::path& recording, SystemLog& log) {
    const auto reader = SoundFileReader::open(recording);
    if (!reader) return reader.error();
    const std::string name = recording.filename().string();
    const std::size_t inputs = reader.value().channelCount();
    VirtualDevice device;
    device.description = {
        "virtual:file:" + name, "Virtual: " + name, inputs, std::max(inputs, fewestFileOutputs),
        reader.value().sampleRate()};
    device.input = std::make_shared<LoopedFile>(recording, inputs, log);
    return device;
}

} // namespace orvane::platform::virtual_devices
