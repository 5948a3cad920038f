#pragma once

#include "platform/base/flush_denormals.h"
#include "platform/effects/audio_unit_host.h"
#include "support/allocation_guard.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::test {

/// A unit, or why it could not be made.
struct InstantiatedUnit {
    std::shared_ptr<platform::AUAudioUnit> unit;
    std::optional<platform::Error> error;
};

/// Makes an instance and waits for it.
inline InstantiatedUnit
instantiate(platform::AudioUnitHost& host, const platform::AudioComponentDescription& description) {
    std::promise<InstantiatedUnit> answer;
    host.instantiate(description, 0, [&](auto unit, auto error) {
        answer.set_value({std::move(unit), std::move(error)});
    });
    return answer.get_future().get();
}

/// Makes an instance of the effect with this name; null if there is none.
inline InstantiatedUnit instantiate(platform::AudioUnitHost& host, std::string_view name) {
    for (const auto& component : host.componentsMatchingDescription({}))
        if (component.name == name) return instantiate(host, component.audioComponentDescription);
    return {};
}

/// Sets up a unit as the mixer does. Returns the error message; empty if it succeeds.
inline std::string setUp(
    platform::AUAudioUnit& unit, std::uint32_t channels, double sampleRate = 48000.0,
    std::uint32_t maximumFrames = 4096
) {
    const auto format = *platform::AVAudioFormat::initStandardFormat(sampleRate, channels);
    for (const auto busses : {unit.inputBusses(), unit.outputBusses()})
        if (const auto set = busses.front()->setFormat(format); !set) return set.error().description;
    unit.setMaximumFramesToRender(maximumFrames);
    const auto allocated = unit.allocateRenderResources();
    return allocated ? std::string() : allocated.error().description;
}

inline platform::AUParameter& parameter(platform::AUAudioUnit& unit, std::string_view identifier) {
    return **std::ranges::find_if(unit.parameters(), [&](const platform::AUParameter* each) {
        return each->info().identifier == identifier;
    });
}

/// Renders a unit block by block on the calling thread, as an audio thread would.
class UnitRenderer final {
  public:
    UnitRenderer(platform::AUAudioUnit& unit, std::size_t channels)
        : inputs(channels),
          outputs(channels),
          render(unit.renderBlock()),
          pull([this](auto&, const auto&, std::uint32_t, std::int64_t, platform::AudioBufferList& list) {
              for (std::size_t c = 0; c < inputs.size(); ++c)
                  list.mBuffers[c].mData = inputs[c].data();
              return platform::noErr;
          }) {}

    /// The next input block, one per channel, all of the same length.
    std::vector<std::vector<float>> inputs;
    /// The output of the last block.
    std::vector<std::vector<float>> outputs;

    /// `isGuarded`: whether the unit must not allocate.
    platform::OSStatus renderBlock(bool isGuarded = true) {
        std::vector<platform::AudioBuffer> buffers(outputs.size());
        const auto frames = static_cast<std::uint32_t>(inputs.front().size());
        for (std::size_t c = 0; c < outputs.size(); ++c) {
            outputs[c].assign(frames, 0.0F);
            buffers[c] = {1, frames * 4, outputs[c].data()};
        }
        platform::AudioBufferList list{buffers};
        platform::AudioUnitRenderActionFlags flags = 0;
        const platform::FlushDenormals flush;
        std::optional<AllocationGuard> guard;
        if (isGuarded) guard.emplace();
        return render(flags, {}, frames, 0, list, pull);
    }

    /// Renders with the same input in every channel.
    platform::OSStatus renderBlock(const std::vector<float>& block, bool isGuarded = true) {
        std::ranges::fill(inputs, block);
        return renderBlock(isGuarded);
    }

  private:
    platform::AURenderBlock render;
    platform::AURenderPullInputBlock pull;
};

} // namespace orvane::test
