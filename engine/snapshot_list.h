#pragma once

#include "engine/engine_state.h"
#include "engine/session/midi_trigger.h"
#include "engine/session/snapshot.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace orvane::engine {

/// The scenes of an engine: edits of the published list and of what is selected in it, the note that each is
/// to be recalled by, which one is played and which is next, and the way back. An edit without a valid
/// selection, or of an index that is not there, does nothing. Main thread.
class SnapshotList final {
  public:
    /// How many edits can be undone.
    static constexpr std::size_t mostUndos = 25;

    /// `engineState` outlives the list.
    explicit SnapshotList(EngineState& engineState) : state(engineState) {}
    SnapshotList(const SnapshotList&) = delete;
    SnapshotList& operator=(const SnapshotList&) = delete;

    // The captured mixes that come in have no id, name or trigger of their own yet.

    /// Adds the mix after the selected scene, or at the end, and selects it.
    void add(session::Snapshot captured, std::optional<std::string> name);
    /// Adds the mix before the selected scene, or at the front, and selects it.
    void insert(session::Snapshot captured);
    /// Puts the mix into the selected scene, which keeps its id, name and trigger; adds it if none is
    /// selected.
    void store(session::Snapshot captured);
    /// Adds a copy of the selected scene after it, without its trigger, and selects it.
    void copy();
    /// Removes the selected scene and selects the one that takes its place.
    void remove();
    /// Takes back the last of the above.
    void undo();

    /// Cannot be undone.
    void rename(std::int64_t index, std::string name);

    void selectPrevious();
    void selectNext();
    void select(std::int64_t index);
    /// Selects no scene, so that the first one is next.
    void deselect();

    /// Moves what is recalled next by one scene towards the front or the end, and selects it.
    void chooseEarlier();
    void chooseLater();
    /// Notes that the mix is now the selected scene.
    void markPlayed();

    /// The selected scene; null if there is none.
    [[nodiscard]] const session::Snapshot* selected() const;
    /// The scene that the mix was last recalled from or stored in; null if there is none, or if it has been
    /// removed.
    [[nodiscard]] const session::Snapshot* played() const;

    /// Lets the next note become the selected scene's trigger.
    void beginLearn();
    void cancelLearn();
    /// Gives the note to the scene that waits for one and returns nothing, or returns the first scene that it
    /// recalls.
    [[nodiscard]] std::optional<std::int64_t> handleNote(const session::MIDITrigger& note);

  private:
    [[nodiscard]] std::int64_t count() const;
    [[nodiscard]] bool exists(std::int64_t index) const;
    void pushUndo();
    void place(session::Snapshot captured, std::int64_t position, std::optional<std::string> name);
    /// Selects a scene, which is then the next one.
    void choose(std::optional<std::int64_t> index);
    void setNext(std::int64_t index);

    EngineState& state;
    std::deque<std::vector<session::Snapshot>> undoStack;
};

} // namespace orvane::engine
