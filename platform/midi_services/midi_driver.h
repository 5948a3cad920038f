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

/// One source as a driver lists it. A plain value.
struct MIDIDriverSource {
    /// Where the driver finds it now; unique among its sources.
    std::string address;
    /// What stays the same when it is plugged in again or the machine starts again. Sources of the same make
    /// may share it.
    std::string identity;
    /// For people.
    std::string name;
    /// It only passes on what a source of another driver, of the same identity, sends.
    bool isBridge = false;

    bool operator==(const MIDIDriverSource&) const = default;
};

/// Receives from the sources that it is connected to. Destroying it ends that, but for a call that is under
/// way. Any thread but the driver's own system threads.
class MIDIDriverInput {
  public:
    virtual ~MIDIDriverInput() = default;

    /// Fails where the source is gone or refuses.
    virtual OSStatus connect(const std::string& address) = 0;
    virtual void disconnect(const std::string& address) = 0;
};

/// A source of our own that other programs see. Any thread, one at a time.
class MIDIOwnSource {
  public:
    virtual ~MIDIOwnSource() = default;

    /// Whether anybody listens.
    virtual bool isConnected() = 0;

    /// Sends one message to all who listen; returns when it is on its way, or why it is not.
    virtual OSStatus send(std::span<const std::uint8_t> message) = 0;
};

/// One way to MIDI sources. Any thread; a driver outlives its inputs and its own sources. Nothing here
/// throws: where its server or the system's support is missing, there are no sources until it comes.
class MIDIDriver {
  public:
    using SourcesListener = std::function<void()>;
    /// What came from one or more of the connected sources.
    using Receiver = std::function<void(MIDIPacketList)>;

    virtual ~MIDIDriver() = default;

    /// The sources that are there now, in a stable order.
    virtual std::vector<MIDIDriverSource> sources() = 0;

    /// Calls `listener` whenever `sources` has changed or an input has lost its connections, on a thread that
    /// may call the driver. Set once, before there are inputs.
    virtual void setSourcesListener(SourcesListener listener) = 0;

    /// `receiver` is called on a thread of the driver that is not an audio thread and may call the driver.
    /// `name` is what other programs see. Always succeeds: an input lasts through servers that go and come,
    /// but not its connections.
    virtual std::unique_ptr<MIDIDriverInput> openInput(std::string_view name, Receiver receiver) = 0;

    /// Fails where there is nobody who could see it.
    virtual Result<std::unique_ptr<MIDIOwnSource>, OSStatus> createSource(std::string_view name) = 0;
};

} // namespace orvane::platform
