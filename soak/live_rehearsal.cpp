#include "soak/live_rehearsal.h"

#include <algorithm>
#include <cmath>
#include <thread>

namespace orvane::soak {

namespace {

/// The interval at which the main thread's tasks run.
constexpr std::chrono::milliseconds housekeepingInterval{5};
/// The automix reduces a channel by at most 26 dB, plus rounding.
constexpr double mostReductionDB = 26.0 + 1e-6;
/// Gains start below the floor and rise to it.
constexpr std::uint64_t blocksUntilSettled = 10'000;

bool isFinite(std::span<const float> samples) noexcept {
    // Zero times a value that is not finite is not zero.
    float sum = 0.0F;
    for (const float sample : samples)
        sum += sample * 0.0F;
    return sum == 0.0F;
}

} // namespace

LiveRehearsal::LiveRehearsal(const Stage::Shape& shape, Choices& decisions)
    : stage(shape), choices(decisions) {
    stage.devices.front().output->listener = [this](auto outputs) {
        blockCount.fetch_add(1, std::memory_order_relaxed);
        if (!std::ranges::all_of(outputs, isFinite)) badBlocks.fetch_add(1, std::memory_order_relaxed);
    };
    stage.engine.start();
}

LiveRehearsal::~LiveRehearsal() {
    stage.engine.stop();
}

void LiveRehearsal::step(std::chrono::nanoseconds longestPause) {
    last = person.act();
    publishedInvariants.check();
    const auto end =
        std::chrono::steady_clock::now()
        + std::chrono::nanoseconds(
            static_cast<std::int64_t>(choices.between(0.0, static_cast<double>(longestPause.count())))
        );
    for (auto now = std::chrono::steady_clock::now(); now < end;) {
        std::this_thread::sleep_for(housekeepingInterval);
        const auto next = std::chrono::steady_clock::now();
        stage.mainThread.runPosted();
        stage.mainThread.advance(next - now);
        stage.log.flush();
        now = next;
    }
    check();
}

void LiveRehearsal::clearDesk() {
    last = "clear the desk";
    person.clearDesk();
    check();
}

void LiveRehearsal::check() {
    firstFault.require(
        stage.engine.state().isRunning.get(), "The mixer has stopped by itself: {}",
        stage.engine.state().lastError.get().value_or("")
    );
    firstFault.require(badBlocks == 0, "{} blocks held samples that are not finite", badBlocks.load());
    const audio::MeterModel& meters = stage.engine.meterModel();
    const double load = meters.cpuLoad.get();
    firstFault.require(load >= 0.0 && load <= 1.0, "The load is {}", load);
    const auto isLevel = [](double level) { return std::isfinite(level) && level >= 0.0; };
    firstFault.require(
        std::ranges::all_of(meters.channelMeters.get(), isLevel) && isLevel(meters.masterMeter.get())
            && isLevel(meters.pinkNoiseLevel.get()),
        "A meter shows an invalid level"
    );
    if (blocks() < blocksUntilSettled) return;
    for (const double reduction : meters.channelGainReductionDB.get())
        firstFault.require(
            reduction >= 0.0 && reduction <= mostReductionDB, "A strip is shown reduced by {} dB", reduction
        );
}

} // namespace orvane::soak
