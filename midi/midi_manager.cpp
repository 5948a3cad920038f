#include "midi/midi_manager.h"

#include <cstddef>
#include <mutex>
#include <string_view>
#include <utility>

namespace orvane::midi {

using namespace platform;

namespace {

constexpr std::string_view clientName = "ORVANEMIDIClient";
constexpr std::string_view portName = "ORVANEInput";
constexpr const char* unnamedSource = "MIDI Source";

/// The note-on at the start of a packet; absent if the packet starts with anything else.
std::optional<NoteMessage> noteOnIn(const MIDIPacket& packet) {
    constexpr std::size_t messageLength = 3;
    if (packet.data.size() < messageLength) return std::nullopt;
    const std::uint8_t status = packet.data[0];
    const std::uint8_t velocity = packet.data[2];
    if ((status & 0xF0U) != 0x90U || velocity == 0) return std::nullopt;
    return NoteMessage{status & 0x0F, packet.data[1]};
}

} // namespace

struct MIDIManager::State {
    explicit State(MIDIServices& midiServices) : services(midiServices) {}

    void connectSources() {
        const std::scoped_lock lock(mutex);
        disconnectAllSourcesLocked();
        const std::size_t count = services.MIDIGetNumberOfSources();
        for (std::size_t i = 0; i < count; ++i) {
            const MIDIEndpointRef source = services.MIDIGetSource(i);
            if (isWanted(source) && services.MIDIPortConnectSource(inputPort, source) == noErr)
                connectedEndpoints.insert(source);
        }
    }

    void disconnectAllSources() {
        const std::scoped_lock lock(mutex);
        disconnectAllSourcesLocked();
    }

    void disconnectAllSourcesLocked() {
        for (const MIDIEndpointRef endpoint : connectedEndpoints)
            services.MIDIPortDisconnectSource(inputPort, endpoint);
        connectedEndpoints.clear();
    }

    bool isWanted(MIDIEndpointRef source) {
        if (!selectedSourceID) return true;
        const auto id = services.MIDIObjectGetIntegerProperty(source, kMIDIPropertyUniqueID);
        return id.status == noErr && id.value == *selectedSourceID;
    }

    void handleNotification() {
        connectSources();
        if (onSourcesChanged) onSourcesChanged();
    }

    void handlePackets(MIDIPacketList packets) const {
        if (!onNoteOn) return;
        for (const MIDIPacket& packet : packets)
            if (const auto note = noteOnIn(packet)) onNoteOn(*note);
    }

    MIDIServices& services;
    std::function<void(const NoteMessage&)> onNoteOn;
    std::function<void()> onSourcesChanged;
    // Main thread only.
    MIDIClientRef client = 0;
    bool started = false;

    /// Guards the members below. Held while connecting, so that a notification and the main thread never
    /// connect at the same time; never held while waiting for a handler.
    std::mutex mutex;
    MIDIPortRef inputPort = 0;
    std::optional<std::int32_t> selectedSourceID;
    std::set<MIDIEndpointRef> connectedEndpoints;
};

MIDIManager::MIDIManager(MIDIServices& services) : state(std::make_shared<State>(services)) {}

MIDIManager::~MIDIManager() {
    stop();
}

void MIDIManager::onNoteOn(std::function<void(const NoteMessage&)> receiver) {
    state->onNoteOn = std::move(receiver);
}

void MIDIManager::onSourcesChanged(std::function<void()> receiver) {
    state->onSourcesChanged = std::move(receiver);
}

void MIDIManager::start() {
    if (std::exchange(state->started, true)) return;
    const auto client = state->services.MIDIClientCreateWithBlock(clientName, [weak = std::weak_ptr(state)] {
        if (const auto alive = weak.lock()) alive->handleNotification();
    });
    state->client = client.object;
    if (client.status != noErr) return;
    const auto port = state->services.MIDIInputPortCreateWithBlock(
        client.object, portName,
        [weak = std::weak_ptr(state)](MIDIPacketList packets) {
            if (const auto alive = weak.lock()) alive->handlePackets(packets);
        }
    );
    {
        const std::scoped_lock lock(state->mutex);
        state->inputPort = port.object;
    }
    if (port.status != noErr) return;
    connectSources();
}

void MIDIManager::stop() {
    if (!std::exchange(state->started, false)) return;
    disconnectAllSources();
    MIDIPortRef port = 0;
    {
        const std::scoped_lock lock(state->mutex);
        port = std::exchange(state->inputPort, 0);
    }
    if (port != 0) state->services.MIDIPortDispose(port);
    const MIDIClientRef client = std::exchange(state->client, 0);
    if (client != 0) state->services.MIDIClientDispose(client);
}

void MIDIManager::connectSources() {
    state->connectSources();
}

void MIDIManager::disconnectAllSources() {
    state->disconnectAllSources();
}

void MIDIManager::setSelectedSourceID(std::optional<std::int32_t> sourceID) {
    {
        const std::scoped_lock lock(state->mutex);
        state->selectedSourceID = sourceID;
    }
    if (state->started) connectSources();
}

std::optional<std::int32_t> MIDIManager::selectedSourceID() const {
    const std::scoped_lock lock(state->mutex);
    return state->selectedSourceID;
}

std::vector<MIDIDeviceInfo> MIDIManager::availableSources() const {
    MIDIServices& services = state->services;
    const std::size_t count = services.MIDIGetNumberOfSources();
    std::vector<MIDIDeviceInfo> sources;
    sources.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const MIDIEndpointRef source = services.MIDIGetSource(i);
        const auto id = services.MIDIObjectGetIntegerProperty(source, kMIDIPropertyUniqueID);
        if (id.status != noErr) continue;
        const auto name = services.MIDIObjectGetStringProperty(source, kMIDIPropertyDisplayName);
        const bool hasName = name.status == noErr && name.value;
        sources.push_back({id.value, hasName ? *name.value : unnamedSource});
    }
    return sources;
}

std::set<MIDIEndpointRef> MIDIManager::connectedEndpoints() const {
    const std::scoped_lock lock(state->mutex);
    return state->connectedEndpoints;
}

} // namespace orvane::midi
