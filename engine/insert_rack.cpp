#include "engine/insert_rack.h"

#include "platform/base/abandoned.h"
#include "plugins/insert_components.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <variant>

namespace orvane::engine {

namespace {

using platform::AUAudioUnit;
using platform::AVAudioUnitComponent;
using platform::Error;
using plugins::identityOf;
using plugins::LoadedInsertPlugin;
using plugins::PluginLoadStates;
using plugins::PluginSlotKey;
using session::ChannelStrip;
using session::PluginSlot;
namespace load_state = plugins::load_state;

constexpr std::uint32_t editorWindowStyle =
    platform::NSWindowStyleMaskTitled | platform::NSWindowStyleMaskClosable
    | platform::NSWindowStyleMaskMiniaturizable | platform::NSWindowStyleMaskResizable;

/// What plugins are set up for until a device is selected, in Hz.
constexpr double sampleRateWithoutDevice = 48000.0;

/// What an error says, to be followed by a full stop.
std::string_view withoutFullStop(std::string_view sentence) {
    if (sentence.ends_with('.')) sentence.remove_suffix(1);
    return sentence;
}

/// How many slots of a strip can hold a live plugin.
std::size_t slotCount(const ChannelStrip& strip) {
    return std::min(strip.pluginSlots.size(), session::pluginSlotsPerChannel);
}

} // namespace

InsertRack::InsertRack(Mix& mixOfRack, EngineState& engineState, const Services& engineServices)
    : mix(mixOfRack),
      state(engineState),
      services(engineServices),
      sampleRateHeard(state.selectedDevice.subscribe([this](const auto&) {
          services.audioUnitHost.expectSampleRate(sampleRate());
      })) {}

void InsertRack::load(
    const AVAudioUnitComponent& component, const PluginSlotKey& key, const PresetData& presetData
) {
    if (record(key) == nullptr) return;
    unload(key);
    editRecord(key, [&](PluginSlot& slot) {
        slot.pluginName = component.name;
        slot.component = identityOf(component);
        slot.presetData = presetData;
        slot.bypassed = false;
    });
    instantiate(key, {component, presetData});
}

std::optional<PluginSlot> InsertRack::captured(const PluginSlotKey& key) const {
    const PluginSlot* const existing = record(key);
    if (existing == nullptr) return std::nullopt;
    PluginSlot kept = *existing;
    capture(key, kept);
    return kept;
}

void InsertRack::restore(const PluginSlotKey& key, const PluginSlot& slot) {
    if (record(key) == nullptr) return;
    unload(key);
    editRecord(key, [&slot](PluginSlot& restored) { restored = slot; });
    if (slot.component) restoreSlot(key, slot, plugins::availableInsertComponents(services.audioUnitHost));
}

void InsertRack::remove(const PluginSlotKey& key) {
    if (record(key) == nullptr) return;
    unload(key);
    editRecord(key, [](PluginSlot& slot) { slot = PluginSlot::makeEmpty(); });
}

void InsertRack::setBypassed(const PluginSlotKey& key, bool bypassed) {
    editRecord(key, [bypassed](PluginSlot& slot) { slot.bypassed = bypassed; });
}

void InsertRack::applyFactoryPreset(const platform::AUAudioUnitPreset& preset, const PluginSlotKey& key) {
    const auto asked = mix.plugin(key);
    if (!asked) return;
    services.audioUnitHost.readFactoryPreset(
        preset,
        [this, key, wanted = std::weak_ptr(asked),
         post = poster()](platform::Result<platform::PropertyList::Dictionary> setting) {
            post([this, key, wanted, setting = std::move(setting)] {
                const auto live = wanted.lock();
                if (!live || mix.plugin(key) != live) return;
                if (!setting) return state.lastError.set(setting.error().description);
                if (const auto taken = live->avAudioUnit->setFullState(setting.value()); !taken)
                    state.lastError.set(taken.error().description);
            });
        }
    );
}

void InsertRack::openEditor(const PluginSlotKey& key) {
    const auto plugin = mix.plugin(key);
    if (!plugin) return;
    if (services.editorWindows == nullptr)
        return state.lastError.set(
            "This program has no windows to show the editor of " + plugin->component.name + " in."
        );
    if (plugin->editorViewController) return openWindow(*plugin);
    plugin->avAudioUnit->requestViewController([this, key, asked = std::weak_ptr(plugin), post = poster()](
                                                   std::shared_ptr<platform::AUViewController> editor
                                               ) {
        post([this, key, asked, editor = std::move(editor)] { takeEditor(key, asked.lock(), editor); });
    });
}

void InsertRack::takeEditor(
    const PluginSlotKey& key, const std::shared_ptr<LoadedInsertPlugin>& plugin,
    std::shared_ptr<platform::AUViewController> editor
) {
    // The slot may have another plugin by now.
    if (!plugin || mix.plugin(key) != plugin) return;
    if (!editor) return state.lastError.set(plugin->component.name + " doesn't have a custom editor UI.");
    plugin->editorViewController = std::move(editor);
    openWindow(*plugin);
}

void InsertRack::openWindow(const LoadedInsertPlugin& plugin) {
    std::erase_if(pluginEditorWindowControllers, [](const auto& window) { return window->isClosed(); });
    platform::NSWindowController& window =
        *pluginEditorWindowControllers.emplace_back(services.editorWindows->windowWithContentViewController(
            plugin.editorViewController, plugin.component.name, editorWindowStyle
        ));
    window.showWindow();
    window.makeKeyAndOrderFront();
}

std::vector<PluginSlotKey> InsertRack::slots() const {
    std::vector<PluginSlotKey> keys;
    for (const ChannelStrip& strip : mix.strips())
        for (std::size_t slot = 0; slot < slotCount(strip); ++slot)
            keys.push_back({strip.id, slot});
    return keys;
}

void InsertRack::restoreFromStrips(RecordsFrom source) {
    const auto isLeftAlone = [&](const PluginSlotKey& key) {
        const std::vector<bool>& recallSafe = state.pluginSlotRecallSafe.get();
        return key.slot < recallSafe.size() && recallSafe[key.slot]
               && (source == RecordsFrom::scene || isLiveOrLoading(key));
    };
    // Not before it is needed: the first list may take seconds.
    std::optional<std::vector<AVAudioUnitComponent>> installed;
    for (const PluginSlotKey& key : slots()) {
        if (isLeftAlone(key)) continue;
        const PluginSlot* const slot = record(key);
        if (slot == nullptr || !slot->component) {
            unload(key);
            continue;
        }
        if (isThere(key, *slot->component, slot->presetData)) continue;
        if (!installed) installed = plugins::availableInsertComponents(services.audioUnitHost);
        restoreSlot(key, PluginSlot(*slot), *installed);
    }
    unloadWithoutSlot();
    mix.pushInserts();
}

bool InsertRack::isLiveOrLoading(const PluginSlotKey& key) const {
    const PluginLoadStates& states = state.pluginLoadStates.get();
    const auto found = states.find(key);
    return mix.plugin(key) != nullptr
           || (found != states.end() && std::holds_alternative<load_state::Loading>(found->second));
}

bool InsertRack::isThere(
    const PluginSlotKey& key, const session::AUComponentIdentity& identity, const PresetData& presetData
) const {
    const auto live = mix.plugin(key);
    if (live && identityOf(live->component) == identity) return true;
    const auto found = pendingLoads.find(key);
    const auto pending = found == pendingLoads.end() ? nullptr : found->second.lock();
    return pending && identityOf(pending->component) == identity && pending->presetData == presetData;
}

void InsertRack::restoreSlot(
    const PluginSlotKey& key, const PluginSlot& slot, const std::vector<AVAudioUnitComponent>& installed
) {
    const AVAudioUnitComponent* const found = plugins::componentFor(*slot.component, installed);
    if (found == nullptr) {
        std::string sentence = fmt::format(
            "Couldn't find installed plugin \"{}\" for {}, slot {} -- it may not be installed on this "
            "computer.",
            slot.pluginName.value_or("?"), strip(key)->name, key.slot + 1
        );
        unload(key);
        state.lastError.set(std::move(sentence));
        return;
    }
    const session::AUComponentIdentity identity = identityOf(*found);
    if (identity != *slot.component) {
        editRecord(key, [&](PluginSlot& renamed) {
            renamed.pluginName = found->name;
            renamed.component = identity;
        });
        if (isThere(key, identity, slot.presetData)) return;
    }
    unload(key);
    instantiate(key, {*found, slot.presetData});
}

std::vector<session::ChannelSettingsData> InsertRack::capturedChannels() const {
    std::vector<ChannelStrip> strips = mix.strips();
    for (ChannelStrip& strip : strips)
        for (std::size_t slot = 0; slot < strip.pluginSlots.size(); ++slot)
            capture({strip.id, slot}, strip.pluginSlots[slot]);
    return session::settingsOf(strips);
}

void InsertRack::capture(const PluginSlotKey& key, PluginSlot& into) const {
    const auto live = mix.plugin(key);
    if (!live) return;
    if (const auto captured = plugins::captureInto(into, *live); !captured)
        state.lastError.set(fmt::format(
            "The settings of the plugin {} are not saved and have to be set again: {}",
            live->renderContext->name(), captured.error().description
        ));
}

InsertRack::Loads InsertRack::loads() {
    auto laterLoads = std::make_shared<bool>(true);
    Loads now{state.pluginLoadStates.get(), nullptr, pendingLoads};
    now.areWanted = std::exchange(loadsAreWanted, std::move(laterLoads));
    return now;
}

void InsertRack::takeBack(Loads before) {
    *loadsAreWanted = false;
    loadsAreWanted = std::move(before.areWanted);
    pendingLoads = std::move(before.pending);
    state.pluginLoadStates.set(std::move(before.states));
}

void InsertRack::runHasStopped() {
    for (const auto& [key, plugin] : LivePlugins(mix.plugins())) {
        if (plugin->renderContext->isStuck())
            state.lastError.set(giveUp(key, plugin));
        else if (plugin->renderContext->isAbandoned())
            // The next start sets it up anew, with the settings that it has.
            plugin->sampleRate = 0.0;
    }
}

std::string InsertRack::giveUp(const PluginSlotKey& key, const std::shared_ptr<LoadedInsertPlugin>& plugin) {
    platform::abandon(plugin);
    mix.setPlugin(key, nullptr);
    setLoadState(key, load_state::Failed{"It does not return from its processing."});
    return fmt::format(
        "The plugin {} does not return from its processing and has been given up; remove it or load it "
        "again.",
        plugin->renderContext->name()
    );
}

const ChannelStrip* InsertRack::strip(const PluginSlotKey& key) const {
    const std::vector<ChannelStrip>& strips = mix.strips();
    const auto found = std::ranges::find(strips, key.stripID, &ChannelStrip::id);
    return found == strips.end() ? nullptr : &*found;
}

const PluginSlot* InsertRack::record(const PluginSlotKey& key) const {
    const ChannelStrip* const found = strip(key);
    return found == nullptr || key.slot >= slotCount(*found) ? nullptr : &found->pluginSlots[key.slot];
}

void InsertRack::editRecord(const PluginSlotKey& key, const std::function<void(PluginSlot&)>& edit) {
    if (record(key) == nullptr) return;
    mix.editStrip(key.stripID, [&](ChannelStrip& edited) { edit(edited.pluginSlots[key.slot]); });
}

void InsertRack::setLoadState(const PluginSlotKey& key, plugins::PluginLoadState loadState) {
    PluginLoadStates states = state.pluginLoadStates.get();
    states.insert_or_assign(key, std::move(loadState));
    state.pluginLoadStates.set(std::move(states));
}

void InsertRack::unload(const PluginSlotKey& key) {
    mix.setPlugin(key, nullptr);
    pendingLoads.erase(key);
    PluginLoadStates states = state.pluginLoadStates.get();
    if (states.erase(key) > 0) state.pluginLoadStates.set(std::move(states));
}

void InsertRack::unloadWithoutSlot() {
    std::vector<PluginSlotKey> orphans;
    for (const auto& [key, plugin] : mix.plugins())
        if (record(key) == nullptr) orphans.push_back(key);
    for (const PluginSlotKey& key : orphans)
        unload(key);
}

void InsertRack::instantiate(const PluginSlotKey& key, Load begun) {
    setLoadState(key, load_state::Loading{});
    const auto load = std::make_shared<const Load>(std::move(begun));
    pendingLoads.insert_or_assign(key, load);
    services.audioUnitHost.instantiate(
        load->component.audioComponentDescription, 0,
        [this, load, key, isWanted = loadsAreWanted,
         post = poster()](std::shared_ptr<AUAudioUnit> unit, std::optional<Error> error) {
            post([this, load, key, isWanted, unit = std::move(unit), error = std::move(error)] {
                if (!*isWanted) return;
                const auto pending = pendingLoads.find(key);
                if (pending != pendingLoads.end() && pending->second.lock() == load)
                    pendingLoads.erase(pending);
                if (unit && !error)
                    finishLoad(key, *load, unit);
                else
                    failLoad(key, *load, error);
            });
        }
    );
}

void InsertRack::failLoad(const PluginSlotKey& key, const Load& load, const std::optional<Error>& error) {
    setLoadState(key, load_state::Failed{error ? error->description : "Unknown error instantiating plugin."});
    state.lastError.set(fmt::format(
        "Failed to load {}: {}.", load.component.name,
        error ? withoutFullStop(error->description) : "unknown error"
    ));
}

void InsertRack::finishLoad(const PluginSlotKey& key, const Load& load, std::shared_ptr<AUAudioUnit> unit) {
    const auto plugin = std::make_shared<LoadedInsertPlugin>(LoadedInsertPlugin{
        .component = load.component, .avAudioUnit = std::move(unit)});
    if (!setUp(*plugin, key, load.presetData)) return state.lastError.set(refuse(load.component, key));
    if (plugin->renderContext->isAbandoned()) return state.lastError.set(giveUp(key, plugin));
    mix.setPlugin(key, plugin);
    setLoadState(key, load_state::Loaded{});
    mix.pushInserts();
}

bool InsertRack::setUp(LoadedInsertPlugin& plugin, const PluginSlotKey& key, const PresetData& presetData) {
    const double rate = sampleRate();
    const auto channelCount = plugins::negotiateFormat(*plugin.avAudioUnit, rate);
    if (!channelCount) return false;
    plugin.renderContext = std::make_shared<plugins::InsertRenderContext>(
        plugin.avAudioUnit->renderBlock(), *channelCount, labelOf(key, plugin.component.name), services.log
    );
    if (presetData)
        if (const auto restored = plugins::restoreState(plugin, *presetData); !restored)
            state.lastError.set(restored.error().description);
    plugins::warmUp(plugin, state.bufferSize.get());
    plugin.sampleRate = rate;
    return true;
}

std::string InsertRack::refuse(const AVAudioUnitComponent& component, const PluginSlotKey& key) {
    setLoadState(
        key,
        load_state::Failed{"Couldn't configure an audio format this plugin accepts (tried mono and stereo)."}
    );
    return "Couldn't load " + component.name + ": it didn't accept a mono or stereo audio format.";
}

std::vector<std::string> InsertRack::followSampleRate() {
    std::vector<std::string> refusals;
    for (const PluginSlotKey& key : slots())
        if (auto refusal = followSampleRate(key)) refusals.push_back(*std::move(refusal));
    return refusals;
}

std::optional<std::string> InsertRack::followSampleRate(const PluginSlotKey& key) {
    const auto plugin = mix.plugin(key);
    if (!plugin || plugin->sampleRate == sampleRate()) return std::nullopt;
    plugin->sampleRate = 0.0;
    plugin->avAudioUnit->deallocateRenderResources();
    if (setUp(*plugin, key)) {
        if (!plugin->renderContext->isAbandoned()) return std::nullopt;
        return giveUp(key, plugin);
    }
    // What it was set to is not lost with it.
    const PluginSlot* const existing = record(key);
    if (existing != nullptr && existing->component == identityOf(plugin->component))
        editRecord(key, [kept = captured(key)](PluginSlot& slot) { slot = *kept; });
    unload(key);
    return refuse(plugin->component, key);
}

std::string InsertRack::labelOf(const PluginSlotKey& key, const std::string& pluginName) const {
    const ChannelStrip* const found = strip(key);
    const std::string number = found == nullptr ? "?" : std::to_string(found - mix.strips().data() + 1);
    return fmt::format("Ch{} slot{}: {}", number, key.slot + 1, pluginName);
}

double InsertRack::sampleRate() const {
    const auto& device = state.selectedDevice.get();
    return device ? device->sampleRate : sampleRateWithoutDevice;
}

} // namespace orvane::engine
