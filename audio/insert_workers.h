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
/// thread takes part in the work and then waits for the last strips, but not for ever: one that a worker has
/// begun and not finished in time goes without its inserts until that worker has let go of it. A worker
/// renders into memory of its own, so what comes too late is lost and disturbs nothing. Owned by the state of
/// a run.
class InsertWorkers final {
  public:
    /// Shares of a block's duration.
    struct Limits {
        /// The work is shared out when a block has lately taken more than the first, and no longer when none
        /// has taken more than the second.
        double sharedFrom = 0.6;
        double unsharedBelow = 0.4;
        /// How long after the beginning of the inserts the I/O thread waits for a strip.
        double waitedFor = 0.75;
    };

    /// The workers that a machine of so many processors has room for: none below four.
    static std::size_t countFor(unsigned processors);

    /// Puts the calling thread before all ordinary ones; gives the priority, 0 where there is none to be had.
    using TakePriority = int (*)() noexcept;

    /// Starts `workerCount` threads, or as many, at least one, as the system has threads and memory for.
    /// Throws std::system_error or std::bad_alloc where it has none.
    /// Each takes its priority first. One that gets none ends: any ordinary thread could hold it up at a
    /// strip, which would be left dry.
    InsertWorkers(
        std::size_t workerCount, std::size_t stripCount, platform::HostClock hostClock, const Limits& given,
        TakePriority takePriority = platform::takeRealtimePriority
    );
    /// Ends the workers; `end` must not have returned false.
    ~InsertWorkers();
    InsertWorkers(const InsertWorkers&) = delete;
    InsertWorkers& operator=(const InsertWorkers&) = delete;

    /// Ends the workers and waits for the strips that they are at, `platform::stopPatience` at most. Returns
    /// false if one does not return from an insert: then this, the tables that it was given and their inserts
    /// must never be freed. Once `run` is not called any more; not real-time safe.
    [[nodiscard]] bool end();

    /// Renders the inserts of every strip that is `routed` over its block, in place. `blocks` are no longer
    /// than effects render. `blockSeconds`: how long a block lasts. I/O thread, real-time safe.
    ORVANE_REALTIME void
    run(const InsertTable& table, dsp::ChannelBlocks<double>& blocks, std::span<const bool> routed,
        double blockSeconds) noexcept;

    /// The workers that have their priority: at first none, all that ever will soon after. The I/O thread
    /// shares nothing while there are none. Any thread.
    [[nodiscard]] std::size_t helperCount() const noexcept { return helpers.load(std::memory_order_relaxed); }

    /// Whether a worker is still at a strip that a pass has gone on without, and so at the table of that
    /// pass. Any thread.
    [[nodiscard]] bool isLate() const noexcept;

  private:
    enum class Stage : std::uint32_t {
        /// The I/O thread's.
        idle,
        /// Whoever comes first takes it.
        offered,
        /// Its taker's.
        taken,
        /// Rendered; the I/O thread's.
        done,
        /// The worker's that took it, and nobody waits for it.
        late,
    };

    /// One strip's inserts over one block; on a cache line of its own.
    struct alignas(64) Item {
        std::atomic<Stage> stage = Stage::idle;
        const InsertTable* table = nullptr;
        std::size_t frameCount = 0;
        std::uint64_t ticks = 0;
    };

    /// Both give the seconds of work that it was.
    ORVANE_REALTIME double renderAlone(
        const InsertTable& table, dsp::ChannelBlocks<double>& blocks, std::span<const bool> routed
    ) noexcept;
    ORVANE_REALTIME double renderShared(
        const InsertTable& table, dsp::ChannelBlocks<double>& blocks, std::span<const bool> routed,
        double blockSeconds
    ) noexcept;

    ORVANE_REALTIME void
    offer(std::size_t strip, const InsertTable& table, std::span<const double> block) noexcept;
    /// Renders all that is on offer, from a strip on and around.
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
    /// Counts what workers are woken for.
    std::atomic<std::uint32_t> round = 0;
    std::atomic<bool> isEnding = false;
    std::atomic<std::size_t> helpers = 0;
    std::atomic<std::size_t> ended = 0;
    std::vector<std::thread> workers;
};

} // namespace orvane::audio
