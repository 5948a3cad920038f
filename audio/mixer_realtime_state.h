#pragma once

#include "audio/insert_table.h"
#include "audio/insert_workers.h"
#include "audio/render_scratch.h"
#include "audio/render_table.h"
#include "audio/ring_buffer.h"
#include "audio/routing_table.h"
#include "audio/signal_peaks.h"
#include "dsp/automix_processor.h"
#include "dsp/pink_noise_generator.h"
#include "dsp/realtime.h"
#include "dsp/true_peak_limiter.h"
#include "platform/base/host_clock.h"
#include "platform/base/unfair_lock.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orvane::audio {

/// The rings of one device, one per output channel.
using RingBuffers = std::vector<std::unique_ptr<RingBuffer>>;

/// The meter values of the last block.
struct MeterReading {
    /// Linear RMS of each channel after all gains: one per strip until the first block has run, then one
    /// more, the reference noise's.
    std::vector<double> channelLevels;
    /// Linear RMS of the leveled master bus.
    double masterLevel = 0.0;
    /// The leveler's gain, linear; 1 until the first block has run.
    double masterGain = 1.0;
    /// How far each strip is turned down, in dB, 0 or more.
    std::vector<double> gainReductionDB;
    /// Linear RMS of the reference noise; 0 until the first block has run.
    double referenceNoiseLevel = 0.0;
};

/// The peaks of all signals, and their overs since the last reading.
struct PeakReading {
    /// Of each strip's input, before its inserts.
    std::vector<SignalPeak> inputs;
    /// Of each output of the main device and of a master device.
    std::vector<SignalPeak> outputs;
    std::vector<SignalPeak> masterOutputs;
    /// Of the leveled master bus, before the limiter.
    SignalPeak master;
};

/// The one object that the control side and the render pass share during a run: the control side pushes
/// routing, inserts and reference gain into it, the render pass publishes meters and load through it. Made at
/// every start, shared with the I/O threads, dropped at stop. Its locks are held for a few copies and never
/// nested.
class MixerRealtimeState final {
  public:
    /// `channelCount`: strips.
    explicit MixerRealtimeState(
        std::size_t channelCount, platform::HostClock hostClock = platform::HostClock::system()
    );

    [[nodiscard]] std::size_t channelCount() const noexcept { return strips; }

    // Set by the control side before the devices start; fixed while they run.

    /// The main device's, in Hz.
    double sampleRate = 48000.0;
    /// One ring per output channel of the main device.
    RingBuffers outputRingBuffers;
    /// One ring per output channel of a separate master device; empty if the master bus goes to the main
    /// device.
    RingBuffers masterOutputRingBuffers;
    /// Limits the outputs that carry the master bus; null: they are not limited.
    std::unique_ptr<dsp::TruePeakLimiter> limiter;

    // Control thread, at any time.

    /// Replaces the routing; one entry per strip in each list.
    void updateRouting(
        std::span<const std::optional<std::int64_t>> inputs, std::span<const session::OutputRouting> outputs,
        const session::MasterOutputRouting& master
    );

    /// Replaces the inserts.
    void updatePlugins(InsertTable inserts);

    /// Frees the tables that `updateRouting` and `updatePlugins` replaced and no pass holds any more. Returns
    /// whether all are freed, so that no withdrawn insert is in use.
    bool freeRetired();

    /// Linear gain of the reference noise; 0 switches it off.
    void setNoiseGain(double linearGain) noexcept;

    [[nodiscard]] MeterReading readMeters() const;

    /// Returns the peaks, which stay, and the overs since the last call. One thread, not for audio.
    [[nodiscard]] PeakReading takePeaks();

    /// Smoothed share of a block's duration that the render pass takes, 0 to 1.
    [[nodiscard]] double cpuLoad() const noexcept;

    /// Returns by how much the limiter has turned the outputs down at most since the last call, in dB, 0 or
    /// more. One thread, not for audio.
    [[nodiscard]] double takeLimiterReductionDB() noexcept;

    /// Blocks rendered so far. Any thread.
    [[nodiscard]] std::uint64_t blockCount() const noexcept { return blocks.load(std::memory_order_relaxed); }

    /// An insert that a thread is executing.
    struct RunningInsert {
        std::size_t strip = 0;
        /// Names strip, slot and effect.
        std::string name;
    };
    /// The first insert that is being rendered now; absent if none is.
    [[nodiscard]] std::optional<RunningInsert> runningInsert() const;

    /// Ends the use of all inserts, also by a thread that was abandoned while it rendered them.
    void abandonInserts();

    // Render thread.

    /// Sizes the scratch for blocks of `frameCount` frames. Called once before the devices start, with the
    /// longest block that they can deliver.
    void ensureScratch(std::size_t frameCount);

    [[nodiscard]] ORVANE_REALTIME double noiseGain() const noexcept;

    /// Publishes the processor's levels and the scratch's gain reduction to the meters.
    ORVANE_REALTIME void publishMeters(const dsp::AutomixProcessor& automix) noexcept;

    /// Publishes the limiter's gain in the last block, linear.
    ORVANE_REALTIME void publishLimiterGain(double lowestGain) noexcept {
        if (lowestGain < lowestLimiterGain.load(std::memory_order_relaxed))
            lowestLimiterGain.store(lowestGain, std::memory_order_relaxed);
    }

    /// Counts a rendered block.
    ORVANE_REALTIME void countBlock() noexcept { blocks.fetch_add(1, std::memory_order_relaxed); }

    /// Moves the load a step towards that of a block of `frameCount` frames whose rendering began at
    /// `startTicks`.
    ORVANE_REALTIME void publishLoad(std::uint64_t startTicks, std::size_t frameCount) noexcept;

    const platform::HostClock clock;
    RenderTable<RoutingTable> routing;
    RenderTable<InsertTable> inserts{[this] { return insertWorkers && insertWorkers->isLate(); }};
    /// Helps the I/O thread with inserts; may be null. Must be null on a device whose clock is stepped,
    /// because late results are dropped. Set before the devices start. Declared after `inserts`, so that it
    /// is destroyed first and waits for workers that still use a table.
    std::unique_ptr<InsertWorkers> insertWorkers;
    dsp::PinkNoiseGenerator pinkNoise;
    SignalPeaks inputPeaks;
    /// Sized with the scratch.
    SignalPeaks outputPeaks{0};
    SignalPeaks masterOutputPeaks{0};
    SignalPeaks masterPeak{1};
    RenderScratch scratch;

  private:
    std::size_t strips;
    std::atomic<std::uint64_t> blocks = 0;
    std::atomic<double> lowestLimiterGain = 1.0;

    mutable platform::UnfairLock meterLock;
    std::vector<double> meterSnapshot;
    double masterMeterSnapshot = 0.0;
    double masterGainSnapshot = 1.0;
    std::vector<double> gainReductionSnapshot;

    mutable platform::UnfairLock cpuLock;
    double cpuLoadSnapshot = 0.0;

    mutable platform::UnfairLock noiseLock;
    double noiseGainLinear = 0.0;
};

} // namespace orvane::audio
