#pragma once

#include "audio/mixer_realtime_state.h"
#include "audio/render_pass.h"
#include "dsp/automix_processor.h"
#include "support/allocation_guard.h"
#include "support/wait_for.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace orvane::test {

/// Blocks of a device, one vector per channel.
using DeviceBlocks = std::vector<std::vector<float>>;

/// Views of the blocks for the render pass and the output pull.
inline std::vector<std::span<const float>> readable(const DeviceBlocks& blocks) {
    return {blocks.begin(), blocks.end()};
}
inline std::vector<std::span<float>> writable(DeviceBlocks& blocks) {
    return {blocks.begin(), blocks.end()};
}

/// The rings of a device with `count` outputs.
inline audio::RingBuffers makeRings(std::size_t count, std::size_t bufferSize) {
    audio::RingBuffers rings;
    for (std::size_t i = 0; i < count; ++i)
        rings.push_back(std::make_unique<audio::RingBuffer>(static_cast<std::int64_t>(8 * bufferSize)));
    return rings;
}

/// Starts workers that take part regardless of their priority on this computer, and waits until all do.
inline std::unique_ptr<audio::InsertWorkers> startWorkers(
    std::size_t count, std::size_t strips, platform::HostClock clock,
    const audio::InsertWorkers::Limits& limits
) {
    auto workers =
        std::make_unique<audio::InsertWorkers>(count, strips, clock, limits, []() noexcept { return 1; });
    EXPECT_TRUE(waitFor([&] { return workers->helperCount() == count; }));
    return workers;
}

/// A running mixer without devices; the test acts as the device. Passes and pulls run under the allocation
/// guard once the scratch is sized.
struct MixerHarness {
    struct Shape {
        std::size_t strips = 2;
        double sampleRate = 48000.0;
        std::size_t bufferSize = 256;
        std::size_t outputs = 2;
        /// 0: the master bus plays on the main device.
        std::size_t masterOutputs = 0;
        const dsp::LaneKernels* kernels = &dsp::fastestLaneKernels();
        /// Threads that help with the inserts of every block.
        std::size_t insertWorkers = 0;
    };

    explicit MixerHarness(
        const Shape& shape, platform::HostClock clock = platform::HostClock::system(),
        double masterTargetDB = -10.0
    )
        : automix(
            shape.strips + 1, shape.sampleRate, shape.sampleRate / static_cast<double>(shape.bufferSize),
            masterTargetDB, *shape.kernels
        ),
          state(shape.strips, clock) {
        state.sampleRate = shape.sampleRate;
        state.outputRingBuffers = makeRings(shape.outputs, shape.bufferSize);
        state.masterOutputRingBuffers = makeRings(shape.masterOutputs, shape.bufferSize);
        automix.setSettings(shape.strips, {.excludedFromMasterBus = true});
        if (shape.insertWorkers == 0) return;
        constexpr double forEver = 1e9;
        const audio::InsertWorkers::Limits limits{-1.0, -1.0, forEver};
        state.insertWorkers = startWorkers(shape.insertWorkers, shape.strips, clock, limits);
    }

    /// One cycle of the main device: captures and plays `frameCount` frames.
    DeviceBlocks cycle(const DeviceBlocks& captured, std::size_t frameCount) {
        pass(captured, frameCount);
        return pull(state.outputRingBuffers, state.outputRingBuffers.size(), frameCount);
    }

    void pass(const DeviceBlocks& captured, std::size_t frameCount) {
        const std::vector<std::span<const float>> views = readable(captured);
        automix.ensureScratch(frameCount);
        state.ensureScratch(frameCount);
        const AllocationGuard guard;
        audio::renderPass(views, frameCount, automix, state);
    }

    /// What a device with `outputs` channels plays from the rings; unwritten samples stay at 99.
    static DeviceBlocks pull(const audio::RingBuffers& rings, std::size_t outputs, std::size_t frameCount) {
        DeviceBlocks played(outputs, std::vector<float>(frameCount, 99.0F));
        const std::vector<std::span<float>> views = writable(played);
        const AllocationGuard guard;
        audio::outputPull(rings, views, frameCount);
        return played;
    }

    dsp::AutomixProcessor automix;
    audio::MixerRealtimeState state;
};

} // namespace orvane::test
