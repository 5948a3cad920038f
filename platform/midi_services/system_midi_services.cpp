#include "platform/midi_services/system_midi_services.h"

#include <utility>

namespace orvane::platform {

SystemMIDIServices::SystemMIDIServices(std::vector<std::unique_ptr<MIDIDriver>> midiDrivers)
    : drivers(std::move(midiDrivers)) {}

SystemMIDIServices::~SystemMIDIServices() {
    ports.clear();
}

MIDIServices::NewObject
SystemMIDIServices::MIDIClientCreateWithBlock(std::string_view, MIDINotifyBlock notify) {
    const std::scoped_lock lock(mutex);
    if (!std::exchange(isListening, true)) listenToDrivers();
    clients[++lastObject] = {std::make_shared<Notification>(std::move(notify))};
    return {noErr, lastObject};
}

MIDIServices::NewObject SystemMIDIServices::MIDIInputPortCreateWithBlock(
    MIDIClientRef client, std::string_view name, MIDIReadBlock read
) {
    const std::scoped_lock lock(mutex);
    if (!clients.contains(client)) return {kMIDIInvalidClient, 0};
    Port port{.client = client, .reading = std::make_shared<Reading>(std::move(read)), .inputs = {}};
    for (const auto& driver : drivers)
        port.inputs.push_back(driver->openInput(name, [reading = port.reading](MIDIPacketList packets) {
            (*reading)(packets);
        }));
    ports[++lastObject] = std::move(port);
    return {noErr, lastObject};
}

std::size_t SystemMIDIServices::MIDIGetNumberOfSources() {
    const std::scoped_lock lock(mutex);
    std::vector<std::vector<MIDIDriverSource>> listed;
    listed.reserve(drivers.size());
    for (const auto& driver : drivers)
        listed.push_back(driver->sources());
    registry.update(listed);
    return registry.present().size();
}

MIDIEndpointRef SystemMIDIServices::MIDIGetSource(std::size_t index) {
    const std::scoped_lock lock(mutex);
    return index < registry.present().size() ? registry.present()[index].endpoint : 0;
}

MIDIServices::IntegerProperty
SystemMIDIServices::MIDIObjectGetIntegerProperty(MIDIObjectRef object, std::string_view property) {
    const std::scoped_lock lock(mutex);
    const MIDISource* const source = registry.findPresent(object);
    if (source == nullptr) return {kMIDIObjectNotFound, 0};
    if (property != kMIDIPropertyUniqueID) return {kMIDIUnknownProperty, 0};
    return {noErr, source->uniqueID};
}

MIDIServices::StringProperty
SystemMIDIServices::MIDIObjectGetStringProperty(MIDIObjectRef object, std::string_view property) {
    const std::scoped_lock lock(mutex);
    const MIDISource* const source = registry.findPresent(object);
    if (source == nullptr) return {kMIDIObjectNotFound, std::nullopt};
    if (property != kMIDIPropertyDisplayName) return {kMIDIUnknownProperty, std::nullopt};
    return {noErr, source->name};
}

OSStatus SystemMIDIServices::MIDIPortConnectSource(MIDIPortRef port, MIDIEndpointRef source) {
    const std::scoped_lock lock(mutex);
    const auto found = ports.find(port);
    if (found == ports.end()) return kMIDIInvalidPort;
    const MIDISource* const present = registry.findPresent(source);
    if (present == nullptr) return kMIDIUnknownEndpoint;
    return found->second.inputs[present->driver]->connect(present->address);
}

OSStatus SystemMIDIServices::MIDIPortDisconnectSource(MIDIPortRef port, MIDIEndpointRef source) {
    const std::scoped_lock lock(mutex);
    const auto found = ports.find(port);
    if (found == ports.end()) return kMIDIInvalidPort;
    const MIDISource* const known = registry.find(source);
    if (known == nullptr) return kMIDIUnknownEndpoint;
    found->second.inputs[known->driver]->disconnect(known->address);
    return noErr;
}

OSStatus SystemMIDIServices::MIDIPortDispose(MIDIPortRef port) {
    std::unique_lock lock(mutex);
    auto taken = ports.extract(port);
    lock.unlock();
    if (taken.empty()) return kMIDIInvalidPort;
    taken.mapped().reading->cancel();
    return noErr;
}

OSStatus SystemMIDIServices::MIDIClientDispose(MIDIClientRef client) {
    std::unique_lock lock(mutex);
    const auto taken = clients.extract(client);
    std::vector<MIDIPortRef> ofClient;
    for (const auto& [ref, port] : ports)
        if (port.client == client) ofClient.push_back(ref);
    lock.unlock();
    if (taken.empty()) return kMIDIInvalidClient;
    for (const MIDIPortRef port : ofClient)
        MIDIPortDispose(port);
    taken.mapped().notification->cancel();
    return noErr;
}

void SystemMIDIServices::listenToDrivers() {
    for (const auto& driver : drivers)
        driver->setSourcesListener([this] { notifyClients(); });
}

void SystemMIDIServices::notifyClients() {
    std::vector<std::shared_ptr<Notification>> notifications;
    {
        const std::scoped_lock lock(mutex);
        for (const auto& [ref, client] : clients)
            notifications.push_back(client.notification);
    }
    for (const auto& notification : notifications)
        (*notification)();
}

} // namespace orvane::platform
