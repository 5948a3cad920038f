#pragma once

#include "engine/engine_state.h"
#include "engine/services.h"
#include "midi/midi_manager.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orvane::engine {

/// The engine's MIDI input: publishes the sources there are and the selected one, and brings notes from the
/// services' threads to the main thread. Owned by the engine. Main thread.
class MIDIInput final {
  public:
    using NotesHandler = std::function<void(std::span<const midi::NoteMessage>)>;

    /// Not yet started. `published` outlives it; `handler` gets every note-on in order, on the main thread,
    /// and at once all that have come while that was busy.
    MIDIInput(const Services& services, EngineState& published, NotesHandler handler);

    /// Listens, and publishes the sources as they are and whenever they change.
    void start();
    void refreshDevices();
    /// Absent = all sources.
    void select(std::optional<std::int32_t> sourceID);
    /// What the selected source was called when it was selected; empty if it was not there.
    [[nodiscard]] const std::string& selectedName() const { return nameOfSelected; }

  private:
    void handleWaitingNotes();

    EngineState& state;
    std::string nameOfSelected;
    NotesHandler handleNotes;
    std::mutex waiting;
    /// Those that the main thread has not taken yet. Under the lock.
    std::vector<midi::NoteMessage> waitingNotes;
    /// Lets tasks on their way to the main thread find out that the input is gone.
    std::shared_ptr<const bool> isAlive = std::make_shared<const bool>(true);
    /// Last, so that it has stopped before what its callbacks use goes.
    midi::MIDIManager manager;
};

} // namespace orvane::engine
