#include "plugins/insert_rack.h"

#include "platform/base/abandoned.h"
#include "platform/base/stop_patience.h"
#include "plugins/format_negotiation.h"
#include "plugins/insert_components.h"
#include "plugins/plugin_state.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <semaphore>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <variant>

namespace orvane::plugins {

namespace {

using platform::AUAudioUnit;
using platform::AVAudioUnitComponent;
using platform::Error;
using session::ChannelStrip;
using session::PluginSlot;

constexpr std::uint32_t editorWindowStyle =
    platform::NSWindowStyleMaskTitled | platform::NSWindowStyleMaskClosable
    | platform::NSWindowStyleMaskMiniaturizable | platform::NSWindowStyleMaskResizable;

/// The first block of a plugin may take its time, and is rendered before anybody waits for it. On a thread
/// of its own, which is abandoned with the plugin if it does not return.
void warmUp(const LoadedInsertPlugin& plugin, std::int64_t frameCount) {
    struct FirstBlock {
        LoadedInsertPlugin plugin;
        std::vector<double> samples;
        std::binary_semaphore isRendered{0};
    };
    if (frameCount < 1 || frameCount > static_cast<std::int64_t>(InsertRenderContext::maximumFrames)) return;
    const auto block =
        std::make_shared<FirstBlock>(plugin, std::vector(static_cast<std::size_t>(frameCount), 0.0));
    try {
        std::thread thread([block] {
            block->plugin.renderContext->process(
                block->samples, static_cast<std::int64_t>(block->samples.size())
            );
            block->isRendered.release();
        });
        if (block->isRendered.try_acquire_for(platform::stopPatience())) return thread.join();
        thread.detach();
    } catch (const std::system_error&) {
        return;
    }
    plugin.renderContext->abandon();
    platform::abandon(block);
}

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

InsertRack::InsertRack(InsertRackOwner& rackOwner, const Services& rackServices)
    : owner(rackOwner),
      services(rackServices),
      retired(services.mainThread, [this] { return owner.freeRetired(); }) {}

void InsertRack::load(
    const AVAudioUnitComponent& component, const PluginSlotKey& key, const PresetData& presetData
) {
    const PluginSlot* const existing = record(key);
    if (existing == nullptr) return;
    PluginSlot replaced = *existing;
    unload(key);
    replaced.pluginName = component.name;
    replaced.component = identityOf(component);
    replaced.presetData = presetData;
    replaced.bypassed = false;
    owner.replaceSlot(key, std::move(replaced));
    setLoadState(key, load_state::Loading{});
    instantiate(component, key, presetData);
}

void InsertRack::remove(const PluginSlotKey& key) {
    if (record(key) == nullptr) return;
    unload(key);
    owner.replaceSlot(key, PluginSlot::makeEmpty());
}

void InsertRack::setBypassed(const PluginSlotKey& key, bool bypassed) {
    const PluginSlot* const existing = record(key);
    if (existing == nullptr) return;
    PluginSlot replaced = *existing;
    replaced.bypassed = bypassed;
    owner.replaceSlot(key, std::move(replaced));
}

void InsertRack::applyFactoryPreset(const platform::AUAudioUnitPreset& preset, const PluginSlotKey& key) {
    const auto found = loadedPlugins.find(key);
    if (found == loadedPlugins.end()) return;
    services.audioUnitHost.readFactoryPreset(
        preset,
        [this, key, wanted = std::weak_ptr(found->second),
         hop = onMainThread()](platform::Result<platform::PropertyList::Dictionary> state) {
            hop([this, key, wanted, state = std::move(state)] {
                const auto live = wanted.lock();
                if (!live || plugin(key) != live.get()) return;
                if (!state) return owner.setLastError(state.error().description);
                if (const auto taken = live->avAudioUnit->setFullState(state.value()); !taken)
                    owner.setLastError(taken.error().description);
            });
        }
    );
}

void InsertRack::openEditor(const PluginSlotKey& key) {
    const auto found = loadedPlugins.find(key);
    if (found == loadedPlugins.end()) return;
    const std::shared_ptr<LoadedInsertPlugin> plugin = found->second;
    if (services.editorWindows == nullptr) {
        owner.setLastError(
            "This program has no windows to show the editor of " + plugin->component.name + " in."
        );
        return;
    }
    if (plugin->editorViewController) {
        openWindow(*plugin);
        return;
    }
    plugin->avAudioUnit->requestViewController([this, key, asked = std::weak_ptr(plugin),
                                                hop = onMainThread(
                                                )](std::shared_ptr<platform::AUViewController> editor) {
        hop([this, key, asked, editor = std::move(editor)] { takeEditor(key, asked.lock(), editor); });
    });
}

void InsertRack::takeEditor(
    const PluginSlotKey& key, const std::shared_ptr<LoadedInsertPlugin>& plugin,
    std::shared_ptr<platform::AUViewController> editor
) {
    // The slot may have another plugin by now.
    const auto found = loadedPlugins.find(key);
    if (!plugin || found == loadedPlugins.end() || found->second != plugin) return;
    if (!editor) {
        owner.setLastError(plugin->component.name + " doesn't have a custom editor UI.");
        return;
    }
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

void InsertRack::restoreFromStrips(const std::vector<bool>& recallSafe, RecordsFrom source) {
    const auto isLeftAlone = [&](const PluginSlotKey& key) {
        return key.slot < recallSafe.size() && recallSafe[key.slot]
               && (source == RecordsFrom::scene || isLiveOrLoading(key));
    };
    // Not before it is needed: the first list may take seconds.
    std::optional<std::vector<AVAudioUnitComponent>> installed;
    // A copy: who is told of a change may change the strips.
    for (const ChannelStrip& strip : std::vector(owner.channelStrips()))
        for (std::size_t index = 0; index < slotCount(strip); ++index) {
            const PluginSlotKey key{strip.id, index};
            const PluginSlot& slot = strip.pluginSlots[index];
            if (isLeftAlone(key)) continue;
            if (!slot.component) {
                unload(key);
                continue;
            }
            if (isThere(key, *slot.component, slot.presetData)) continue;
            if (!installed) installed = availableInsertComponents(services.audioUnitHost);
            restoreSlot(key, slot, strip.name, *installed);
        }
    unloadWhereNoSlotIs();
    owner.pushInserts();
}

bool InsertRack::isLiveOrLoading(const PluginSlotKey& key) const {
    const PluginLoadStates& states = owner.pluginLoadStates();
    const auto found = states.find(key);
    return plugin(key) != nullptr
           || (found != states.end() && std::holds_alternative<load_state::Loading>(found->second));
}

bool InsertRack::isThere(
    const PluginSlotKey& key, const session::AUComponentIdentity& identity, const PresetData& presetData
) const {
    const LoadedInsertPlugin* const live = plugin(key);
    if (live != nullptr && identityOf(live->component) == identity) return true;
    const auto found = pendingLoads.find(key);
    const auto pending = found == pendingLoads.end() ? nullptr : found->second.lock();
    return pending && identityOf(pending->component) == identity && pending->presetData == presetData;
}

void InsertRack::rename(const PluginSlotKey& key, const AVAudioUnitComponent& component) {
    const PluginSlot* const existing = record(key);
    if (existing == nullptr) return;
    PluginSlot renamed = *existing;
    renamed.pluginName = component.name;
    renamed.component = identityOf(component);
    owner.replaceSlot(key, std::move(renamed));
}

void InsertRack::restoreSlot(
    const PluginSlotKey& key, const PluginSlot& slot, const std::string& stripName,
    const std::vector<AVAudioUnitComponent>& installed
) {
    const AVAudioUnitComponent* const found = componentFor(*slot.component, installed);
    if (found == nullptr) {
        unload(key);
        owner.setLastError(fmt::format(
            "Couldn't find installed plugin \"{}\" for {}, slot {} -- it may not be installed on this Mac.",
            slot.pluginName.value_or("?"), stripName, key.slot + 1
        ));
        return;
    }
    const session::AUComponentIdentity identity = identityOf(*found);
    if (identity != *slot.component) {
        rename(key, *found);
        if (isThere(key, identity, slot.presetData)) return;
    }
    unload(key);
    setLoadState(key, load_state::Loading{});
    instantiate(*found, key, slot.presetData);
}

const LoadedInsertPlugin* InsertRack::plugin(const PluginSlotKey& key) const {
    const auto found = loadedPlugins.find(key);
    return found == loadedPlugins.end() ? nullptr : found->second.get();
}

std::vector<session::ChannelSettingsData> InsertRack::capturedChannels() const {
    // A copy: what follows the message line may change the strips.
    const std::vector<ChannelStrip> strips = owner.channelStrips();
    std::vector<session::ChannelSettingsData> channels = session::settingsOf(strips);
    for (std::size_t strip = 0; strip < strips.size(); ++strip) {
        std::vector<PluginSlot>& slots = channels[strip].pluginSlots;
        for (std::size_t slot = 0; slot < slots.size(); ++slot)
            capture({strips[strip].id, slot}, slots[slot]);
    }
    return channels;
}

void InsertRack::capture(const PluginSlotKey& key, PluginSlot& into) const {
    const LoadedInsertPlugin* const live = plugin(key);
    if (live == nullptr) return;
    if (const auto captured = captureInto(into, *live); !captured)
        owner.setLastError(fmt::format(
            "The settings of the plugin {} are not saved and have to be set again: {}",
            live->renderContext->name(), captured.error().description
        ));
}

InsertRack::LivePlugins InsertRack::livePlugins() {
    auto laterLoads = std::make_shared<bool>(true);
    LivePlugins now{loadedPlugins, owner.pluginLoadStates(), nullptr, pendingLoads};
    now.loadsAreWanted = std::exchange(loadsAreWanted, std::move(laterLoads));
    return now;
}

void InsertRack::takeBack(LivePlugins before) {
    *loadsAreWanted = false;
    loadsAreWanted = std::move(before.loadsAreWanted);
    loadedPlugins = std::move(before.plugins);
    pendingLoads = std::move(before.pendingLoads);
    owner.setPluginLoadStates(std::move(before.loadStates));
}

void InsertRack::insertsWerePushed() {
    retired.wereWithdrawn();
    retired.release();
}

void InsertRack::runHasStopped() {
    for (const auto& [key, plugin] : std::unordered_map(loadedPlugins)) {
        if (plugin->renderContext->isStuck())
            owner.setLastError(giveUp(key, plugin));
        else if (plugin->renderContext->isAbandoned())
            // The next start sets it up anew, with the settings that it has.
            plugin->sampleRate = 0.0;
    }
    retired.release();
}

std::string InsertRack::giveUp(const PluginSlotKey& key, const std::shared_ptr<LoadedInsertPlugin>& plugin) {
    platform::abandon(plugin);
    loadedPlugins.erase(key);
    setLoadState(key, load_state::Failed{"It does not return from its processing."});
    return fmt::format(
        "The plugin {} does not return from its processing and has been given up; remove it or load it "
        "again.",
        plugin->renderContext->name()
    );
}

const PluginSlot* InsertRack::record(const PluginSlotKey& key) const {
    const std::vector<ChannelStrip>& strips = owner.channelStrips();
    const auto strip = std::ranges::find(strips, key.stripID, &ChannelStrip::id);
    if (strip == strips.end() || key.slot >= slotCount(*strip)) return nullptr;
    return &strip->pluginSlots[key.slot];
}

void InsertRack::setLoadState(const PluginSlotKey& key, PluginLoadState loadState) {
    PluginLoadStates states = owner.pluginLoadStates();
    states.insert_or_assign(key, std::move(loadState));
    owner.setPluginLoadStates(std::move(states));
}

void InsertRack::unload(const PluginSlotKey& key) {
    if (const auto found = loadedPlugins.find(key); found != loadedPlugins.end()) {
        retired.add(found->second);
        loadedPlugins.erase(found);
    }
    pendingLoads.erase(key);
    PluginLoadStates states = owner.pluginLoadStates();
    if (states.erase(key) > 0) owner.setPluginLoadStates(std::move(states));
}

void InsertRack::unloadWhereNoSlotIs() {
    std::vector<PluginSlotKey> orphans;
    for (const auto& [key, plugin] : loadedPlugins)
        if (record(key) == nullptr) orphans.push_back(key);
    for (const PluginSlotKey& key : orphans)
        unload(key);
}

void InsertRack::instantiate(
    const AVAudioUnitComponent& component, const PluginSlotKey& key, PresetData presetData
) {
    const auto load = std::make_shared<const Load>(Load{component, std::move(presetData)});
    pendingLoads.insert_or_assign(key, load);
    services.audioUnitHost.instantiate(
        component.audioComponentDescription, 0,
        [this, load, key, isWanted = loadsAreWanted,
         hop = onMainThread()](std::shared_ptr<AUAudioUnit> unit, std::optional<Error> error) {
            hop([this, load, key, isWanted, unit = std::move(unit), error = std::move(error)] {
                if (!*isWanted) return;
                const auto pending = pendingLoads.find(key);
                if (pending != pendingLoads.end() && pending->second.lock() == load)
                    pendingLoads.erase(pending);
                if (unit && !error)
                    finishLoad(unit, load->component, key, load->presetData);
                else
                    fail(load->component, key, error);
            });
        }
    );
}

void InsertRack::fail(
    const AVAudioUnitComponent& component, const PluginSlotKey& key, const std::optional<Error>& error
) {
    setLoadState(key, load_state::Failed{error ? error->description : "Unknown error instantiating plugin."});
    owner.setLastError(fmt::format(
        "Failed to load {}: {}.", component.name,
        error ? withoutFullStop(error->description) : "unknown error"
    ));
}

void InsertRack::finishLoad(
    std::shared_ptr<AUAudioUnit> unit, const AVAudioUnitComponent& component, const PluginSlotKey& key,
    const PresetData& presetData
) {
    const auto plugin = std::make_shared<LoadedInsertPlugin>(LoadedInsertPlugin{
        .component = component, .avAudioUnit = std::move(unit)});
    if (!setUp(*plugin, key, presetData)) {
        owner.setLastError(refuse(component, key));
        return;
    }
    if (plugin->renderContext->isAbandoned()) {
        owner.setLastError(giveUp(key, plugin));
        return;
    }
    if (const auto replaced = loadedPlugins.find(key); replaced != loadedPlugins.end())
        retired.add(replaced->second);
    loadedPlugins.insert_or_assign(key, plugin);
    setLoadState(key, load_state::Loaded{});
    owner.pushInserts();
}

bool InsertRack::setUp(LoadedInsertPlugin& plugin, const PluginSlotKey& key, const PresetData& presetData) {
    const double sampleRate = owner.sampleRate();
    const auto channelCount = negotiateFormat(*plugin.avAudioUnit, sampleRate);
    if (!channelCount) return false;
    plugin.renderContext = std::make_shared<InsertRenderContext>(
        plugin.avAudioUnit->renderBlock(), *channelCount, labelOf(key, plugin.component.name), services.log
    );
    if (presetData)
        if (const auto restored = restoreState(plugin, *presetData); !restored)
            owner.setLastError(restored.error().description);
    warmUp(plugin, owner.bufferSize());
    plugin.sampleRate = sampleRate;
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
    // A copy: who is told of a change may change the strips.
    for (const ChannelStrip& strip : std::vector(owner.channelStrips()))
        for (std::size_t slot = 0; slot < strip.pluginSlots.size(); ++slot)
            if (auto refusal = followSampleRate({strip.id, slot})) refusals.push_back(*std::move(refusal));
    return refusals;
}

std::optional<std::string> InsertRack::followSampleRate(const PluginSlotKey& key) {
    const auto found = loadedPlugins.find(key);
    if (found == loadedPlugins.end() || found->second->sampleRate == owner.sampleRate()) return std::nullopt;
    const std::shared_ptr<LoadedInsertPlugin> plugin = found->second;
    plugin->sampleRate = 0.0;
    plugin->avAudioUnit->deallocateRenderResources();
    if (setUp(*plugin, key)) {
        if (!plugin->renderContext->isAbandoned()) return std::nullopt;
        return giveUp(key, plugin);
    }
    // What it was set to is not lost with it.
    const PluginSlot* const existing = record(key);
    if (existing != nullptr && existing->component == identityOf(plugin->component)) {
        PluginSlot kept = *existing;
        capture(key, kept);
        owner.replaceSlot(key, std::move(kept));
    }
    unload(key);
    return refuse(plugin->component, key);
}

std::string InsertRack::labelOf(const PluginSlotKey& key, const std::string& pluginName) const {
    const std::vector<ChannelStrip>& strips = owner.channelStrips();
    const auto strip = std::ranges::find(strips, key.stripID, &ChannelStrip::id);
    const std::string number = strip == strips.end() ? "?" : std::to_string(strip - strips.begin() + 1);
    return fmt::format("Ch{} slot{}: {}", number, key.slot + 1, pluginName);
}

std::function<void(std::function<void()>)> InsertRack::onMainThread() {
    return [&mainThread = services.mainThread, rack = std::weak_ptr(isHere)](std::function<void()> task) {
        mainThread.post([rack, task = std::move(task)] {
            if (!rack.expired()) task();
        });
    };
}

} // namespace orvane::plugins
