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

/// Listens to every MIDI source, or to one that was selected, and gives what note-ons come from there.
/// Sources that come are connected, also when they come back. Owned by the engine for its whole life. Main
/// thread but where said otherwise; failures of the services are not reported.
class MIDIManager final {
  public:
    /// Stopped; touches no service. `services` outlives the manager.
    explicit MIDIManager(platform::MIDIServices& services);
    /// Stops.
    ~MIDIManager();
    MIDIManager(const MIDIManager&) = delete;
    MIDIManager& operator=(const MIDIManager&) = delete;

    // The receivers; set before the start. Both are called on threads of the services: they hand over to the
    // main thread, and never stop or destroy the manager.

    /// Gets every note-on of the connected sources.
    void onNoteOn(std::function<void(const NoteMessage&)> receiver);
    /// Told after every change of the MIDI setup, when the sources are connected anew.
    void onSourcesChanged(std::function<void()> receiver);

    /// Makes a client and a port and connects the sources. Once started it stays so, even where a step
    /// failed, until it is stopped.
    void start();
    void stop();

    /// Connects every source, or the selected one, and no other. Any thread.
    void connectSources();
    /// Any thread.
    void disconnectAllSources();

    /// The unique ID of the one source to listen to; absent = all of them. Connects anew where started.
    void setSelectedSourceID(std::optional<std::int32_t> sourceID);
    [[nodiscard]] std::optional<std::int32_t> selectedSourceID() const;

    /// The sources that there are now.
    [[nodiscard]] std::vector<MIDIDeviceInfo> availableSources() const;

    /// The sources that it listens to. Any thread.
    [[nodiscard]] std::set<platform::MIDIEndpointRef> connectedEndpoints() const;

  private:
    struct State;

    /// The handlers hold it weakly.
    std::shared_ptr<State> state;
};

} // namespace orvane::midi
