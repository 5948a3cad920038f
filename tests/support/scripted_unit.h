#pragma once

#include "platform/base/audio_unit_rendering.h"
#include "support/no_sound.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <utility>
#include <vector>

namespace orvane::test {

/// The behaviour of one call of a scripted effect.
enum class UnitAct {
    /// Doubles its input.
    doubles,
    /// The first output is 1 throughout, the others 0.
    leftOnly,
    /// Returns an error and leaves rubbish in its outputs.
    fails,
    /// Succeeds with a null buffer for its last output.
    losesPointer,
    /// Replaces the buffers in the list with its own, full of 0.25.
    replacesPointers,
    /// Succeeds with one output too few.
    dropsOutput,
    /// Outputs invalid samples, another kind each.
    blowsUp,
};

/// A scripted effect: one act per call, the last one forever. Records its arguments.
class ScriptedUnit final {
  public:
    explicit ScriptedUnit(std::deque<UnitAct> script) : acts(std::move(script)), own(4096, 0.25F) {}

    static constexpr platform::OSStatus failure = -10863;

    platform::AURenderBlock renderBlock() {
        return [this](
                   platform::AudioUnitRenderActionFlags& flags, const platform::AudioTimeStamp& now,
                   std::uint32_t frameCount, std::int64_t, platform::AudioBufferList& list,
                   const platform::AURenderPullInputBlock& pull
               ) { return render(flags, now, frameCount, list, pull); };
    }

    int calls = 0;
    platform::AudioTimeStamp lastTime;
    /// The output pointers of the last call.
    std::vector<const void*> handed = std::vector<const void*>(2, nullptr);

  private:
    platform::OSStatus render(
        platform::AudioUnitRenderActionFlags& flags, const platform::AudioTimeStamp& now,
        std::uint32_t frameCount, platform::AudioBufferList& list,
        const platform::AURenderPullInputBlock& pull
    ) {
        const UnitAct act = acts.front();
        if (acts.size() > 1) acts.pop_front();
        ++calls;
        lastTime = now;
        platform::AudioBuffer inputs[2];
        platform::AudioBufferList input{std::span(inputs).first(list.mBuffers.size())};
        if (pull(flags, now, frameCount, 0, input) != platform::noErr) return failure;
        for (std::size_t c = 0; c < list.mBuffers.size(); ++c) {
            handed[c] = list.mBuffers[c].mData;
            auto* const output = static_cast<float*>(list.mBuffers[c].mData);
            const auto* const source = static_cast<const float*>(input.mBuffers[c].mData);
            for (std::uint32_t i = 0; i < frameCount; ++i)
                output[i] = act == UnitAct::leftOnly  ? (c == 0 ? 1.0F : 0.0F)
                            : act == UnitAct::blowsUp ? noSound[i % noSound.size()]
                                                      : 2.0F * source[i];
            if (act == UnitAct::replacesPointers) list.mBuffers[c].mData = own.data();
        }
        if (act == UnitAct::losesPointer) list.mBuffers.back().mData = nullptr;
        if (act == UnitAct::dropsOutput) list.mBuffers = list.mBuffers.first(list.mBuffers.size() - 1);
        return act == UnitAct::fails ? failure : platform::noErr;
    }

    std::deque<UnitAct> acts;
    std::vector<float> own;
};

} // namespace orvane::test
