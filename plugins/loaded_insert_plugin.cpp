#include "plugins/loaded_insert_plugin.h"

#include "platform/base/abandoned.h"
#include "platform/base/stop_patience.h"
#include "plugins/insert_components.h"

#include <semaphore>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace orvane::plugins {

namespace {

using platform::AUAudioUnitBus;
using platform::PropertyList;

/// A unit without a bus has nothing to object to.
bool setFormat(std::span<AUAudioUnitBus* const> busses, const platform::AVAudioFormat& format) {
    return busses.empty() || busses.front()->setFormat(format);
}

void enable(std::span<AUAudioUnitBus* const> busses) {
    if (!busses.empty()) busses.front()->setEnabled(true);
}

bool prepare(platform::AUAudioUnit& unit, double sampleRate, std::uint32_t channelCount) {
    const auto format = platform::AVAudioFormat::initStandardFormat(sampleRate, channelCount);
    if (!format) return false;
    if (!setFormat(unit.inputBusses(), *format) || !setFormat(unit.outputBusses(), *format)) return false;
    enable(unit.inputBusses());
    enable(unit.outputBusses());
    unit.setMaximumFramesToRender(InsertRenderContext::maximumFrames);
    return unit.allocateRenderResources().hasValue();
}

} // namespace

std::optional<std::size_t> negotiateFormat(platform::AUAudioUnit& unit, double sampleRate) {
    for (const std::uint32_t channelCount : {1U, 2U})
        if (prepare(unit, sampleRate, channelCount)) return channelCount;
    return std::nullopt;
}

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

platform::Result<std::optional<PropertyList::Data>> captureState(const platform::AUAudioUnit& unit) {
    const auto fullState = unit.fullState();
    if (!fullState) return std::optional<PropertyList::Data>();
    auto data = platform::dataWithPropertyList(*fullState);
    if (!data) return data.error();
    return std::optional(std::move(data).value());
}

platform::Result<platform::Done>
restoreState(const LoadedInsertPlugin& plugin, std::span<const std::uint8_t> data) {
    const auto state = platform::propertyListWithData(data);
    if (!state)
        return platform::Error{
            "The saved settings of " + plugin.component.name + " cannot be read; set it up again and save."};
    return plugin.avAudioUnit->setFullState(state.value());
}

platform::Result<platform::Done> captureInto(session::PluginSlot& record, const LoadedInsertPlugin& plugin) {
    if (const auto identity = identityOf(plugin.component); record.component != identity) {
        record.pluginName = plugin.component.name;
        record.component = identity;
        record.presetData.reset();
    }
    auto captured = captureState(*plugin.avAudioUnit);
    if (!captured) {
        record.presetData.reset();
        return captured.error();
    }
    if (captured.value()) record.presetData = std::move(captured).value();
    return platform::Done{};
}

} // namespace orvane::plugins
