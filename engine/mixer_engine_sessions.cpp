#include "engine/mixer_engine.h"

#include <new>
#include <utility>

// The engine's members for sessions, and for changing the mix whole or not at all.

namespace orvane::engine {

session::MixerDocumentData MixerEngine::makeDocumentData() const {
    return {
        .channels = pluginOperations.rack().capturedChannels(),
        .master = published.master.get(),
        .bufferSize = published.bufferSize.get(),
        .snapshots = published.snapshots.get(),
        .pluginSlotRecallSafe = published.pluginSlotRecallSafe.get()};
}

void MixerEngine::applyDocument(const session::MixerDocumentData& document) {
    const auto loaded = loadDocument(document);
    if (!loaded) published.lastError.set(loaded.error().description);
}

platform::Result<platform::Done> MixerEngine::loadDocument(const session::MixerDocumentData& document) {
    const auto take = [this, &document] { takeDocument(document); };
    if (changeMix(Extent::mixAndSnapshots, take)) return platform::Done{};
    return platform::Error{"There is not enough memory to load the session; the mixer is as it was."};
}

void MixerEngine::takeDocument(const session::MixerDocumentData& document) {
    editStrips([&document](auto& strips) { session::applySettings(document.channels, strips); });
    if (takeBufferSize(document.bufferSize)) startOrThrow();
    published.snapshots.set(document.snapshots);
    published.currentSnapshotIndex.set(std::nullopt);
    setMaster(document.master);
    published.pluginSlotRecallSafe.set(document.pluginSlotRecallSafe);
    restorePluginsFromStrips(plugins::RecordsFrom::session);
}

bool MixerEngine::changeMix(Extent extent, const std::function<void()>& change) {
    std::optional<MixBackup> before;
    try {
        before = backUp(extent);
        change();
        return true;
    } catch (const std::bad_alloc&) {
        if (before) takeBack(*std::move(before));
        return false;
    }
}

MixBackup MixerEngine::backUp(Extent extent) {
    const bool withSnapshots = extent == Extent::mixAndSnapshots;
    return {
        .channelStrips = published.channelStrips.get(),
        .master = published.master.get(),
        .bufferSize = published.bufferSize.get(),
        .snapshots = withSnapshots ? std::optional(published.snapshots.get()) : std::nullopt,
        .currentSnapshotIndex = published.currentSnapshotIndex.get(),
        .pluginSlotRecallSafe = published.pluginSlotRecallSafe.get(),
        .isRunning = published.isRunning.get(),
        .run = runIsOn,
        .plugins = pluginOperations.rack().livePlugins()};
}

void MixerEngine::takeBack(MixBackup before) {
    pluginOperations.rack().takeBack(std::move(before.plugins));
    published.channelStrips.set(std::move(before.channelStrips));
    published.bufferSize.set(before.bufferSize);
    if (before.snapshots) published.snapshots.set(*std::move(before.snapshots));
    published.currentSnapshotIndex.set(before.currentSnapshotIndex);
    published.pluginSlotRecallSafe.set(std::move(before.pluginSlotRecallSafe));
    setMaster(before.master);
    pushStrips();
    if (!before.isRunning || !before.run.expired()) return;
    stop();
    start();
}

} // namespace orvane::engine
