#include "soak/published_invariants.h"

#include "engine/buffer_sizes.h"
#include "engine/mix_values.h"
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace orvane::soak {

PublishedInvariants::PublishedInvariants(const engine::MixerEngine& watched, Fault& found)
    : engine(watched), fault(found) {
    for (const session::ChannelStrip& strip : engine.state().channelStrips.get())
        strips.push_back(strip.id);
}

void PublishedInvariants::check() {
    const engine::EngineState& state = engine.state();
    fault.require(
        state.isRunning.get() == (engine.automix() != nullptr), "It is wrongly shown as running: {}",
        state.isRunning.get()
    );
    fault.require(
        engine::isBufferSize(state.bufferSize.get()), "The buffer size is {}", state.bufferSize.get()
    );
    const auto& message = state.lastError.get();
    fault.require(!message || !message->empty(), "The message is empty");
    fault.require(
        state.pluginClipboardArmState.get() != plugins::PluginClipboardArmState::armedForPaste
            || state.pluginClipboard.get(),
        "Pasting is armed with nothing to paste"
    );
    checkStrips();
    checkScenes();
    if (const dsp::AutomixProcessor* const automix = engine.automix()) checkAutomix(*automix);
}

void PublishedInvariants::checkAutomix(const dsp::AutomixProcessor& automix) {
    const engine::EngineState& state = engine.state();
    const session::MasterSettings& master = state.master.get();
    fault.require(
        automix.leadGroupGainDB() == master.levels.leadGroupGainDB
            && automix.backingGroupGainDB() == master.levels.backingGroupGainDB
            && automix.releaseMs() == master.duckerReleaseMs,
        "The automix settings differ from those shown"
    );
    fault.require(
        std::ranges::equal(automix.settings(), engine::automixSettings(state.channelStrips.get())),
        "The automix settings of the strips differ from those shown"
    );
}

void PublishedInvariants::checkStrips() {
    const auto& published = engine.state().channelStrips.get();
    fault.require(
        published.size() == strips.size(), "There are {} strips, not {}", published.size(), strips.size()
    );
    for (std::size_t i = 0; i < std::min(published.size(), strips.size()); ++i) {
        fault.require(published[i].id == strips[i], "Strip {} has another identity", i + 1);
        fault.require(
            published[i].pluginSlots.size() >= session::pluginSlotsPerChannel, "Strip {} has {} insert slots",
            i + 1, published[i].pluginSlots.size()
        );
    }
    for (const auto& [key, loadState] : engine.state().pluginLoadStates.get())
        fault.require(
            std::ranges::find(strips, key.stripID) != strips.end(),
            "Slot {} of a strip that does not exist has a plugin", key.slot + 1
        );
}

void PublishedInvariants::checkScenes() {
    const engine::EngineState& state = engine.state();
    const std::size_t count = state.snapshots.get().size();
    const std::optional<std::int64_t>& selected = state.currentSnapshotIndex.get();
    fault.require(
        !selected || (*selected >= 0 && static_cast<std::size_t>(*selected) < count),
        "Scene {} of {} is selected", selected.value_or(-1), count
    );
    // It may have been deleted in the meantime.
    const std::optional<std::int64_t>& learning = state.midiLearnTargetIndex.get();
    fault.require(!learning || *learning >= 0, "Scene {} is learning", learning.value_or(-1));
}

} // namespace orvane::soak
