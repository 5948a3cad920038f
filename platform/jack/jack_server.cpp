#include "platform/jack/jack_server.h"

#include "platform/jack/jack_callback.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <string>
#include <thread>
#include <utility>

namespace orvane::platform::jack {

namespace {

constexpr std::size_t mostAliases = 2;
/// jackd has changed the size when it accepts the request, PipeWire changes it in one of its next cycles.
constexpr std::chrono::milliseconds longestBufferSizeChange{200};
/// The server's end is reported to each of its clients separately.
constexpr std::chrono::milliseconds longestServerEnding{200};

std::vector<std::string> aliasesOf(const jack_port_t* port) {
    const auto size = static_cast<std::size_t>(jack_port_name_size());
    std::array<std::string, mostAliases> aliases{std::string(size, '\0'), std::string(size, '\0')};
    char* const buffers[mostAliases] = {aliases[0].data(), aliases[1].data()};
    const int count = std::max(jack_port_get_aliases(port, buffers), 0);
    return {buffers, buffers + count};
}

std::vector<JackPort> portsOf(jack_client_t* client, const char* type, unsigned long wantedFlags) {
    const std::unique_ptr<const char*, void (*)(const char**)> names(
        jack_get_ports(client, nullptr, type, wantedFlags),
        [](const char** list) { jack_free(static_cast<void*>(list)); }
    );
    std::vector<JackPort> ports;
    for (const char** name = names.get(); name != nullptr && *name != nullptr; ++name) {
        const jack_port_t* const port = jack_port_by_name(client, *name);
        if (port == nullptr) continue;
        const int flags = jack_port_flags(port);
        ports.push_back(
            {*name, aliasesOf(port), (flags & JackPortIsOutput) != 0, (flags & JackPortIsPhysical) != 0}
        );
    }
    return ports;
}

} // namespace

const JackDevice* JackServerState::find(std::string_view uid) const {
    const auto found = std::ranges::find(devices, uid, &JackDevice::uid);
    return found == devices.end() ? nullptr : &*found;
}

std::optional<JackServerState> JackServer::state() {
    const std::scoped_lock lock(mutex);
    if (!open()) return std::nullopt;
    return readState();
}

std::optional<JackServerState> JackServer::knownState() {
    const std::scoped_lock lock(mutex);
    if (client == nullptr) return std::nullopt;
    return readState();
}

std::optional<std::vector<JackPort>> JackServer::midiSources() {
    const std::scoped_lock lock(mutex);
    if (!open()) return std::nullopt;
    std::vector<JackPort> ports;
    const bool isRead = client->use([&](jack_client_t* jack) {
        ports = portsOf(jack, JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput);
    });
    return isRead ? std::optional(std::move(ports)) : std::nullopt;
}

bool JackServer::isOpen() {
    const std::scoped_lock lock(mutex);
    return client != nullptr && !client->isGone();
}

void JackServer::awaitEnd() {
    constexpr std::chrono::milliseconds pause{1};
    for (auto waited = pause; isOpen() && waited < longestServerEnding; waited += pause)
        std::this_thread::sleep_for(pause);
}

bool JackServer::requestBufferSize(std::uint32_t frameCount) {
    bool isTaken = false;
    {
        const std::scoped_lock lock(mutex);
        if (!open()) return false;
        client->use([&](jack_client_t* jack) { isTaken = jack_set_buffer_size(jack, frameCount) == 0; });
    }
    if (!isTaken) return false;
    const auto deadline = std::chrono::steady_clock::now() + longestBufferSizeChange;
    while (lastBufferSize.load() != frameCount
           && bufferSizeChanges.takeWithin(deadline - std::chrono::steady_clock::now()) != 0) {
    }
    return true;
}

bool JackServer::open() {
    // Checked before it is closed for the sake of a stream.
    if (client != nullptr && !client->isGone() && !clients.areOutdated()) return true;
    client.reset();
    client = clients.open(clientRole, events);
    if (client == nullptr) return false;
    bool isActive = false;
    client->use([&](jack_client_t* jack) {
        lastBufferSize.store(jack_get_buffer_size(jack));
        lastSampleRate.store(jack_get_sample_rate(jack));
        jack_set_buffer_size_callback(jack, jackCallback<int, &JackServer::bufferSizeChanged>, this);
        jack_set_sample_rate_callback(jack, jackCallback<int, &JackServer::sampleRateChanged>, this);
        // A client that closes reports its ports while they are still listed, and itself once they are not.
        jack_set_port_registration_callback(jack, jackCallback<void, &JackServer::portChanged>, this);
        jack_set_client_registration_callback(jack, jackCallback<void, &JackServer::clientChanged>, this);
        isActive = jack_activate(jack) == 0;
    });
    if (!isActive) client.reset();
    return isActive;
}

std::optional<JackServerState> JackServer::readState() {
    JackServerState state;
    const bool isRead = client->use([&](jack_client_t* jack) {
        state.sampleRate = jack_get_sample_rate(jack);
        state.bufferSize = jack_get_buffer_size(jack);
        state.devices = jackDevices(portsOf(jack, JACK_DEFAULT_AUDIO_TYPE, 0));
    });
    return isRead ? std::optional(std::move(state)) : std::nullopt;
}

void JackServer::bufferSizeChanged(jack_nframes_t frameCount, void* self) noexcept {
    auto& server = *static_cast<JackServer*>(self);
    if (server.lastBufferSize.exchange(frameCount) != frameCount)
        for (JackEvents* const told : {&server.bufferSizeChanges, &server.events})
            told->post(JackEvent::bufferSizeChanged);
}

void JackServer::sampleRateChanged(jack_nframes_t sampleRate, void* self) noexcept {
    auto& server = *static_cast<JackServer*>(self);
    if (server.lastSampleRate.exchange(sampleRate) != sampleRate)
        server.events.post(JackEvent::sampleRateChanged);
}

void JackServer::portChanged(jack_port_id_t, int isRegistered, void* self) noexcept {
    static_cast<JackServer*>(self)->events.post(
        isRegistered == 0 ? JackEvent::portsRemoved : JackEvent::portsAdded
    );
}

void JackServer::clientChanged(const char*, int isRegistered, void* self) noexcept {
    if (isRegistered == 0) static_cast<JackServer*>(self)->events.post(JackEvent::portsRemoved);
}

} // namespace orvane::platform::jack
