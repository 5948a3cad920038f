#include "engine/plugin_operations.h"

#include "plugins/insert_components.h"
#include "plugins/plugin_clipboard.h"
#include "plugins/plugin_state.h"

#include <utility>

namespace orvane::engine {

namespace {

using plugins::LoadedInsertPlugin;
using plugins::PluginClipboardArmState;
using session::ChannelStrip;

/// What plugins are set up for until a device is selected, in Hz.
constexpr double sampleRateWithoutDevice = 48000.0;

} // namespace

PluginOperations::PluginOperations(Engine partOf, const Services& services)
    : engine(std::move(partOf)),
      insertRack(*this, {services.audioUnitHost, services.mainThread, services.log, services.editorWindows}),
      pluginPresetStore(services.applicationSupport, services.log),
      sampleRateHeard(engine.state.selectedDevice.subscribe(
          [this, &host = services.audioUnitHost](const auto&) { host.expectSampleRate(sampleRate()); }
      )) {}

audio::InsertTable PluginOperations::insertTable() const {
    audio::InsertTable table;
    for (const ChannelStrip& strip : channelStrips()) {
        auto& contexts = table.pluginContexts.emplace_back();
        auto& flags = table.pluginBypassFlags.emplace_back();
        for (std::size_t slot = 0; slot < strip.pluginSlots.size(); ++slot) {
            const LoadedInsertPlugin* const live = insertRack.plugin({strip.id, slot});
            contexts.push_back(live == nullptr ? nullptr : live->renderContext);
            flags.push_back(strip.pluginSlots[slot].bypassed);
        }
    }
    return table;
}

void PluginOperations::pushInserts() {
    if (audio::MixerRealtimeState* const state = engine.realtimeState()) state->updatePlugins(insertTable());
    insertRack.insertsWerePushed();
}

void PluginOperations::copyPlugin(const PluginSlotKey& key) {
    const LoadedInsertPlugin* const live = insertRack.plugin(key);
    if (live == nullptr) {
        setLastError("That insert slot is empty -- nothing to copy.");
        return;
    }
    auto captured = plugins::captureState(*live->avAudioUnit);
    engine.state.pluginClipboard.set(plugins::CopiedPlugin{
        .component = live->component,
        .name = live->component.name,
        .stateData = captured ? std::move(captured).value() : std::nullopt});
}

void PluginOperations::toggleCopyArm() {
    auto& armState = engine.state.pluginClipboardArmState;
    armState.set(plugins::afterCopyToggle(armState.get()));
}

void PluginOperations::togglePasteArm() {
    const bool isFilled = engine.state.pluginClipboard.get().has_value();
    auto& armState = engine.state.pluginClipboardArmState;
    armState.set(plugins::afterPasteToggle(armState.get(), isFilled));
}

void PluginOperations::cancelClipboardArm() {
    engine.state.pluginClipboardArmState.set(PluginClipboardArmState::none);
}

bool PluginOperations::handleClipboardClick(const PluginSlotKey& key) {
    auto& armState = engine.state.pluginClipboardArmState;
    const PluginClipboardArmState clicked = armState.get();
    if (clicked == PluginClipboardArmState::none) return false;
    armState.set(plugins::afterClick(clicked));
    if (clicked == PluginClipboardArmState::armedForCopy) {
        copyPlugin(key);
    } else if (const auto copied = engine.state.pluginClipboard.get()) {
        insertRack.load(copied->component, key, copied->stateData);
    }
    return true;
}

std::optional<plugins::NewPreset>
PluginOperations::presetOf(const std::string& name, const PluginSlotKey& key) {
    const LoadedInsertPlugin* const live = insertRack.plugin(key);
    if (live == nullptr) return std::nullopt;
    auto captured = plugins::captureState(*live->avAudioUnit);
    if (captured && captured.value())
        return plugins::NewPreset{name, *std::move(captured).value(), plugins::identityOf(live->component)};
    setLastError(
        captured ? live->component.name + " has no state to save yet -- change a setting on it first."
                 : "Couldn't save a preset for " + live->component.name + "."
    );
    return std::nullopt;
}

void PluginOperations::savePluginPreset(const std::string& name, const PluginSlotKey& key) {
    if (auto preset = presetOf(name, key))
        pluginPresetStore.add(std::move(preset->name), std::move(preset->data), preset->identity);
}

void PluginOperations::savePluginPresetOnAllChannels(const std::string& name, std::size_t slot) {
    // A copy: who is told of an error may change the strips.
    const std::vector<ChannelStrip> strips = channelStrips();
    std::vector<plugins::NewPreset> presets;
    for (const ChannelStrip& strip : strips)
        if (auto preset = presetOf(name, {strip.id, slot})) presets.push_back(*std::move(preset));
    pluginPresetStore.add(std::move(presets));
}

void PluginOperations::applyPluginPreset(const plugins::NamedPreset& preset, const PluginSlotKey& key) {
    const LoadedInsertPlugin* const live = insertRack.plugin(key);
    if (live == nullptr) return;
    if (const auto restored = plugins::restoreState(*live, preset.data); !restored)
        setLastError(restored.error().description);
}

void PluginOperations::deletePluginPreset(
    const platform::Uuid& id, const session::AUComponentIdentity& identity
) {
    pluginPresetStore.remove(id, identity);
}

const std::vector<ChannelStrip>& PluginOperations::channelStrips() const {
    return engine.state.channelStrips.get();
}

void PluginOperations::replaceSlot(const PluginSlotKey& key, session::PluginSlot record) {
    engine.editStrip(key.stripID, [&](ChannelStrip& strip) {
        if (key.slot < strip.pluginSlots.size()) strip.pluginSlots[key.slot] = std::move(record);
    });
}

const plugins::PluginLoadStates& PluginOperations::pluginLoadStates() const {
    return engine.state.pluginLoadStates.get();
}

void PluginOperations::setPluginLoadStates(plugins::PluginLoadStates states) {
    engine.state.pluginLoadStates.set(std::move(states));
}

void PluginOperations::setLastError(std::string sentence) {
    engine.state.lastError.set(std::move(sentence));
}

double PluginOperations::sampleRate() const {
    const auto& device = engine.state.selectedDevice.get();
    return device ? device->sampleRate : sampleRateWithoutDevice;
}

std::int64_t PluginOperations::bufferSize() const {
    return engine.state.bufferSize.get();
}

bool PluginOperations::freeRetired() {
    audio::MixerRealtimeState* const state = engine.realtimeState();
    return state == nullptr || state->freeRetired();
}

} // namespace orvane::engine
