#include "engine/mixer_engine.h"

#include "engine/scene_difference.h"

#include <string>
#include <utility>

namespace orvane::engine {

namespace {

/// Where more notes wait together than an operator plays, their scenes cannot all be recalled in time.
constexpr std::size_t mostNotesInTurn = 8;

} // namespace

void MixerEngine::newSnapshot(std::optional<std::string> name) {
    scenes.add(captureMix(), std::move(name));
}

void MixerEngine::insertSnapshot() {
    scenes.insert(captureMix());
}

void MixerEngine::storeSnapshot() {
    scenes.store(captureMix());
}

void MixerEngine::recallSnapshot(std::int64_t index) {
    recall([this, index] {
        scenes.select(index);
        if (published.currentSnapshotIndex.get() == index) recallSelected();
    });
}

void MixerEngine::recallCurrentSnapshot() {
    recall([this] { recallSelected(); });
}

void MixerEngine::recallNextSnapshot() {
    if (const std::optional<std::int64_t> next = published.nextSnapshotIndex.get()) recallSnapshot(*next);
}

bool MixerEngine::hasLeftPlayedSnapshot() const {
    const session::Snapshot* const scene = scenes.played();
    return scene != nullptr && differs(*scene, mix.strips(), mix.master().levels);
}

void MixerEngine::recall(const std::function<void()>& change) {
    if (changeMix(change)) return;
    published.lastError.set("There is not enough memory to recall the scene; the mixer is as it was.");
}

void MixerEngine::recallSelected() {
    if (scenes.selected() == nullptr) return;
    const session::Snapshot scene = *scenes.selected();
    mix.editStrips([&scene](auto& strips) { session::applySettings(scene.channels, strips); });
    mix.editMaster([&scene](auto& master) { master.levels = scene.levels; });
    rack.restoreFromStrips(RecordsFrom::scene);
    scenes.markPlayed();
    pastes.clear();
}

void MixerEngine::setRecallSafe(bool isSafe, std::int64_t slot) {
    std::vector<bool> flags = published.pluginSlotRecallSafe.get();
    if (slot < 0 || slot >= static_cast<std::int64_t>(flags.size())) return;
    flags[static_cast<std::size_t>(slot)] = isSafe;
    published.pluginSlotRecallSafe.set(std::move(flags));
}

void MixerEngine::handleMIDINote(const session::MIDITrigger& note) {
    if (const std::optional<std::int64_t> recalled = scenes.handleNote(note)) recallSnapshot(*recalled);
}

void MixerEngine::handleMIDINotes(std::span<const midi::NoteMessage> notes) {
    if (notes.size() <= mostNotesInTurn) {
        for (const midi::NoteMessage& note : notes)
            handleMIDINote({note.channel, note.note});
        return;
    }
    std::optional<std::int64_t> last;
    std::size_t recalls = 0;
    for (const midi::NoteMessage& note : notes) {
        const std::optional<std::int64_t> recalled = scenes.handleNote({note.channel, note.note});
        if (!recalled) continue;
        last = recalled;
        ++recalls;
    }
    if (!last) return;
    if (recalls > 1)
        services.log.post(
            platform::LogLevel::standard, "MIDI",
            {"Notes came faster than their scenes can be recalled; ", std::to_string(recalls - 1),
             " were passed over for the last one."}
        );
    recallSnapshot(*last);
}

session::Snapshot MixerEngine::captureMix() const {
    session::Snapshot captured;
    captured.channels = rack.capturedChannels();
    captured.levels = mix.master().levels;
    return captured;
}

} // namespace orvane::engine
