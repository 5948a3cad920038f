#pragma once

#include "platform/base/os_status.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace orvane::platform {

/// An object of the MIDI services; 0 is none.
using MIDIObjectRef = std::uint32_t;
using MIDIClientRef = MIDIObjectRef;
using MIDIPortRef = MIDIObjectRef;
/// A source. The same one for a source that goes and comes back, for the life of the services.
using MIDIEndpointRef = MIDIObjectRef;

/// Of a source: a signed 32-bit number, the same after a reconnection or a reboot.
inline constexpr std::string_view kMIDIPropertyUniqueID = "uniqueID";
/// Of a source: its name for people.
inline constexpr std::string_view kMIDIPropertyDisplayName = "displayName";

// What calls answer with when they fail.
inline constexpr OSStatus kMIDIInvalidClient = -10830;
inline constexpr OSStatus kMIDIInvalidPort = -10831;
inline constexpr OSStatus kMIDINoConnection = -10833;
inline constexpr OSStatus kMIDIUnknownEndpoint = -10834;
inline constexpr OSStatus kMIDIUnknownProperty = -10835;
inline constexpr OSStatus kMIDIServerStartErr = -10839;
inline constexpr OSStatus kMIDIObjectNotFound = -10842;

/// What came from a source at one moment: a message with its status byte, or a piece of a long one. A view.
struct MIDIPacket {
    std::span<const std::uint8_t> data = {};
};

/// Packets in the order in which they came; valid during the call that it is given to.
using MIDIPacketList = std::span<const MIDIPacket>;

/// Called at every change of the sources there are, on a thread of the services.
using MIDINotifyBlock = std::function<void()>;

/// Called with what the connected sources of a port sent, on a thread of the services that is not an audio
/// thread.
using MIDIReadBlock = std::function<void(MIDIPacketList)>;

/// The MIDI input of the machine: its sources, and ports that receive what they send. Any thread, from within
/// a notification or a read too, but where said otherwise; outlives every client.
class MIDIServices {
  public:
    virtual ~MIDIServices() = default;

    /// A client or a port, or why there is none.
    struct NewObject {
        OSStatus status = noErr;
        MIDIObjectRef object = 0;
    };
    virtual NewObject MIDIClientCreateWithBlock(std::string_view name, MIDINotifyBlock notify) = 0;
    virtual NewObject
    MIDIInputPortCreateWithBlock(MIDIClientRef client, std::string_view name, MIDIReadBlock read) = 0;

    /// The number of sources that there are now, which `MIDIGetSource` counts from 0.
    virtual std::size_t MIDIGetNumberOfSources() = 0;
    /// 0 where there is no source of that index.
    virtual MIDIEndpointRef MIDIGetSource(std::size_t index) = 0;

    struct IntegerProperty {
        OSStatus status = noErr;
        std::int32_t value = 0;
    };
    virtual IntegerProperty MIDIObjectGetIntegerProperty(MIDIObjectRef object, std::string_view property) = 0;

    struct StringProperty {
        OSStatus status = noErr;
        std::optional<std::string> value = {};
    };
    virtual StringProperty MIDIObjectGetStringProperty(MIDIObjectRef object, std::string_view property) = 0;

    /// Begins to deliver what the source sends to the port.
    virtual OSStatus MIDIPortConnectSource(MIDIPortRef port, MIDIEndpointRef source) = 0;
    /// Ends it; what has already come in may still be delivered.
    virtual OSStatus MIDIPortDisconnectSource(MIDIPortRef port, MIDIEndpointRef source) = 0;

    /// Waits for a read or a notification that is under way; none comes after. Not to be called from within
    /// one, nor while holding what one may wait for.
    virtual OSStatus MIDIPortDispose(MIDIPortRef port) = 0;
    virtual OSStatus MIDIClientDispose(MIDIClientRef client) = 0;
};

} // namespace orvane::platform
