#pragma once

#include "audio/insert_table.h"
#include "dsp/channel_blocks.h"
#include "dsp/realtime.h"
#include "platform/base/host_clock.h"
#include "platform/base/realtime_priority.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <thread>
#include <vector>

namespace orvane::audio {

/// A few real-time threads that help the I/O thread with the inserts of a block once those take too much of
/// its time. Every strip is rendered by one thread, so the bits are those of the I/O thread alone. The I/O
/// thread takes part in the work and then waits for the last strips for a limited time: a strip that a worker
/// has begun and not finished by then stays without its inserts until that worker has finished it. A worker
/// renders into memory of its own, so a late result is dropped without a trace. Owned by the state of a run.
class InsertWorkers final {
  public:
    /// Shares of a block's duration.
    struct Limits {
        /// Sharing begins when a recent block took more than the first, and ends when no recent block took
        /// more than the second.
        double sharedFrom = 0.6;
        double unsharedBelow = 0.4;
        /// How long after the beginning of the inserts the I/O thread waits for a strip.
        double waitedFor = 0.75;
    };

    /// The most workers that a run may have.
    static constexpr std::size_t most = 6;

    /// Gives the calling thread real-time priority. Returns the priority, 0 if it was refused.
    using TakePriority = int (*)() noexcept;

    /// Starts `workerCount` threads, or fewer, at least one, if threads or memory run out. Throws
    /// std::system_error or std::bad_alloc if not even one can be started.
    /// Each worker takes its priority first and ends if it is refused: ordinary threads could preempt it
    /// within a strip, which would stay without its inserts.
    InsertWorkers(
        std::size_t workerCount, std::size_t stripCount, platform::HostClock hostClock, const Limits& given,
        TakePriority takePriority = platform::takeRealtimePriority
    );
    /// Ends the workers; `end` must not have returned false.
    ~InsertWorkers();
    InsertWorkers(const InsertWorkers&) = delete;
    InsertWorkers& operator=(const InsertWorkers&) = delete;

    /// Ends the workers and waits for the strips that they render, `platform::stopPatience` at most. Returns
    /// false if one does not return from an insert: then this object, the tables that it was given and their
    /// inserts must never be freed. Must not run beside `run`; not real-time safe.
    [[nodiscard]] bool end();

    /// Renders the inserts of every strip that is `routed` over its block, in place. `blocks` are at most as
    /// long as effects can render. `blockSeconds`: the duration of a block. I/O thread, real-time safe.
    ORVANE_REALTIME void
    run(const InsertTable& table, dsp::ChannelBlocks<double>& blocks, std::span<const bool> routed,
        double blockSeconds) noexcept;

    /// The workers that have their priority: 0 at first, final soon after. The I/O thread renders alone while
    /// it is 0. Any thread.
    [[nodiscard]] std::size_t helperCount() const noexcept { return helpers.load(std::memory_order_relaxed); }

    /// Whether a worker still renders a strip that its pass did not wait for, and so uses the table of that
    /// pass. Any thread.
    [[nodiscard]] bool isLate() const noexcept;

  private:
    enum class Stage : std::uint32_t {
        /// Owned by the I/O thread.
        idle,
        /// The first thread to take it owns it.
        offered,
        /// Owned by the thread that took it.
        taken,
        /// Rendered; owned by the I/O thread.
        done,
        /// Owned by the worker that took it; its result is dropped.
        late,
    };

    /// One strip's inserts over one block; on a cache line of its own.
    struct alignas(64) Item {
        std::atomic<Stage> stage = Stage::idle;
        const InsertTable* table = nullptr;
        std::size_t frameCount = 0;
        std::uint64_t ticks = 0;
    };

    /// Both return the rendering time in seconds.
    ORVANE_REALTIME double renderAlone(
        const InsertTable& table, dsp::ChannelBlocks<double>& blocks, std::span<const bool> routed
    ) noexcept;
    ORVANE_REALTIME double renderShared(
        const InsertTable& table, dsp::ChannelBlocks<double>& blocks, std::span<const bool> routed,
        double blockSeconds
    ) noexcept;

    ORVANE_REALTIME void
    offer(std::size_t strip, const InsertTable& table, std::span<const double> block) noexcept;
    /// Renders all offered strips, beginning at `first` and wrapping around.
    ORVANE_REALTIME void takeFrom(std::size_t first) noexcept;
    ORVANE_REALTIME void render(std::size_t strip) noexcept;
    ORVANE_REALTIME double
    collect(std::size_t strip, std::span<double> block, std::uint64_t begun, double waitSeconds) noexcept;
    ORVANE_REALTIME void work(std::size_t first, TakePriority takePriority) noexcept;
    [[nodiscard]] double seconds(std::uint64_t ticks) const noexcept;

    const platform::HostClock clock;
    const Limits limits;
    std::vector<Item> items;
    dsp::ChannelBlocks<double> samples;
    bool isSharing = false;
    double mostLately = 0.0;
    /// Workers sleep until it changes.
    std::atomic<std::uint32_t> round = 0;
    std::atomic<bool> isEnding = false;
    std::atomic<std::size_t> helpers = 0;
    std::atomic<std::size_t> ended = 0;
    std::vector<std::thread> workers;
};

} // namespace orvane::audio
