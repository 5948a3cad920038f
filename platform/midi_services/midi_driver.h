#pragma once

#include "platform/base/os_status.h"
#include "platform/base/result.h"
#include "platform/midi_services/midi_services.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform {

/// A source as a driver lists it. A plain value.
struct MIDIDriverSource {
    /// The driver's current address for it; unique among its sources.
    std::string address;
    /// Stable across reconnections and reboots. Sources of the same model may share it.
    std::string identity;
    /// The display name.
    std::string name;
    /// Whether it only passes on what a source of another driver, with the same identity, sends.
    bool isBridge = false;

    bool operator==(const MIDIDriverSource&) const = default;
};

/// Receives from the sources it is connected to. Destroying it ends that, except for a call in progress. Any
/// thread except the driver's own system threads.
class MIDIDriverInput {
  public:
    virtual ~MIDIDriverInput() = default;

    /// Fails if the source has gone or refuses.
    virtual OSStatus connect(const std::string& address) = 0;
    virtual void disconnect(const std::string& address) = 0;
};

/// A MIDI source of this program that other programs see. Any thread, one at a time.
class MIDIOwnSource {
  public:
    virtual ~MIDIOwnSource() = default;

    /// Whether another program is connected.
    virtual bool isConnected() = 0;

    /// Sends a message to all connected programs. Returns once it is on its way, or why it is not.
    virtual OSStatus send(std::span<const std::uint8_t> message) = 0;
};

/// Access to MIDI sources. Any thread; a driver must outlive its inputs and its own sources. No function
/// throws: while its server or the system's support is missing, there are no sources.
class MIDIDriver {
  public:
    using SourcesListener = std::function<void()>;
    /// Receives packets from one or more connected sources.
    using Receiver = std::function<void(MIDIPacketList)>;

    virtual ~MIDIDriver() = default;

    /// The current sources, in a stable order.
    virtual std::vector<MIDIDriverSource> sources() = 0;

    /// Calls `listener` whenever `sources` has changed or an input has lost its connections, on a thread that
    /// may call the driver. Must be set once, before inputs are opened.
    virtual void setSourcesListener(SourcesListener listener) = 0;

    /// `receiver` is called on a thread of the driver that is not an audio thread and may call the driver.
    /// Other programs see `name`. Always succeeds: an input survives restarts of its server, its connections
    /// do not.
    virtual std::unique_ptr<MIDIDriverInput> openInput(std::string_view name, Receiver receiver) = 0;

    /// Fails if no other program could see it.
    virtual Result<std::unique_ptr<MIDIOwnSource>, OSStatus> createSource(std::string_view name) = 0;
};

} // namespace orvane::platform
