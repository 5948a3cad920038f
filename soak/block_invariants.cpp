#include "soak/block_invariants.h"

#include "audio/routing_table.h"
#include "dsp/decibels.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <variant>

namespace orvane::soak {

namespace {

// The mixer's automix parameters.
constexpr double gainFloorDB = -26.0;
constexpr double gainAttackSeconds = 0.015;
constexpr double lowestMasterGainDB = -24.0;
constexpr double highestMasterGainDB = 20.0;

/// The relative error that the order of a summation may cause.
constexpr double rounding = 1e-9;
constexpr double singleRounding = 1e-6;
/// Smaller numbers may have been flushed to 0.
constexpr double negligible = 1e-36;

/// Beyond these a show may exceed the range of numbers.
constexpr double largestSaneFactor = 1e6;
constexpr double largestSaneDB = 120.0;

double finite(float sample) {
    return std::isfinite(sample) ? static_cast<double>(sample) : 0.0;
}

bool isClose(double value, double expected, double scale) {
    return std::abs(value - expected) <= scale + negligible;
}

} // namespace

BlockInvariants::BlockInvariants(Stage& watched, Fault& found, std::size_t fullCheckInterval)
    : stage(watched), fault(found), interval(fullCheckInterval) {
    for (const StageDevice& device : stage.devices)
        device.output->listener = [this, &device](Outputs outputs) { checkBlock(device, outputs); };
    toRunning = stage.engine.state().isRunning.subscribe([this](bool runs) {
        run.reset();
        if (runs) beginRun();
    });
}

BlockInvariants::~BlockInvariants() {
    for (const StageDevice& device : stage.devices)
        device.output->listener = nullptr;
}

void BlockInvariants::beginRun() {
    const engine::EngineState& state = stage.engine.state();
    const auto& master = state.masterOutputDevice.get();
    run =
        Run{.device = *state.selectedDevice.get(),
            .bufferSize = static_cast<std::size_t>(state.bufferSize.get())};
    run->hasMasterDevice = master && master->id != run->device.id;
    const double seconds = static_cast<double>(run->bufferSize) / run->device.sampleRate;
    run->attackCoef = std::exp(-seconds / gainAttackSeconds);
    run->lowestGain =
        std::min(1.0 / static_cast<double>(stage.shape.strips + 1), dsp::dbToLinear(gainFloorDB));
}

void BlockInvariants::checkBlock(const StageDevice& device, Outputs outputs) {
    if (!run || fault.first()) return;
    const bool sane = isSane();
    if (sane) checkFinite(device, outputs);
    if (device.uid != run->device.uid) return;
    const dsp::AutomixProcessor& automix = *stage.engine.automix();
    ++blockCount;
    const std::size_t frameCount =
        device.voices->lastBlocks().empty() ? outputs.front().size() : device.voices->lastBlocks()[0].size();
    // Cycles longer than the device was set up for are not rendered.
    if (automix.channelOutputs().frameCount() != frameCount) return;
    ++run->blocks;
    checkGains(automix);
    if (!sane || blockCount % interval != 0) return;
    checkChannels(automix, device.voices.get());
    checkSums(automix, outputs);
}

void BlockInvariants::checkFinite(const StageDevice& device, Outputs outputs) {
    for (std::size_t output = 0; output < outputs.size(); ++output) {
        // A value that is not finite makes the sum not finite.
        const float sum = std::transform_reduce(
            outputs[output].begin(), outputs[output].end(), 0.0F, std::plus<>(),
            [](float x) { return x * 0.0F; }
        );
        fault.require(
            sum == 0.0F, "Output {} of {} plays samples that are not finite", output + 1, device.uid
        );
    }
}

void BlockInvariants::checkGains(const dsp::AutomixProcessor& automix) {
    const double floor = dsp::dbToLinear(gainFloorDB);
    run->lowestGain += (1.0 - run->attackCoef) * (std::max(floor, run->lowestGain) - run->lowestGain);
    // The maximum of a share divided by the sum of all squared shares.
    const double highest = (1.0 + std::sqrt(static_cast<double>(automix.channelCount()))) / 2.0;
    const std::span<const double> gains = automix.currentGains();
    for (std::size_t i = 0; i < gains.size(); ++i)
        fault.require(
            gains[i] >= run->lowestGain * (1.0 - rounding) && gains[i] <= highest * (1.0 + rounding),
            "The automix gain of channel {} is {}, not between {} and {}", i + 1, gains[i], run->lowestGain,
            highest
        );
    const double master = automix.currentMasterGain();
    fault.require(
        master >= dsp::dbToLinear(lowestMasterGainDB) * (1.0 - rounding)
            && master <= dsp::dbToLinear(highestMasterGainDB) * (1.0 + rounding),
        "The leveler's gain is {}", master
    );
}

void BlockInvariants::checkChannels(const dsp::AutomixProcessor& automix, const Voices* voices) {
    const engine::EngineState& state = stage.engine.state();
    const session::MasterLevels& levels = state.master.get().levels;
    const auto& published = state.channelStrips.get();
    for (std::size_t i = 0; i < published.size() && !fault.first(); ++i) {
        const session::ChannelStrip& strip = published[i];
        if (hasLivePlugin(strip)) continue;
        const double role = strip.vocalRole == dsp::VocalRole::lead ? dsp::dbToLinear(levels.leadGroupGainDB)
                            : strip.vocalRole == dsp::VocalRole::backing
                                ? dsp::dbToLinear(levels.backingGroupGainDB)
                                : 1.0;
        const double automatic = strip.bypassed ? 1.0 : automix.currentGains()[i];
        const double gain = strip.muted ? 0.0 : role * automatic * strip.trim;
        const auto input = static_cast<std::size_t>(strip.inputChannelIndex.value_or(-1));
        const bool isHeard = input < voices->lastBlocks().size();
        const std::span<const double> block = automix.channelOutputs()[i];
        for (std::size_t at = 0; at < block.size(); ++at) {
            const double expected = isHeard ? gain * finite(voices->lastBlocks()[input][at]) : 0.0;
            if (isClose(block[at], expected, std::abs(expected) * rounding)) continue;
            fault.require(
                false, "Strip {} is {} at frame {} of {}, not {} times its input, which is {}", i + 1,
                block[at], at, block.size(), gain, expected
            );
            return;
        }
    }
}

void BlockInvariants::checkSums(const dsp::AutomixProcessor& automix, Outputs outputs) {
    const engine::EngineState& state = stage.engine.state();
    const std::size_t frameCount = automix.channelOutputs().frameCount();
    sums.resize(outputs.size());
    for (std::vector<double>& sum : sums)
        sum.assign(frameCount, 0.0);
    bus.assign(frameCount, 0.0);
    weights.assign(outputs.size(), 0.0);
    const auto add = [&](const audio::Sends& sends, std::span<const double> block, double factor) {
        const double level =
            std::abs(factor)
            * std::transform_reduce(
                block.begin(), block.end(), 0.0, [](double a, double b) { return std::max(a, b); },
                [](double x) { return std::abs(x); }
            );
        for (const audio::Send& send : sends) {
            if (send.channel >= outputs.size()) continue;
            for (std::size_t at = 0; at < frameCount; ++at)
                sums[send.channel][at] += factor * send.gain * block[at];
            weights[send.channel] += level;
        }
        return level;
    };
    double busWeight = 0.0;
    const auto& published = state.channelStrips.get();
    for (std::size_t i = 0; i < published.size(); ++i) {
        const std::span<const double> block = automix.channelOutputs()[i];
        busWeight += add(audio::sendsOf(published[i].outputRouting), block, 1.0);
        std::ranges::transform(bus, block, bus.begin(), std::plus<>());
    }
    const double gain = automix.currentMasterGain();
    if (!run->hasMasterDevice) add(audio::sendsOf(state.master.get().masterOutputRouting), bus, gain);
    const double square = std::transform_reduce(bus.begin(), bus.end(), bus.begin(), 0.0);
    const double level = frameCount > 0 ? gain * std::sqrt(square / static_cast<double>(frameCount)) : 0.0;
    fault.require(
        isClose(automix.currentMasterLevel(), level, gain * busWeight * rounding),
        "The master bus is at {}, but the leveled sum of the strips at {}", automix.currentMasterLevel(),
        level
    );
    // The rings drop what exceeds their capacity.
    const std::size_t played = std::min(frameCount, 8 * run->bufferSize);
    for (std::size_t output = 0; output < outputs.size() && !fault.first(); ++output)
        for (std::size_t at = 0; at < played; ++at) {
            const double sample = static_cast<double>(outputs[output][at]);
            if (isClose(sample, sums[output][at], weights[output] * singleRounding)) continue;
            fault.require(
                false, "Output {} plays {} at frame {} of {}, not {}, the sum of the signals routed to it",
                output + 1, sample, at, frameCount, sums[output][at]
            );
            break;
        }
}

void BlockInvariants::checkMeters() {
    const audio::MeterModel& meters = stage.engine.meterModel();
    const double load = meters.cpuLoad.get();
    fault.require(load >= 0.0 && load <= 1.0, "The load is {}", load);
    if (!run) {
        fault.require(load == 0.0, "The load is {} while the mixer is stopped", load);
        return;
    }
    if (run->blocks == 0) return;
    const dsp::AutomixProcessor& automix = *stage.engine.automix();
    fault.require(
        meters.channelGainReductionDB.get().size() == stage.shape.strips,
        "There are {} gain reduction meters", meters.channelGainReductionDB.get().size()
    );
    for (std::size_t i = 0; i < meters.channelGainReductionDB.get().size(); ++i) {
        const double shown = meters.channelGainReductionDB.get()[i];
        const double expected = std::max(0.0, -dsp::linearToDB(automix.currentGains()[i]));
        fault.require(
            isClose(shown, expected, rounding), "Strip {} is shown reduced by {} dB, but is reduced by {} dB",
            i + 1, shown, expected
        );
    }
    if (!isSane()) return;
    fault.require(
        std::ranges::equal(meters.channelMeters.get(), automix.currentOutputLevels())
            && meters.masterMeter.get() == automix.currentMasterLevel(),
        "The meters show levels other than those measured"
    );
    for (const double level : meters.channelMeters.get())
        fault.require(std::isfinite(level) && level >= 0.0, "A meter shows {}", level);
    for (const double level : {meters.masterMeter.get(), meters.pinkNoiseLevel.get()})
        fault.require(std::isfinite(level) && level >= 0.0, "A meter shows {}", level);
}

bool BlockInvariants::isSane() const {
    const engine::EngineState& state = stage.engine.state();
    const session::MasterSettings& master = state.master.get();
    const auto isModest = [](double dB) { return std::abs(dB) <= largestSaneDB; };
    return isModest(master.levels.masterTargetDB) && isModest(master.levels.leadGroupGainDB)
           && isModest(master.levels.backingGroupGainDB)
           && std::abs(master.referenceNoiseGain) <= largestSaneFactor
           && std::ranges::all_of(state.channelStrips.get(), [](const session::ChannelStrip& strip) {
                  const auto* const pair = std::get_if<session::output::Stereo>(&strip.outputRouting);
                  return std::abs(strip.trim) <= largestSaneFactor
                         && (pair == nullptr || std::abs(pair->pan) <= largestSaneFactor);
              });
}

bool BlockInvariants::hasLivePlugin(const session::ChannelStrip& strip) const {
    return std::ranges::any_of(stage.engine.state().pluginLoadStates.get(), [&strip](const auto& entry) {
        const auto& [key, loadState] = entry;
        return key.stripID == strip.id && std::holds_alternative<plugins::load_state::Loaded>(loadState);
    });
}

} // namespace orvane::soak
