#include "audio/insert_workers.h"

#include "platform/base/audio_thread_scope.h"
#include "platform/base/flush_denormals.h"
#include "platform/base/futex.h"
#include "platform/base/stop_patience.h"

#include <algorithm>
#include <exception>
#include <tuple>

namespace orvane::audio {

namespace {

/// How much of the recent maximum remains after a block: effects that collect samples and process them in
/// bursts reach it again soon.
constexpr double remembered = 0.9995;
constexpr double nanosecondsPerSecond = 1e9;

} // namespace

InsertWorkers::InsertWorkers(
    std::size_t workerCount, std::size_t stripCount, platform::HostClock hostClock, const Limits& given,
    TakePriority takePriority
)
    : clock(hostClock),
      limits(given),
      items(stripCount),
      samples(stripCount, plugins::InsertRenderContext::maximumFrames) {
    workers.reserve(workerCount);
    // They begin at different strips, so that few compete for the same one. With fewer workers than requested
    // the I/O thread renders more of the strips.
    try {
        for (std::size_t number = 0; number < workerCount; ++number)
            workers.emplace_back([this, takePriority, first = (number + 1) * stripCount / (workerCount + 1)] {
                work(first, takePriority);
                ++ended;
            });
    } catch (const std::exception&) {
        if (workers.empty()) throw;
    }
}

InsertWorkers::~InsertWorkers() {
    std::ignore = end();
}

bool InsertWorkers::end() {
    isEnding = true;
    ++round;
    platform::futexWakeAll(round);
    const bool haveEnded = platform::waitPatiently([this] { return ended == workers.size(); });
    for (std::thread& worker : workers)
        if (haveEnded)
            worker.join();
        else
            worker.detach();
    workers.clear();
    ended = 0;
    return haveEnded;
}

void InsertWorkers::run(
    const InsertTable& table, dsp::ChannelBlocks<double>& blocks, std::span<const bool> routed,
    double blockSeconds
) noexcept {
    const double taken =
        isSharing ? renderShared(table, blocks, routed, blockSeconds) : renderAlone(table, blocks, routed);
    mostLately = std::max(taken / blockSeconds, mostLately * remembered);
    isSharing = helperCount() > 0 && mostLately > (isSharing ? limits.unsharedBelow : limits.sharedFrom);
}

bool InsertWorkers::isLate() const noexcept {
    return std::ranges::any_of(items, [](const Item& item) {
        return item.stage.load(std::memory_order_acquire) == Stage::late;
    });
}

double InsertWorkers::renderAlone(
    const InsertTable& table, dsp::ChannelBlocks<double>& blocks, std::span<const bool> routed
) noexcept {
    const std::uint64_t begun = clock.absoluteTime();
    for (std::size_t strip = 0; strip < items.size(); ++strip)
        if (routed[strip] && items[strip].stage.load(std::memory_order_acquire) == Stage::idle)
            table.render(strip, blocks[strip]);
    return seconds(clock.absoluteTime() - begun);
}

double InsertWorkers::renderShared(
    const InsertTable& table, dsp::ChannelBlocks<double>& blocks, std::span<const bool> routed,
    double blockSeconds
) noexcept {
    const std::uint64_t begun = clock.absoluteTime();
    for (std::size_t strip = 0; strip < items.size(); ++strip)
        if (routed[strip] && table.hasInserts(strip)) offer(strip, table, blocks[strip]);
    round.fetch_add(1, std::memory_order_release);
    platform::futexWakeAll(round);
    takeFrom(0);
    double taken = 0.0;
    for (std::size_t strip = 0; strip < items.size(); ++strip)
        taken += collect(strip, blocks[strip], begun, limits.waitedFor * blockSeconds);
    return taken;
}

void InsertWorkers::offer(
    std::size_t strip, const InsertTable& table, std::span<const double> block
) noexcept {
    Item& item = items[strip];
    if (item.stage.load(std::memory_order_acquire) != Stage::idle) return;
    std::ranges::copy(block, samples[strip].begin());
    item.table = &table;
    item.frameCount = block.size();
    item.stage.store(Stage::offered, std::memory_order_release);
}

void InsertWorkers::takeFrom(std::size_t first) noexcept {
    for (std::size_t i = 0; i < items.size(); ++i) {
        const std::size_t strip = (first + i) % items.size();
        Stage offered = Stage::offered;
        if (items[strip].stage.compare_exchange_strong(
                offered, Stage::taken, std::memory_order_acquire, std::memory_order_relaxed
            ))
            render(strip);
    }
}

void InsertWorkers::render(std::size_t strip) noexcept {
    Item& item = items[strip];
    const std::uint64_t begun = clock.absoluteTime();
    item.table->render(strip, samples[strip].first(item.frameCount));
    item.ticks = clock.absoluteTime() - begun;
    Stage taken = Stage::taken;
    if (!item.stage.compare_exchange_strong(
            taken, Stage::done, std::memory_order_release, std::memory_order_relaxed
        ))
        item.stage.store(Stage::idle, std::memory_order_release);
}

double InsertWorkers::collect(
    std::size_t strip, std::span<double> block, std::uint64_t begun, double waitSeconds
) noexcept {
    Item& item = items[strip];
    Stage stage = item.stage.load(std::memory_order_acquire);
    while (stage == Stage::taken) {
        if (seconds(clock.absoluteTime() - begun) < waitSeconds)
            stage = item.stage.load(std::memory_order_acquire);
        else if (item.stage.compare_exchange_strong(
                     stage, Stage::late, std::memory_order_acq_rel, std::memory_order_acquire
                 ))
            return waitSeconds;
    }
    if (stage != Stage::done) return 0.0;
    std::copy_n(samples[strip].begin(), block.size(), block.begin());
    item.stage.store(Stage::idle, std::memory_order_relaxed);
    return seconds(item.ticks);
}

void InsertWorkers::work(std::size_t first, TakePriority takePriority) noexcept {
    if (takePriority() == 0) return;
    ++helpers;
    const platform::FlushDenormals flushDenormals;
    std::uint32_t seen = 0;
    while (true) {
        platform::futexWait(round, seen);
        seen = round.load(std::memory_order_acquire);
        if (isEnding) return;
        const platform::AudioThreadScope audioThread;
        takeFrom(first);
    }
}

double InsertWorkers::seconds(std::uint64_t ticks) const noexcept {
    const platform::TimebaseInfo& timebase = clock.timebaseInfo;
    return static_cast<double>(ticks) * timebase.numer / timebase.denom / nanosecondsPerSecond;
}

} // namespace orvane::audio
