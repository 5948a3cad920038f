#include "platform/jack/jack_stream.h"

#include "platform/base/flush_denormals.h"
#include "platform/base/realtime_priority.h"
#include "platform/jack/jack_callback.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <utility>

namespace orvane::platform::jack {

namespace {

/// The limit of all JACK servers. The server may change its buffer size at any time, and cycles of the new
/// size come before any notification.
constexpr std::size_t longestCycleInFrames = 8192;

constexpr std::string_view noPortsLeft =
    "The JACK server has no ports left; end other clients, or start it with more (jackd --port-max).";

bool connectPorts(jack_client_t* client, const char* source, const char* destination) {
    const int status = jack_connect(client, source, destination);
    return status == 0 || status == EEXIST;
}

} // namespace

Result<std::unique_ptr<AudioStream>, OSStatus> JackStream::open(
    JackClients& clients, JackEvents& events, const JackDevice& device, AudioStreamClient& client
) {
    // Complete before libjack's thread is started, which calls it.
    std::unique_ptr<JackStream> stream(new JackStream(device, client));
    stream->jackClient = clients.open("", events);
    if (stream->jackClient == nullptr) return kAudioHardwareBadDeviceError;
    if (!stream->prepare()) return kAudioHardwareUnspecifiedError;
    return std::unique_ptr<AudioStream>(std::move(stream));
}

JackStream::JackStream(const JackDevice& device, AudioStreamClient& cycleClient) : streamClient(cycleClient) {
    inputs.devicePorts = device.inputPorts;
    outputs.devicePorts = device.outputPorts;
}

JackStream::~JackStream() {
    if (jackClient) stop();
}

bool JackStream::prepare() {
    bool isPrepared = false;
    jackClient->use([&](jack_client_t* client) {
        const bool hasPorts = inputs.registerPorts(client, "in_", JackPortIsInput)
                              && outputs.registerPorts(client, "out_", JackPortIsOutput);
        if (!hasPorts && !jackClient->isGone()) streamClient.explainFailure(noPortsLeft);
        isPrepared = hasPorts
                     && jack_set_process_callback(client, jackCallback<int, &JackStream::process>, this) == 0
                     && countXruns(client);
        if (!isPrepared) return;
        inputs.namePorts(*jackClient, "Input");
        outputs.namePorts(*jackClient, "Output");
    });
    return isPrepared;
}

bool JackStream::countXruns(jack_client_t* client) {
    if (JackClients::areOfPipeWire()) {
        silentAboutXruns = client;
        return true;
    }
    return jack_set_xrun_callback(client, jackCallback<int, &JackStream::countXrun>, this) == 0;
}

template <class Sample>
bool JackStream::Side<Sample>::registerPorts(
    jack_client_t* client, const char* prefix, unsigned long direction
) {
    for (std::size_t channel = 0; channel < devicePorts.size(); ++channel) {
        const std::string name = prefix + std::to_string(channel + 1);
        jack_port_t* const port =
            jack_port_register(client, name.c_str(), JACK_DEFAULT_AUDIO_TYPE, direction, 0);
        if (port == nullptr) return false;
        ports.push_back(port);
    }
    blocks.resize(ports.size());
    return true;
}

template <class Sample>
void JackStream::Side<Sample>::namePorts(JackClient& owner, const std::string& kind) const {
    for (std::size_t channel = 0; channel < ports.size(); ++channel)
        owner.setPrettyName(jack_port_uuid(ports[channel]), kind + ' ' + std::to_string(channel + 1));
}

OSStatus JackStream::start() {
    OSStatus status = kAudioHardwareBadDeviceError;
    jackClient->use([&](jack_client_t* client) { status = isRunning ? noErr : activate(client); });
    isRunning = status == noErr;
    if (isRunning)
        jackClient->setPlaying(true);
    else
        stop();
    return status;
}

OSStatus JackStream::activate(jack_client_t* client) {
    xruns.store(0);
    gate.open();
    ioThread.store(0);
    gaps.reset();
    // The server has gone, but its clients have not been notified yet.
    if (jack_activate(client) != 0) return kAudioHardwareBadDeviceError;
    return connect(client) ? noErr : kAudioHardwareBadDeviceError;
}

bool JackStream::connect(jack_client_t* client) const {
    for (std::size_t channel = 0; channel < inputs.ports.size(); ++channel)
        if (!connectPorts(client, inputs.devicePorts[channel].c_str(), jack_port_name(inputs.ports[channel])))
            return false;
    for (std::size_t channel = 0; channel < outputs.ports.size(); ++channel)
        if (!connectPorts(
                client, jack_port_name(outputs.ports[channel]), outputs.devicePorts[channel].c_str()
            ))
            return false;
    return true;
}

bool JackStream::stop() {
    jackClient->setPlaying(false);
    const bool hasEnded = gate.close();
    if (hasEnded)
        jackClient->deactivate();
    else
        // libjack would wait for the process thread without a limit.
        jackClient->abandon();
    ioThread.store(0);
    isRunning = false;
    return hasEnded;
}

int JackStream::realtimePriority() const noexcept {
    return realtimePriorityOf(ioThread.load());
}

std::size_t JackStream::maximumFrames() const {
    return longestCycleInFrames;
}

template <class Sample>
void JackStream::Side<Sample>::takeBlocks(jack_nframes_t frameCount) noexcept {
    for (std::size_t channel = 0; channel < ports.size(); ++channel)
        blocks[channel] = {
            static_cast<Sample*>(jack_port_get_buffer(ports[channel], frameCount)), frameCount};
}

void JackStream::process(jack_nframes_t frameCount, void* self) noexcept {
    const FlushDenormals flushing;
    auto& stream = *static_cast<JackStream*>(self);
    stream.observeCycle(frameCount);
    stream.inputs.takeBlocks(frameCount);
    stream.outputs.takeBlocks(frameCount);
    const bool goesOn = stream.gate.pass([&] {
        stream.streamClient.cycle(stream.inputs.blocks, stream.outputs.blocks, frameCount);
    });
    if (goesOn) return;
    for (const std::span<float>& block : stream.outputs.blocks)
        std::ranges::fill(block, 0.0F);
}

void JackStream::observeCycle(jack_nframes_t frameCount) noexcept {
    // The only system call of the thread, in its first cycle.
    if (ioThread.load() == 0) ioThread.store(::gettid());
    if (silentAboutXruns != nullptr && gaps.isBefore(jack_last_frame_time(silentAboutXruns), frameCount))
        xruns.fetch_add(1);
}

void JackStream::countXrun(void* self) noexcept {
    static_cast<JackStream*>(self)->xruns.fetch_add(1);
}

} // namespace orvane::platform::jack
