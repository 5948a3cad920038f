#pragma once

#include "midi/midi_device_info.h"
#include "platform/midi_services/midi_services.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace orvane::midi {

/// One note-on. A plain value.
struct NoteMessage {
    /// 0 to 15.
    std::int64_t channel = 0;
    /// As received: 0 to 127.
    std::int64_t note = 0;

    bool operator==(const NoteMessage&) const = default;
};

/// Listens to every MIDI source, or to the selected one, and reports its note-ons. Connects sources when they
/// appear, including those that come back. Owned by the engine for its whole life. Main thread except where
/// stated; failures of the services are not reported.
class MIDIManager final {
  public:
    /// Stopped; makes no call to the services. `services` must outlive the manager.
    explicit MIDIManager(platform::MIDIServices& services);
    /// Stops.
    ~MIDIManager();
    MIDIManager(const MIDIManager&) = delete;
    MIDIManager& operator=(const MIDIManager&) = delete;

    // The receivers; set before `start`. Both are called on threads of the services. They must pass the call
    // on to the main thread, and must not stop or destroy the manager.

    /// Gets every note-on of the connected sources.
    void onNoteOn(std::function<void(const NoteMessage&)> receiver);
    /// Called after every change of the MIDI setup, once the sources have been reconnected.
    void onSourcesChanged(std::function<void()> receiver);

    /// Makes a client and a port and connects the sources. The manager counts as started until `stop`, even
    /// if a step failed.
    void start();
    void stop();

    /// Connects every source, or only the selected one. Any thread.
    void connectSources();
    /// Any thread.
    void disconnectAllSources();

    /// The unique ID of the only source to listen to; all of them if absent. Reconnects if started.
    void setSelectedSourceID(std::optional<std::int32_t> sourceID);
    [[nodiscard]] std::optional<std::int32_t> selectedSourceID() const;

    /// The sources that exist now.
    [[nodiscard]] std::vector<MIDIDeviceInfo> availableSources() const;

    /// The sources that are connected. Any thread.
    [[nodiscard]] std::set<platform::MIDIEndpointRef> connectedEndpoints() const;

  private:
    struct State;

    /// The handlers hold it weakly.
    std::shared_ptr<State> state;
};

} // namespace orvane::midi
