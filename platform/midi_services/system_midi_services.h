#pragma once

#include "platform/base/cancellable_call.h"
#include "platform/midi_services/midi_driver.h"
#include "platform/midi_services/midi_services.h"
#include "platform/midi_services/midi_source_registry.h"

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

namespace orvane::platform {

/// The MIDI services of this computer, built on the given drivers. Other programs see ports under their own
/// names, but clients under the name of the program.
class SystemMIDIServices final : public MIDIServices {
  public:
    /// Sources are listed in the order of the drivers. A keyboard that several drivers reach is listed once:
    /// a later driver's bridge to an earlier driver's source is left out.
    explicit SystemMIDIServices(std::vector<std::unique_ptr<MIDIDriver>> midiDrivers);
    ~SystemMIDIServices() override;

    NewObject MIDIClientCreateWithBlock(std::string_view name, MIDINotifyBlock notify) override;
    NewObject
    MIDIInputPortCreateWithBlock(MIDIClientRef client, std::string_view name, MIDIReadBlock read) override;
    std::size_t MIDIGetNumberOfSources() override;
    MIDIEndpointRef MIDIGetSource(std::size_t index) override;
    IntegerProperty MIDIObjectGetIntegerProperty(MIDIObjectRef object, std::string_view property) override;
    StringProperty MIDIObjectGetStringProperty(MIDIObjectRef object, std::string_view property) override;
    OSStatus MIDIPortConnectSource(MIDIPortRef port, MIDIEndpointRef source) override;
    OSStatus MIDIPortDisconnectSource(MIDIPortRef port, MIDIEndpointRef source) override;
    OSStatus MIDIPortDispose(MIDIPortRef port) override;
    OSStatus MIDIClientDispose(MIDIClientRef client) override;

  private:
    using Notification = CancellableCall<>;
    using Reading = CancellableCall<MIDIPacketList>;

    struct Client {
        std::shared_ptr<Notification> notification;
    };
    struct Port {
        MIDIClientRef client = 0;
        std::shared_ptr<Reading> reading;
        /// One per driver.
        std::vector<std::unique_ptr<MIDIDriverInput>> inputs;
    };

    void listenToDrivers();
    void notifyClients();

    std::mutex mutex;
    bool isListening = false;
    MIDIObjectRef lastObject = 0;
    MIDISourceRegistry registry;
    std::map<MIDIClientRef, Client> clients;
    std::map<MIDIPortRef, Port> ports;
    /// The last member, so that the drivers' threads end before the objects they notify.
    std::vector<std::unique_ptr<MIDIDriver>> drivers;
};

} // namespace orvane::platform
