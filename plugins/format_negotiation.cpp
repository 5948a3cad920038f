#include "plugins/format_negotiation.h"

#include "plugins/insert_render_context.h"

#include <cstdint>
#include <span>

namespace orvane::plugins {

namespace {

using platform::AUAudioUnitBus;

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

} // namespace orvane::plugins
