#include "baseline/plain_automix.h"

#include "dsp/decibels.h"
#include "dsp/elementary.h"

#include <cmath>

namespace orvane::baseline {

double plainRMS(const std::vector<double>& block) {
    if (block.empty()) return 0.0;
    double sum = 0.0;
    for (const double sample : block)
        sum += sample * sample;
    return std::sqrt(sum / static_cast<double>(block.size()));
}

PlainAutomix::PlainAutomix(std::size_t channels, double sampleRate, double controlRate, double masterTargetDB)
    : settings(channels),
      masterTargetRMS(dsp::dbToLinear(masterTargetDB)),
      outputs(channels),
      gains(channels, 1.0 / static_cast<double>(channels)),
      outputLevels(channels, 0.0),
      dt(1.0 / controlRate),
      maleA(1.0 - dsp::exp(-6.283185307179586 * 180.0 / sampleRate)),
      femaleA(1.0 - dsp::exp(-6.283185307179586 * 3500.0 / sampleRate)),
      shelfGain(dsp::dbToLinear(-16.0)),
      gainAttack(dsp::exp(-dt / (15.0 / 1000.0))),
      gainRelease(dsp::exp(-dt / (400.0 / 1000.0))),
      gainFloor(dsp::dbToLinear(-26.0)),
      levelerAttack(dsp::exp(-dt / (30.0 / 1000.0))),
      levelerRelease(dsp::exp(-dt / (500.0 / 1000.0))),
      levelerMaxGain(dsp::dbToLinear(20.0)),
      levelerMinGain(dsp::dbToLinear(-24.0)),
      maleState(channels, 0.0),
      femaleState(channels, 0.0),
      smoothedLevel(channels, 0.0),
      levels(channels),
      excess(channels),
      shares(channels),
      targets(channels) {}

void PlainAutomix::setReleaseMs(double releaseMs) {
    gainRelease = releaseMs > 0.0 ? dsp::exp(-dt / (releaseMs / 1000.0)) : 0.0;
}

void PlainAutomix::process(const std::vector<Block>& blocks, const std::vector<bool>& active) {
    const std::size_t channels = settings.size();
    const std::size_t frames = blocks[0].size();
    weighted.resize(frames);
    master.resize(frames);
    for (Block& output : outputs)
        output.resize(frames);

    for (std::size_t i = 0; i < channels; ++i) {
        levels[i] = 0.0;
        if (!active[i]) continue;
        weigh(i, blocks[i]);
        const double level = plainRMS(weighted);
        if (!settings[i].muted && !settings[i].bypassed) levels[i] = level;
    }
    shareGain();

    for (double& sample : master)
        sample = 0.0;
    for (std::size_t i = 0; i < channels; ++i) {
        if (!active[i]) {
            for (double& sample : outputs[i])
                sample = 0.0;
            continue;
        }
        double role = 1.0;
        if (settings[i].vocalRole == dsp::VocalRole::lead) role = leadGain;
        if (settings[i].vocalRole == dsp::VocalRole::backing) role = backingGain;
        double gain = role * (gains[i] * settings[i].trim);
        if (settings[i].bypassed) gain = role * settings[i].trim;
        if (settings[i].muted) gain = 0.0;
        for (std::size_t j = 0; j < frames; ++j) {
            const double v = gain * blocks[i][j];
            outputs[i][j] = v;
            if (!settings[i].excludedFromMasterBus) master[j] = master[j] + v;
        }
    }

    masterGain = levelerGain(plainRMS(master));
    for (double& sample : master)
        sample = masterGain * sample;
    for (std::size_t i = 0; i < channels; ++i)
        outputLevels[i] = active[i] ? plainRMS(outputs[i]) : 0.0;
    masterLevel = plainRMS(master);
}

void PlainAutomix::weigh(std::size_t channel, const Block& input) {
    for (std::size_t j = 0; j < input.size(); ++j) {
        const double x = input[j];
        if (settings[channel].genderMode == dsp::GenderTriggerMode::male) {
            double& y = maleState[channel];
            y = y + maleA * (x - y);
            weighted[j] = (x - y) + y * shelfGain;
        } else if (settings[channel].genderMode == dsp::GenderTriggerMode::female) {
            double& y = femaleState[channel];
            y = y + femaleA * (x - y);
            weighted[j] = y + shelfGain * (x - y);
        } else {
            weighted[j] = x;
        }
    }
}

void PlainAutomix::shareGain() {
    const std::size_t n = gains.size();
    for (std::size_t i = 0; i < n; ++i) {
        const double c = smoothedLevel[i] < levels[i] ? gainAttack : gainRelease;
        smoothedLevel[i] = smoothedLevel[i] * c + levels[i] * (1.0 - c);
    }
    double sum = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        excess[i] = smoothedLevel[i] - 1e-6;
        if (excess[i] <= 1e-12) excess[i] = 1e-12;
        sum += excess[i];
    }
    double squares = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        shares[i] = sum <= 1e-12 ? 1.0 / static_cast<double>(n) : excess[i] / sum;
        squares += shares[i] * shares[i];
    }
    const double k = squares <= 1e-12 ? static_cast<double>(n) : 1.0 / squares;
    for (std::size_t i = 0; i < n; ++i) {
        targets[i] = k * shares[i];
        if (targets[i] <= gainFloor) targets[i] = gainFloor;
        const double c = gains[i] < targets[i] ? gainAttack : gainRelease;
        gains[i] = gains[i] * c + targets[i] * (1.0 - c);
    }
}

double PlainAutomix::levelerGain(double rms) {
    const double r = rms > 1e-9 ? rms : 1e-9;
    double desired = masterTargetRMS / r;
    if (desired <= levelerMinGain) desired = levelerMinGain;
    if (desired > levelerMaxGain) desired = levelerMaxGain;
    const double c = desired < masterGain ? levelerAttack : levelerRelease;
    return masterGain * c + (1.0 - c) * desired;
}

} // namespace orvane::baseline
