#include "platform/pipewire/pipewire_audio_driver.h"

#include "platform/pipewire/pipewire_device_states.h"
#include "platform/pipewire/pipewire_stream.h"

#include <algorithm>
#include <bit>
#include <optional>
#include <utility>

namespace orvane::platform::pipewire {

namespace {

/// The limit of servers.
constexpr std::uint32_t longestBuffer = 8192;

} // namespace

struct PipeWireAudioDriver::State {
    PipeWireGraph& graph;
    PipeWireDeviceStates devices{graph};
};

PipeWireAudioDriver::PipeWireAudioDriver(PipeWireGraph& graph) : state(new State{graph}) {}
PipeWireAudioDriver::~PipeWireAudioDriver() = default;

std::vector<AudioDriverDevice> PipeWireAudioDriver::devices() {
    if (!state->graph.isServerRunning()) return {};
    return state->devices.list();
}

Result<std::uint32_t, OSStatus> PipeWireAudioDriver::bufferSize(std::string_view uid) {
    const std::optional<PipeWireCycles> cycles = state->devices.cycles(uid);
    if (!cycles) return kAudioHardwareBadDeviceError;
    return cycles->frameCount;
}

OSStatus PipeWireAudioDriver::requestBufferSize(std::string_view uid, std::uint32_t frameCount) {
    if (!state->devices.find(uid)) return kAudioHardwareBadDeviceError;
    if (frameCount == 0) return kAudioHardwareIllegalOperationError;
    state->devices.request(uid, std::bit_floor(std::min(frameCount, longestBuffer)));
    return noErr;
}

Result<std::unique_ptr<AudioStream>, OSStatus>
PipeWireAudioDriver::open(std::string_view uid, bool enableInput, AudioStreamClient& client) {
    std::optional<PipeWireDevice> device = state->devices.find(uid);
    if (!device) return kAudioHardwareBadDeviceError;
    if (!enableInput) device->inputPorts.clear();
    return PipeWireStream::open(
        state->graph, state->devices, *std::move(device), state->devices.requestedLength(uid), client
    );
}

std::unique_ptr<AudioDeviceWatch> PipeWireAudioDriver::watch(std::string_view uid, Listener listener) {
    return state->devices.watch(uid, std::move(listener));
}

} // namespace orvane::platform::pipewire
