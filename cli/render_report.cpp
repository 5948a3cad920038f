#include "cli/render_report.h"

#include "cli/peak_text.h"
#include "dsp/decibels.h"
#include "platform/base/plain_text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace orvane::cli {

std::string RenderReport::json() const {
    nlohmann::json document = {
        {"sampleRate", sampleRate},
        {"bufferSize", bufferSize},
        {"seconds", seconds},
        {"blocks", blocks},
        {"wallSeconds", wallSeconds},
        {"realTimeFactor", realTimeFactor()},
        {"masterGain", masterGain},
        {"masterGainDB", dsp::linearToDB(masterGain)},
        {"masterPeakDB", dsp::linearToDB(masterPeak.peak)},
        {"masterOvers", masterPeak.overs},
        {"outputs", peaksJSON(outputPeaks)},
        {"peakLoad", peakLoad},
        {"meanLoad", meanLoad},
        {"gainIntervalSeconds", gainIntervalSeconds},
        {"strips", nlohmann::json::array()}};
    for (std::size_t i = 0; i < strips.size(); ++i)
        document["strips"].push_back(
            {{"number", i + 1},
             {"name", strips[i].name},
             {"finalGain", strips[i].finalGain},
             {"finalGainDB", dsp::linearToDB(strips[i].finalGain)},
             {"meanOutputLevel", strips[i].meanOutputLevel},
             {"meanOutputLevelDB", dsp::linearToDB(strips[i].meanOutputLevel)},
             {"inputPeakDB", dsp::linearToDB(strips[i].inputPeak.peak)},
             {"inputOvers", strips[i].inputPeak.overs},
             {"gainsDB", strips[i].gainsDB}}
        );
    return document.dump(2) + "\n";
}

std::string RenderReport::text() const {
    std::string lines = fmt::format(
        "{:.1f} s in {} blocks of {} frames, mixed in {:.2f} s: {:.0f} times real time.\n"
        "Load of a block's duration: {:.1f} % on average, {:.1f} % at most. "
        "Master gain at the end: {:+.1f} dB.\n"
        "Strip                     gain at end   mean level\n",
        seconds, blocks, bufferSize, wallSeconds, realTimeFactor(), meanLoad * 100.0, peakLoad * 100.0,
        dsp::linearToDB(masterGain)
    );
    for (std::size_t i = 0; i < strips.size(); ++i)
        fmt::format_to(
            std::back_inserter(lines), "{:>3} {:<20.20} {:>9.1f} dB {:>9.1f} dB\n", i + 1,
            platform::plainText(strips[i].name), dsp::linearToDB(strips[i].finalGain),
            dsp::linearToDB(strips[i].meanOutputLevel)
        );
    if (const std::string overs = oversText(outputPeaks); !overs.empty())
        lines += "Full scale: " + overs + ".\n";
    return lines;
}

RenderReportBuilder::RenderReportBuilder(const OfflineMixer& mixer, double sampleRate)
    : gains(
        mixer.engine().state().channelStrips.get().size(),
        static_cast<double>(mixer.blockLength()) / sampleRate
    ) {
    report.sampleRate = sampleRate;
    report.bufferSize = mixer.blockLength();
    for (const session::ChannelStrip& strip : mixer.engine().state().channelStrips.get())
        report.strips.push_back({.name = strip.name});
    sumOfSquaredLevels.assign(report.strips.size(), 0.0);
}

void RenderReportBuilder::add(const OfflineMixer& mixer) {
    const dsp::AutomixProcessor& automix = mixer.automix();
    for (std::size_t i = 0; i < report.strips.size(); ++i) {
        const double level = automix.currentOutputLevels()[i];
        sumOfSquaredLevels[i] += level * level;
        report.strips[i].finalGain = automix.currentGains()[i];
    }
    gains.add(automix.currentGains());
    addPeaks(mixer.takePeaks());
    report.masterGain = automix.currentMasterGain();
    report.peakLoad = std::max(report.peakLoad, mixer.load());
    sumOfLoads += mixer.load();
    ++report.blocks;
}

void RenderReportBuilder::addPeaks(const audio::PeakReading& peaks) {
    const auto add = [](audio::SignalPeak& sum, const audio::SignalPeak& taken) {
        sum.isUsed |= taken.isUsed;
        sum.peak = std::max(sum.peak, taken.peak);
        sum.overs += taken.overs;
    };
    for (std::size_t i = 0; i < report.strips.size(); ++i)
        add(report.strips[i].inputPeak, peaks.inputs[i]);
    report.outputPeaks.resize(peaks.outputs.size());
    for (std::size_t i = 0; i < peaks.outputs.size(); ++i)
        add(report.outputPeaks[i], peaks.outputs[i]);
    add(report.masterPeak, peaks.master);
}

RenderReport RenderReportBuilder::finish(double frameCount, double wallSeconds) const {
    RenderReport finished = report;
    finished.seconds = frameCount / report.sampleRate;
    finished.wallSeconds = wallSeconds;
    const double blocks = static_cast<double>(std::max<std::size_t>(report.blocks, 1));
    finished.meanLoad = sumOfLoads / blocks;
    finished.gainIntervalSeconds = gains.intervalSeconds();
    for (std::size_t i = 0; i < finished.strips.size(); ++i) {
        finished.strips[i].meanOutputLevel = std::sqrt(sumOfSquaredLevels[i] / blocks);
        finished.strips[i].gainsDB = gains.gainsDB()[i];
    }
    return finished;
}

} // namespace orvane::cli
