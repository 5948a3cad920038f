#include "engine/mixer_engine.h"

#include "plugins/loaded_insert_plugin.h"
#include "plugins/plugin_clipboard.h"

#include <utility>

// The engine's members for live plugins, their clipboard and their presets.

namespace orvane::engine {

using platform::AVAudioUnitComponent;
using platform::Uuid;
using plugins::PluginClipboardArmState;
using plugins::PluginSlotKey;

const AVAudioUnitComponent* MixerEngine::livePlugin(std::size_t slot, const Uuid& strip) const {
    const auto live = mix.plugin({strip, slot});
    return live ? &live->component : nullptr;
}

double MixerEngine::pluginLatencyMs(std::size_t slot, const Uuid& strip) const {
    constexpr double msPerSecond = 1000.0;
    const auto live = mix.plugin({strip, slot});
    if (!live || live->sampleRate <= 0.0) return 0.0;
    return msPerSecond * live->avAudioUnit->latencyFrames() / live->sampleRate;
}

std::optional<session::SharedList<std::uint8_t>>
MixerEngine::pluginSettings(std::size_t slot, const Uuid& strip) const {
    const auto live = mix.plugin({strip, slot});
    session::PluginSlot captured;
    if (!live || !plugins::captureInto(captured, *live)) return std::nullopt;
    return captured.presetData;
}

void MixerEngine::copyPlugin(std::size_t slot, const Uuid& strip) {
    const auto live = mix.plugin({strip, slot});
    if (!live) return report("That insert slot is empty -- nothing to copy.");
    auto captured = plugins::captureState(*live->avAudioUnit);
    published.pluginClipboard.set(plugins::CopiedPlugin{
        .component = live->component,
        .name = live->component.name,
        .stateData = captured ? std::move(captured).value() : std::nullopt});
}

void MixerEngine::toggleCopyArm() {
    auto& armState = published.pluginClipboardArmState;
    armState.set(plugins::afterCopyToggle(armState.get()));
}

void MixerEngine::togglePasteArm() {
    auto& armState = published.pluginClipboardArmState;
    armState.set(plugins::afterPasteToggle(armState.get(), published.pluginClipboard.get().has_value()));
}

void MixerEngine::cancelClipboardArm() {
    published.pluginClipboardArmState.set(PluginClipboardArmState::none);
}

bool MixerEngine::handleClipboardClick(std::size_t slot, const Uuid& strip) {
    auto& armState = published.pluginClipboardArmState;
    const PluginClipboardArmState clicked = armState.get();
    if (clicked == PluginClipboardArmState::none) return false;
    armState.set(plugins::afterClick(clicked));
    if (clicked == PluginClipboardArmState::armedForCopy) {
        copyPlugin(slot, strip);
    } else if (const auto copied = published.pluginClipboard.get()) {
        pastes.paste(*copied, {strip, slot});
    }
    return true;
}

std::vector<platform::AUAudioUnitPreset>
MixerEngine::factoryPresets(std::size_t slot, const Uuid& strip) const {
    const AVAudioUnitComponent* const live = livePlugin(slot, strip);
    if (live == nullptr) return {};
    return services.audioUnitHost.factoryPresets(live->audioComponentDescription);
}

std::optional<plugins::NewPreset> MixerEngine::presetOf(const std::string& name, const PluginSlotKey& key) {
    const auto live = mix.plugin(key);
    if (!live) return std::nullopt;
    auto captured = plugins::captureState(*live->avAudioUnit);
    if (captured && captured.value())
        return plugins::NewPreset{name, *std::move(captured).value(), plugins::identityOf(live->component)};
    report(
        captured ? live->component.name + " has no state to save yet -- change a setting on it first."
                 : "Couldn't save a preset for " + live->component.name + "."
    );
    return std::nullopt;
}

void MixerEngine::savePluginPreset(const std::string& name, std::size_t slot, const Uuid& strip) {
    if (auto preset = presetOf(name, {strip, slot})) presets.add({*std::move(preset)});
}

void MixerEngine::savePluginPresetOnAllChannels(const std::string& name, std::size_t slot) {
    std::vector<plugins::NewPreset> made;
    for (const PluginSlotKey& key : rack.slots())
        if (key.slot == slot)
            if (auto preset = presetOf(name, key)) made.push_back(*std::move(preset));
    presets.add(std::move(made));
}

void MixerEngine::applyPluginPreset(const plugins::NamedPreset& preset, std::size_t slot, const Uuid& strip) {
    const auto live = mix.plugin({strip, slot});
    if (!live) return;
    if (const auto restored = plugins::restoreState(*live, preset.data); !restored)
        report(restored.error().description);
}

} // namespace orvane::engine
