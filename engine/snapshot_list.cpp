#include "engine/snapshot_list.h"

#include <algorithm>
#include <utility>

namespace orvane::engine {

namespace {

using session::Snapshot;

std::size_t asPosition(std::int64_t index) {
    return static_cast<std::size_t>(index);
}

} // namespace

void SnapshotList::add(Snapshot captured, std::optional<std::string> name) {
    pushUndo();
    const std::optional<std::int64_t> current = state.currentSnapshotIndex.get();
    const std::int64_t position = current ? *current + 1 : count();
    place(std::move(captured), position, std::move(name));
    state.currentSnapshotIndex.set(std::min(position, count() - 1));
    markPlayed();
}

void SnapshotList::insert(Snapshot captured) {
    pushUndo();
    const std::int64_t position = state.currentSnapshotIndex.get().value_or(0);
    place(std::move(captured), position, std::nullopt);
    state.currentSnapshotIndex.set(position);
    markPlayed();
}

void SnapshotList::store(Snapshot captured) {
    if (selected() == nullptr) {
        add(std::move(captured), std::nullopt);
        return;
    }
    pushUndo();
    std::vector<Snapshot> scenes = state.snapshots.get();
    Snapshot& scene = scenes[asPosition(*state.currentSnapshotIndex.get())];
    captured.id = scene.id;
    captured.name = std::move(scene.name);
    captured.midiTrigger = scene.midiTrigger;
    scene = std::move(captured);
    state.snapshots.set(std::move(scenes));
    markPlayed();
}

void SnapshotList::copy() {
    if (selected() == nullptr) return;
    pushUndo();
    Snapshot duplicate = *selected();
    duplicate.name += " copy";
    duplicate.midiTrigger.reset();
    const std::int64_t position = *state.currentSnapshotIndex.get() + 1;
    std::string name = duplicate.name;
    place(std::move(duplicate), position, std::move(name));
    choose(position);
}

void SnapshotList::remove() {
    if (selected() == nullptr) return;
    pushUndo();
    const std::int64_t index = *state.currentSnapshotIndex.get();
    std::vector<Snapshot> scenes = state.snapshots.get();
    scenes.erase(scenes.begin() + index);
    state.snapshots.set(std::move(scenes));
    choose(count() > 0 ? std::optional(std::min(index, count() - 1)) : std::nullopt);
}

void SnapshotList::undo() {
    if (undoStack.empty()) return;
    // Taken off first: subscribers may throw.
    std::vector<Snapshot> earlier = std::move(undoStack.back());
    undoStack.pop_back();
    state.snapshots.set(std::move(earlier));
    if (state.currentSnapshotIndex.get() && selected() == nullptr)
        choose(count() > 0 ? std::optional(count() - 1) : std::nullopt);
    else
        setNext(state.nextSnapshotIndex.get().value_or(count()));
}

void SnapshotList::rename(std::int64_t index, std::string name) {
    if (!exists(index)) return;
    std::vector<Snapshot> scenes = state.snapshots.get();
    scenes[asPosition(index)].name = std::move(name);
    state.snapshots.set(std::move(scenes));
}

void SnapshotList::selectPrevious() {
    if (count() == 0) return;
    choose(std::max<std::int64_t>(0, state.currentSnapshotIndex.get().value_or(0) - 1));
}

void SnapshotList::selectNext() {
    if (count() == 0) return;
    choose(std::min(count() - 1, state.currentSnapshotIndex.get().value_or(-1) + 1));
}

void SnapshotList::select(std::int64_t index) {
    if (exists(index)) choose(index);
}

void SnapshotList::deselect() {
    choose(std::nullopt);
}

void SnapshotList::chooseEarlier() {
    select(state.nextSnapshotIndex.get().value_or(count()) - 1);
}

void SnapshotList::chooseLater() {
    select(state.nextSnapshotIndex.get().value_or(count()) + 1);
}

void SnapshotList::markPlayed() {
    if (selected() == nullptr) return;
    state.playedSnapshotID.set(selected()->id);
    setNext(*state.currentSnapshotIndex.get() + 1);
}

void SnapshotList::choose(std::optional<std::int64_t> index) {
    state.currentSnapshotIndex.set(index);
    setNext(index.value_or(0));
}

void SnapshotList::setNext(std::int64_t index) {
    state.nextSnapshotIndex.set(exists(index) ? std::optional(index) : std::nullopt);
}

const Snapshot* SnapshotList::selected() const {
    const std::optional<std::int64_t> index = state.currentSnapshotIndex.get();
    return index && exists(*index) ? &state.snapshots.get()[asPosition(*index)] : nullptr;
}

const Snapshot* SnapshotList::played() const {
    const std::optional<platform::Uuid>& id = state.playedSnapshotID.get();
    const std::vector<Snapshot>& scenes = state.snapshots.get();
    const auto found = id ? std::ranges::find(scenes, *id, &Snapshot::id) : scenes.end();
    return found == scenes.end() ? nullptr : &*found;
}

void SnapshotList::beginLearn() {
    if (selected() != nullptr) state.midiLearnTargetIndex.set(state.currentSnapshotIndex.get());
}

void SnapshotList::cancelLearn() {
    state.midiLearnTargetIndex.set(std::nullopt);
}

std::optional<std::int64_t> SnapshotList::handleNote(const session::MIDITrigger& note) {
    const std::optional<std::int64_t> learning = state.midiLearnTargetIndex.get();
    if (learning && exists(*learning)) {
        std::vector<Snapshot> scenes = state.snapshots.get();
        scenes[asPosition(*learning)].midiTrigger = note;
        state.snapshots.set(std::move(scenes));
        state.midiLearnTargetIndex.set(std::nullopt);
        return std::nullopt;
    }
    const std::vector<Snapshot>& scenes = state.snapshots.get();
    const auto found = std::ranges::find(scenes, std::optional(note), &Snapshot::midiTrigger);
    if (found == scenes.end()) return std::nullopt;
    return found - scenes.begin();
}

std::int64_t SnapshotList::count() const {
    return static_cast<std::int64_t>(state.snapshots.get().size());
}

bool SnapshotList::exists(std::int64_t index) const {
    return index >= 0 && index < count();
}

void SnapshotList::pushUndo() {
    undoStack.push_back(state.snapshots.get());
    if (undoStack.size() > mostUndos) undoStack.pop_front();
}

void SnapshotList::place(Snapshot captured, std::int64_t position, std::optional<std::string> name) {
    captured.id = platform::Uuid::random();
    captured.name = name ? std::move(*name) : "Snapshot " + std::to_string(count() + 1);
    std::vector<Snapshot> scenes = state.snapshots.get();
    scenes.insert(scenes.begin() + std::min(position, count()), std::move(captured));
    state.snapshots.set(std::move(scenes));
}

} // namespace orvane::engine
