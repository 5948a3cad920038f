#include "support/jack_peer.h"

#include "support/wait_for.h"

#include <unistd.h>

#include <stdexcept>

namespace orvane::test {

namespace {

/// The server orders the clients' accesses to a port's buffer, which ThreadSanitizer does not see. (noipa
/// keeps the compiler from moving the access into the callers.)
[[gnu::no_sanitize("thread"), gnu::noipa]] float load(const float* sample) {
    return *sample;
}

[[gnu::no_sanitize("thread"), gnu::noipa]] void store(float* sample, float value) {
    *sample = value;
}

} // namespace

std::string uniqueJackName(std::string_view name) {
    return std::string(name) + "-" + std::to_string(::getpid());
}

JackPeer::JackPeer(std::string_view clientName, std::size_t channelCount, unsigned long portFlags)
    : uniqueName(uniqueJackName(clientName)),
      client(jack_client_open(uniqueName.c_str(), JackNoStartServer, nullptr)) {
    if (client == nullptr) throw std::runtime_error("The JACK server takes no client called " + uniqueName);
    for (std::size_t channel = 1; channel <= channelCount; ++channel) {
        const auto port = [&](const std::string& prefix, unsigned long direction) {
            const std::string portName = prefix + std::to_string(channel);
            return jack_port_register(
                client, portName.c_str(), JACK_DEFAULT_AUDIO_TYPE, direction | portFlags, 0
            );
        };
        outputs.push_back(port("play_", JackPortIsOutput));
        inputs.push_back(port("record_", JackPortIsInput));
    }
    recorded.resize(channelCount);
    jack_set_process_callback(client, process, this);
    jack_set_xrun_callback(client, countXrun, this);
    jack_activate(client);
}

JackPeer::~JackPeer() {
    jack_client_close(client);
}

float JackPeer::signal(std::size_t channel, std::size_t frame) {
    constexpr std::size_t prime = 65521;
    return static_cast<float>(1 + (frame * 31 + channel * 977) % prime) / static_cast<float>(prime);
}

bool JackPeer::connectTo(const std::string& other) {
    bool areConnected = true;
    for (std::size_t channel = 0; channel < outputs.size(); ++channel) {
        const auto portOf = [&](const char* prefix) {
            return std::string(other).append(prefix).append(std::to_string(channel + 1));
        };
        areConnected &=
            jack_connect(client, jack_port_name(outputs[channel]), portOf(":in_").c_str()) == 0
            && jack_connect(client, portOf(":out_").c_str(), jack_port_name(inputs[channel])) == 0;
    }
    return areConnected;
}

std::vector<std::vector<float>> JackPeer::exchange(std::size_t frameCount) {
    for (std::vector<float>& channel : recorded) {
        channel.clear();
        channel.reserve(frameCount);
    }
    playedFrames = 0;
    wantedFrames = frameCount;
    isExchanging.store(true);
    waitFor([this] { return !isExchanging.load(); });
    return recorded;
}

bool JackPeer::setBufferSize(std::uint32_t frameCount) {
    return jack_set_buffer_size(client, frameCount) == 0;
}

int JackPeer::process(jack_nframes_t frameCount, void* self) noexcept {
    auto& peer = *static_cast<JackPeer*>(self);
    const bool isExchanging = peer.isExchanging.load();
    const auto buffer = [&](jack_port_t* port) {
        return static_cast<float*>(jack_port_get_buffer(port, frameCount));
    };
    bool isDone = true;
    for (std::size_t channel = 0; channel < peer.outputs.size(); ++channel) {
        float* played = buffer(peer.outputs[channel]);
        const float* heard = buffer(peer.inputs[channel]);
        for (std::size_t frame = 0; frame < frameCount; ++frame)
            store(played + frame, isExchanging ? signal(channel, peer.playedFrames + frame) : 0.0F);
        if (!isExchanging) continue;
        std::vector<float>& kept = peer.recorded[channel];
        for (std::size_t frame = 0; frame < frameCount && kept.size() < peer.wantedFrames; ++frame)
            if (const float sample = load(heard + frame); sample != 0.0F || !kept.empty())
                kept.push_back(sample);
        isDone &= kept.size() == peer.wantedFrames;
    }
    if (!isExchanging) return 0;
    peer.playedFrames += frameCount;
    if (isDone) peer.isExchanging.store(false);
    return 0;
}

int JackPeer::countXrun(void* self) noexcept {
    static_cast<JackPeer*>(self)->xruns.fetch_add(1);
    return 0;
}

} // namespace orvane::test
