#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "support/allocation_guard.h"

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <span>
#include <utility>
#include <vector>

namespace orvane::test {

/// Records its input and plays numbers that identify channel and frame.
class KeepingClient final : public platform::AudioStreamClient {
  public:
    void cycle(
        std::span<const std::span<const float>> inputs, std::span<const std::span<float>> outputs,
        std::size_t frameCount
    ) noexcept override {
        captured.resize(inputs.size());
        played.resize(outputs.size());
        for (std::size_t channel = 0; channel < inputs.size(); ++channel)
            captured[channel].insert(captured[channel].end(), inputs[channel].begin(), inputs[channel].end());
        for (std::size_t channel = 0; channel < outputs.size(); ++channel) {
            for (float& sample : outputs[channel]) {
                sample = static_cast<float>(channel * 1'000'000 + played[channel].size());
                played[channel].push_back(sample);
            }
        }
        lengths.push_back(frameCount);
    }

    /// Channels x frames since construction.
    std::vector<std::vector<float>> captured;
    std::vector<std::vector<float>> played;
    /// Frames of each cycle.
    std::vector<std::size_t> lengths;
};

/// Plays silence and counts its cycles, which must not allocate; other threads can wait for them.
class CountingClient final : public platform::AudioStreamClient {
  public:
    /// `inCycle` is called in every cycle, with its frame count.
    explicit CountingClient(std::function<void(std::size_t)> inCycle = [](std::size_t) {})
        : onCycle(std::move(inCycle)) {}

    void cycle(
        std::span<const std::span<const float>>, std::span<const std::span<float>> outputs,
        std::size_t frameCount
    ) noexcept override {
        const AllocationGuard guard;
        for (const std::span<float> block : outputs)
            std::ranges::fill(block, 0.0F);
        onCycle(frameCount);
        {
            const std::scoped_lock lock(mutex);
            ++count;
        }
        hasRun.notify_all();
    }

    [[nodiscard]] std::size_t cycles() {
        const std::scoped_lock lock(mutex);
        return count;
    }

    /// Waits until `more` further cycles have run.
    void waitFor(std::size_t more) {
        std::unique_lock lock(mutex);
        hasRun.wait(lock, [this, wanted = count + more] { return count >= wanted; });
    }

  private:
    std::function<void(std::size_t)> onCycle;
    std::mutex mutex;
    std::condition_variable hasRun;
    std::size_t count = 0;
};

} // namespace orvane::test
