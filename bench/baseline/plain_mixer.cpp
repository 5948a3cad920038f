#include "baseline/plain_mixer.h"

#include "dsp/elementary.h"

#include <cmath>
#include <numbers>
#include <utility>
#include <variant>

namespace orvane::baseline {

namespace {

using session::MasterOutputRouting;
using session::OutputRouting;
namespace output = session::output;
namespace master_output = session::master_output;

constexpr std::int64_t noChannel = -1;

/// Whether `channel` is one of `count` outputs.
bool exists(std::int64_t channel, std::size_t count) {
    return channel >= 0 && static_cast<std::size_t>(channel) < count;
}

void mark(std::vector<bool>& flags, std::int64_t channel) {
    if (exists(channel, flags.size())) flags[static_cast<std::size_t>(channel)] = true;
}

void addTo(
    std::vector<std::vector<double>>& sums, std::int64_t channel, const std::vector<double>& block,
    double gain
) {
    if (!exists(channel, sums.size())) return;
    std::vector<double>& sum = sums[static_cast<std::size_t>(channel)];
    for (std::size_t j = 0; j < block.size(); ++j)
        sum[j] = sum[j] + gain * block[j];
}

std::vector<PlainRing> makeRings(std::size_t count, std::size_t capacity) {
    std::vector<PlainRing> rings;
    rings.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        rings.emplace_back(capacity);
    return rings;
}

} // namespace

PlainRing::PlainRing(std::size_t capacity) : buffer(capacity) {}

std::size_t PlainRing::write(std::span<const float> samples) {
    const std::scoped_lock guard(*lock);
    const std::size_t stored = std::min(buffer.size() - count, samples.size());
    for (std::size_t i = 0; i < stored; ++i) {
        buffer[writeIndex] = samples[i];
        writeIndex = (writeIndex + 1) % buffer.size();
    }
    count += stored;
    return stored;
}

std::size_t PlainRing::read(std::span<float> samples) {
    const std::scoped_lock guard(*lock);
    const std::size_t delivered = std::min(count, samples.size());
    for (std::size_t i = 0; i < delivered; ++i) {
        samples[i] = buffer[readIndex];
        readIndex = (readIndex + 1) % buffer.size();
    }
    for (std::size_t i = delivered; i < samples.size(); ++i)
        samples[i] = 0.0F;
    count -= delivered;
    return delivered;
}

PlainMixer::PlainMixer(const Shape& shape, double masterTargetDB)
    : automix(
        shape.strips + 1, shape.sampleRate, shape.sampleRate / static_cast<double>(shape.bufferSize),
        masterTargetDB
    ),
      rings(makeRings(shape.outputs, 8 * shape.bufferSize)),
      masterRings(makeRings(shape.masterOutputs, 8 * shape.bufferSize)),
      gainReduction(shape.strips),
      strips(shape.strips),
      blocks(shape.strips + 1),
      mask(shape.strips + 1),
      sums(shape.outputs),
      masterSums(shape.masterOutputs) {}

void PlainMixer::setRouting(
    std::vector<std::optional<std::int64_t>> inputs, std::vector<OutputRouting> outputs,
    MasterOutputRouting master
) {
    inputChannels = std::move(inputs);
    outputRoutings = std::move(outputs);
    masterRouting = master;
    leftGain.assign(strips, 0.0);
    rightGain.assign(strips, 0.0);
    active.assign(rings.size(), false);
    masterActive.assign(masterRings.size(), false);
    for (std::size_t i = 0; i < strips; ++i) {
        if (const auto* mono = std::get_if<output::Mono>(&outputRoutings[i])) mark(active, mono->channel);
        if (const auto* stereo = std::get_if<output::Stereo>(&outputRoutings[i])) {
            mark(active, stereo->left);
            mark(active, stereo->right);
            const double angle = (stereo->pan + 1.0) * std::numbers::pi * 0.25;
            leftGain[i] = dsp::cos(angle);
            rightGain[i] = dsp::sin(angle);
        }
    }
    std::vector<bool>& masterFlags = masterRings.empty() ? active : masterActive;
    if (const auto* mono = std::get_if<output::Mono>(&masterRouting)) mark(masterFlags, mono->channel);
    if (const auto* stereo = std::get_if<master_output::Stereo>(&masterRouting)) {
        mark(masterFlags, stereo->left);
        mark(masterFlags, stereo->right);
    }
}

void PlainMixer::process(std::span<const std::span<const float>> captured, std::size_t frameCount) {
    resize(frameCount);
    for (std::size_t i = 0; i < strips; ++i) {
        const std::int64_t channel = inputChannels[i].value_or(noChannel);
        mask[i] = exists(channel, captured.size());
        if (!mask[i]) continue;
        for (std::size_t j = 0; j < frameCount; ++j)
            blocks[i][j] = captured[static_cast<std::size_t>(channel)][j];
    }
    for (double& sample : blocks[strips])
        sample = noiseGain * 0.6 * pinkNoise.next();
    mask[strips] = true;

    for (std::size_t i = 0; i < std::min(strips, inserts.size()); ++i)
        for (std::size_t slot = 0; mask[i] && slot < inserts[i].size(); ++slot) {
            const bool skip = i < bypassed.size() && slot < bypassed[i].size() && bypassed[i][slot];
            if (inserts[i][slot] != nullptr && !skip)
                inserts[i][slot]->process(blocks[i], static_cast<std::int64_t>(frameCount));
        }

    automix.process(blocks, mask);
    routeStrips();
    routeMaster();
    for (std::size_t i = 0; i < strips; ++i) {
        const double reduction = -20.0 * std::log10(automix.gains[i] > 1e-6 ? automix.gains[i] : 1e-6);
        gainReduction[i] = reduction > 0.0 ? reduction : 0.0;
    }
}

void PlainMixer::resize(std::size_t frameCount) {
    for (auto* group : {&blocks, &sums, &masterSums})
        for (Block& block : *group)
            block.resize(frameCount);
    floats.resize(frameCount);
}

void PlainMixer::routeStrips() {
    for (std::size_t c = 0; c < sums.size(); ++c)
        if (active[c])
            for (double& sample : sums[c])
                sample = 0.0;
    for (std::size_t i = 0; i < strips; ++i) {
        if (const auto* mono = std::get_if<output::Mono>(&outputRoutings[i]))
            addTo(sums, mono->channel, automix.outputs[i], 1.0);
        if (const auto* stereo = std::get_if<output::Stereo>(&outputRoutings[i])) {
            addTo(sums, stereo->left, automix.outputs[i], leftGain[i]);
            addTo(sums, stereo->right, automix.outputs[i], rightGain[i]);
        }
    }
}

void PlainMixer::routeMaster() {
    const bool isHere = masterRings.empty();
    std::vector<std::int64_t> sides;
    if (const auto* mono = std::get_if<output::Mono>(&masterRouting)) sides = {mono->channel};
    if (const auto* stereo = std::get_if<master_output::Stereo>(&masterRouting))
        sides = {stereo->left, stereo->right};
    for (const std::int64_t side : sides) {
        if (isHere)
            addTo(sums, side, automix.master, 1.0);
        else if (exists(side, masterSums.size()))
            masterSums[static_cast<std::size_t>(side)] = automix.master;
    }
    deliver(sums, active, rings);
    if (!isHere) deliver(masterSums, masterActive, masterRings);
}

void PlainMixer::deliver(
    const std::vector<Block>& source, const std::vector<bool>& inUse, std::vector<PlainRing>& destination
) {
    for (std::size_t c = 0; c < destination.size(); ++c) {
        if (!inUse[c]) continue;
        for (std::size_t j = 0; j < floats.size(); ++j)
            floats[j] = static_cast<float>(source[c][j]);
        destination[c].write(floats);
    }
}

void PlainMixer::pull(std::vector<PlainRing>& rings, std::span<const std::span<float>> outputs) {
    for (std::size_t c = 0; c < outputs.size(); ++c) {
        if (c < rings.size())
            rings[c].read(outputs[c]);
        else
            for (float& sample : outputs[c])
                sample = 0.0F;
    }
}

} // namespace orvane::baseline
