#include "engine/mixer_engine.h"

#include <new>
#include <utility>

// The engine's members for sessions, and for changing the mix whole or not at all.

namespace orvane::engine {

struct MixerEngine::Backup {
    MixValues mix;
    InsertRack::Loads loads;
    std::int64_t bufferSize;
    std::vector<session::Snapshot> snapshots;
    std::optional<std::int64_t> currentSnapshotIndex;
    std::optional<platform::Uuid> playedSnapshotID;
    std::optional<std::int64_t> nextSnapshotIndex;
    std::vector<bool> pluginSlotRecallSafe;
    bool isRunning;
    /// The run of that moment; gone if it has ended since.
    std::weak_ptr<const RunningAudio> run;
};

session::MixerDocumentData MixerEngine::makeDocumentData() const {
    return {
        .channels = rack.capturedChannels(),
        .master = mix.master(),
        .bufferSize = published.bufferSize.get(),
        .snapshots = published.snapshots.get(),
        .pluginSlotRecallSafe = published.pluginSlotRecallSafe.get()};
}

void MixerEngine::applyDocument(const session::MixerDocumentData& document) {
    const auto loaded = loadDocument(document);
    if (!loaded) published.lastError.set(loaded.error().description);
}

platform::Result<platform::Done> MixerEngine::loadDocument(const session::MixerDocumentData& document) {
    if (changeMix([this, &document] { takeDocument(document); })) return platform::Done{};
    return platform::Error{"There is not enough memory to load the session; the mixer is as it was."};
}

void MixerEngine::takeDocument(const session::MixerDocumentData& document) {
    mix.editStrips([&document](auto& strips) { session::applySettings(document.channels, strips); });
    if (takeBufferSize(document.bufferSize)) {
        startOrThrow();
        reportFailedRestart();
    }
    published.snapshots.set(document.snapshots);
    published.playedSnapshotID.set(std::nullopt);
    scenes.deselect();
    mix.setMaster(document.master);
    published.pluginSlotRecallSafe.set(document.pluginSlotRecallSafe);
    rack.restoreFromStrips(RecordsFrom::session);
    pastes.clear();
}

bool MixerEngine::changeMix(const std::function<void()>& change) {
    std::optional<Backup> before;
    try {
        before = backUp();
        change();
        return true;
    } catch (const std::bad_alloc&) {
        if (before) takeBack(*std::move(before));
        return false;
    }
}

MixerEngine::Backup MixerEngine::backUp() {
    return {
        .mix = mix.values(),
        .loads = rack.loads(),
        .bufferSize = published.bufferSize.get(),
        .snapshots = published.snapshots.get(),
        .currentSnapshotIndex = published.currentSnapshotIndex.get(),
        .playedSnapshotID = published.playedSnapshotID.get(),
        .nextSnapshotIndex = published.nextSnapshotIndex.get(),
        .pluginSlotRecallSafe = published.pluginSlotRecallSafe.get(),
        .isRunning = mix.run() != nullptr,
        .run = mix.run()};
}

void MixerEngine::takeBack(Backup before) {
    mix.take(std::move(before.mix));
    rack.takeBack(std::move(before.loads));
    published.bufferSize.set(before.bufferSize);
    published.snapshots.set(std::move(before.snapshots));
    published.currentSnapshotIndex.set(before.currentSnapshotIndex);
    published.playedSnapshotID.set(before.playedSnapshotID);
    published.nextSnapshotIndex.set(before.nextSnapshotIndex);
    published.pluginSlotRecallSafe.set(std::move(before.pluginSlotRecallSafe));
    if (!before.isRunning || !before.run.expired()) return;
    restart();
}

} // namespace orvane::engine
