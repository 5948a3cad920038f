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

/// An object of the MIDI services; 0 means none.
using MIDIObjectRef = std::uint32_t;
using MIDIClientRef = MIDIObjectRef;
using MIDIPortRef = MIDIObjectRef;
/// A source. A source that returns keeps its reference for the life of the services.
using MIDIEndpointRef = MIDIObjectRef;

/// A source's id: a signed 32-bit number, stable across reconnections and reboots.
inline constexpr std::string_view kMIDIPropertyUniqueID = "uniqueID";
/// A source's display name.
inline constexpr std::string_view kMIDIPropertyDisplayName = "displayName";

// Status codes of failed calls.
inline constexpr OSStatus kMIDIInvalidClient = -10830;
inline constexpr OSStatus kMIDIInvalidPort = -10831;
inline constexpr OSStatus kMIDINoConnection = -10833;
inline constexpr OSStatus kMIDIUnknownEndpoint = -10834;
inline constexpr OSStatus kMIDIUnknownProperty = -10835;
inline constexpr OSStatus kMIDIServerStartErr = -10839;
inline constexpr OSStatus kMIDIObjectNotFound = -10842;

/// One piece of received data: a message with its status byte, or a part of a long one. A view.
struct MIDIPacket {
    std::span<const std::uint8_t> data = {};
};

/// Packets in the order of arrival; valid during the call that receives them.
using MIDIPacketList = std::span<const MIDIPacket>;

/// Called on every change of the list of sources, on a thread of the services.
using MIDINotifyBlock = std::function<void()>;

/// Called with packets from a port's connected sources, on a thread of the services that is not an audio
/// thread.
using MIDIReadBlock = std::function<void(MIDIPacketList)>;

/// The MIDI input of the computer: its sources, and ports that receive from them. Any thread, also from
/// within a notification or a read unless noted; must outlive every client.
class MIDIServices {
  public:
    virtual ~MIDIServices() = default;

    /// A client or a port, or the status of the failure.
    struct NewObject {
        OSStatus status = noErr;
        MIDIObjectRef object = 0;
    };
    virtual NewObject MIDIClientCreateWithBlock(std::string_view name, MIDINotifyBlock notify) = 0;
    virtual NewObject
    MIDIInputPortCreateWithBlock(MIDIClientRef client, std::string_view name, MIDIReadBlock read) = 0;

    /// The number of current sources; `MIDIGetSource` indexes them from 0.
    virtual std::size_t MIDIGetNumberOfSources() = 0;
    /// Returns 0 if the index is out of range.
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

    /// Starts delivering from the source to the port.
    virtual OSStatus MIDIPortConnectSource(MIDIPortRef port, MIDIEndpointRef source) = 0;
    /// Stops delivering; packets that have already arrived may still be delivered.
    virtual OSStatus MIDIPortDisconnectSource(MIDIPortRef port, MIDIEndpointRef source) = 0;

    /// Waits for a read or notification in progress; none follows. Must not be called from within one, nor
    /// while holding a lock that one may take.
    virtual OSStatus MIDIPortDispose(MIDIPortRef port) = 0;
    virtual OSStatus MIDIClientDispose(MIDIClientRef client) = 0;
};

} // namespace orvane::platform
