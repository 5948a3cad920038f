#include "platform/jack/jack_audio_driver.h"

#include "platform/jack/jack_events.h"
#include "platform/jack/jack_server.h"
#include "platform/jack/jack_stream.h"
#include "platform/jack/jack_watches.h"

#include <optional>
#include <utility>

namespace orvane::platform::jack {

struct JackAudioDriver::State {
    JackClients& clients;
    JackEvents events{};
    JackServer server{clients, events};
    JackWatches watches{events, server};
};

JackAudioDriver::JackAudioDriver(JackClients& clients) : state(new State{clients}) {}
JackAudioDriver::~JackAudioDriver() = default;

std::vector<AudioDriverDevice> JackAudioDriver::devices() {
    const std::optional<JackServerState> server = state->server.state();
    if (!server) return {};
    state->watches.rearm(*server);
    std::vector<AudioDriverDevice> listed;
    for (const JackDevice& device : server->devices)
        listed.push_back(
            {device.uid, device.name, device.inputPorts.size(), device.outputPorts.size(), server->sampleRate}
        );
    return listed;
}

Result<std::uint32_t, OSStatus> JackAudioDriver::bufferSize(std::string_view uid) {
    const std::optional<JackServerState> server = state->server.state();
    if (!server || server->find(uid) == nullptr) return kAudioHardwareBadDeviceError;
    return server->bufferSize;
}

OSStatus JackAudioDriver::requestBufferSize(std::string_view uid, std::uint32_t frameCount) {
    const std::optional<JackServerState> server = state->server.state();
    if (!server || server->find(uid) == nullptr) return kAudioHardwareBadDeviceError;
    if (!state->server.requestBufferSize(frameCount)) return kAudioHardwareIllegalOperationError;
    return noErr;
}

Result<std::unique_ptr<AudioStream>, OSStatus>
JackAudioDriver::open(std::string_view uid, bool enableInput, AudioStreamClient& client) {
    const std::optional<JackServerState> server = state->server.state();
    const JackDevice* const device = server ? server->find(uid) : nullptr;
    if (device == nullptr) return kAudioHardwareBadDeviceError;
    JackDevice connected = *device;
    if (!enableInput) connected.inputPorts.clear();
    state->watches.watchPorts(connected);
    return JackStream::open(state->clients, state->events, connected, client);
}

std::unique_ptr<AudioDeviceWatch> JackAudioDriver::watch(std::string_view uid, Listener listener) {
    state->server.state();
    return state->watches.add(uid, std::move(listener));
}

} // namespace orvane::platform::jack
