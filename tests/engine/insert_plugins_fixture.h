#pragma once

#include "mixer_engine_fixture.h"

#include <memory>
#include <optional>

namespace orvane::test {

inline constexpr std::size_t stripCount = 3;

/// A mixer on a stepped device, every strip bypassed and going straight to the output of its number.
class InsertPlugins : public MixerEngineTest {
  protected:
    InsertPlugins() : MixerEngineTest(stripCount, 44100.0) {
        mono = audioUnitHost.add("Mono", {.inputChannels = {1}, .outputChannels = {1}});
        stereo = audioUnitHost.add("Stereo", {.inputChannels = {2}, .outputChannels = {2}});
    }

    /// What a strip sends out in the next block, as a multiple of what comes in.
    float heard(std::size_t strip = 0) {
        step();
        return mainOutput->played[strip] / static_cast<float>(steadyLevel);
    }

    void load(
        const platform::AVAudioUnitComponent& component, std::size_t slot, std::size_t strip = 0,
        const std::optional<platform::PropertyList::Data>& state = {}
    ) {
        engine->loadPlugin(component, slot, id(strip), state);
        mainThread.runPosted();
    }

    std::shared_ptr<ScriptedAudioUnit>
    loadLive(const platform::AVAudioUnitComponent& component, std::size_t slot, std::size_t strip = 0) {
        load(component, slot, strip);
        return audioUnitHost.lastUnit();
    }

    /// Completes a request of the effects' host and lets the engine take the result.
    void deliver(std::size_t index = 0) {
        audioUnitHost.deliver(index);
        mainThread.runPosted();
    }
    void deliverAll() {
        audioUnitHost.deliverAll();
        mainThread.runPosted();
    }

    /// Opens the editor of a slot of the first strip, which `unit` provides.
    void openEditor(const std::shared_ptr<ScriptedAudioUnit>& unit, std::size_t slot = 0) {
        engine->openPluginEditor(slot, id(0));
        unit->giveEditor(unit);
        mainThread.runPosted();
    }

    [[nodiscard]] platform::Uuid id(std::size_t strip) const { return strips().at(strip).id; }
    [[nodiscard]] const session::PluginSlot& record(std::size_t slot, std::size_t strip = 0) const {
        return strips().at(strip).pluginSlots.at(slot);
    }
    [[nodiscard]] std::optional<plugins::PluginLoadState>
    loadState(std::size_t slot, std::size_t strip = 0) const {
        const auto& states = engine->state().pluginLoadStates.get();
        const auto found = states.find({id(strip), slot});
        return found == states.end() ? std::nullopt : std::optional(found->second);
    }

    static platform::PropertyList::Data stateOf(double gain) {
        return platform::dataWithPropertyList({{"gain", {gain}}}).value();
    }

    platform::AVAudioUnitComponent mono;
    platform::AVAudioUnitComponent stereo;
};

} // namespace orvane::test
