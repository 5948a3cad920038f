#include "engine/mixer_engine.h"

#include "plugins/insert_components.h"
#include "plugins/plugin_state.h"

// The engine's members for insert plugins.

namespace orvane::engine {

using platform::AVAudioUnitComponent;
using platform::Uuid;

std::vector<AVAudioUnitComponent> MixerEngine::availableInsertComponents() {
    return plugins::availableInsertComponents(services.audioUnitHost);
}

void MixerEngine::loadPlugin(
    const AVAudioUnitComponent& component, std::size_t slot, const Uuid& strip,
    const std::optional<platform::PropertyList::Data>& presetData
) {
    pluginOperations.rack().load(component, {strip, slot}, presetData);
}

void MixerEngine::removePlugin(std::size_t slot, const Uuid& strip) {
    pluginOperations.rack().remove({strip, slot});
}

void MixerEngine::setPluginBypassed(bool bypassed, std::size_t slot, const Uuid& strip) {
    pluginOperations.rack().setBypassed({strip, slot}, bypassed);
}

void MixerEngine::openPluginEditor(std::size_t slot, const Uuid& strip) {
    pluginOperations.rack().openEditor({strip, slot});
}

const AVAudioUnitComponent* MixerEngine::livePlugin(std::size_t slot, const Uuid& strip) const {
    const plugins::LoadedInsertPlugin* const live = pluginOperations.rack().plugin({strip, slot});
    return live == nullptr ? nullptr : &live->component;
}

double MixerEngine::pluginLatencyMs(std::size_t slot, const Uuid& strip) const {
    constexpr double msPerSecond = 1000.0;
    const plugins::LoadedInsertPlugin* const live = pluginOperations.rack().plugin({strip, slot});
    if (live == nullptr || live->sampleRate <= 0.0) return 0.0;
    return msPerSecond * live->avAudioUnit->latencyFrames() / live->sampleRate;
}

std::optional<session::SharedList<std::uint8_t>>
MixerEngine::pluginSettings(std::size_t slot, const Uuid& strip) const {
    const plugins::LoadedInsertPlugin* const live = pluginOperations.rack().plugin({strip, slot});
    session::PluginSlot captured;
    if (live == nullptr || !plugins::captureInto(captured, *live)) return std::nullopt;
    return captured.presetData;
}

void MixerEngine::restorePluginsFromStrips(plugins::RecordsFrom source) {
    pluginOperations.rack().restoreFromStrips(published.pluginSlotRecallSafe.get(), source);
}

void MixerEngine::copyPlugin(std::size_t slot, const Uuid& strip) {
    pluginOperations.copyPlugin({strip, slot});
}

void MixerEngine::toggleCopyArm() {
    pluginOperations.toggleCopyArm();
}

void MixerEngine::togglePasteArm() {
    pluginOperations.togglePasteArm();
}

void MixerEngine::cancelClipboardArm() {
    pluginOperations.cancelClipboardArm();
}

bool MixerEngine::handleClipboardClick(std::size_t slot, const Uuid& strip) {
    return pluginOperations.handleClipboardClick({strip, slot});
}

std::vector<plugins::NamedPreset> MixerEngine::pluginPresets(const session::AUComponentIdentity& identity
) const {
    return pluginOperations.presetStore().presets(identity);
}

std::vector<platform::AUAudioUnitPreset>
MixerEngine::factoryPresets(std::size_t slot, const Uuid& strip) const {
    const AVAudioUnitComponent* const live = livePlugin(slot, strip);
    if (live == nullptr) return {};
    return services.audioUnitHost.factoryPresets(live->audioComponentDescription);
}

void MixerEngine::applyFactoryPreset(
    const platform::AUAudioUnitPreset& preset, std::size_t slot, const Uuid& strip
) {
    pluginOperations.rack().applyFactoryPreset(preset, {strip, slot});
}

void MixerEngine::savePluginPreset(const std::string& name, std::size_t slot, const Uuid& strip) {
    pluginOperations.savePluginPreset(name, {strip, slot});
}

void MixerEngine::savePluginPresetOnAllChannels(const std::string& name, std::size_t slot) {
    pluginOperations.savePluginPresetOnAllChannels(name, slot);
}

void MixerEngine::applyPluginPreset(const plugins::NamedPreset& preset, std::size_t slot, const Uuid& strip) {
    pluginOperations.applyPluginPreset(preset, {strip, slot});
}

void MixerEngine::deletePluginPreset(const Uuid& id, const session::AUComponentIdentity& identity) {
    pluginOperations.deletePluginPreset(id, identity);
}

} // namespace orvane::engine
