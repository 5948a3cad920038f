#include "cli/meter_bridge.h"

#include "cli/peak_text.h"
#include "dsp/decibels.h"
#include "platform/base/plain_text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace orvane::cli {

namespace {

/// The bar's range, in dB re full scale.
constexpr double lowestShownDB = -60.0;
constexpr int barCells = 30;

std::string levelBar(double levelDB) {
    const double share = std::clamp((levelDB - lowestShownDB) / -lowestShownDB, 0.0, 1.0);
    const auto lit = static_cast<int>(std::lround(share * barCells));
    std::string bar;
    for (int cell = 0; cell < barCells; ++cell)
        bar += cell < lit ? "█" : "·";
    return bar;
}

std::string meterLine(std::string_view label, double level) {
    const double levelDB = dsp::linearToDB(level);
    const std::string figure = levelDB < lowestShownDB ? "  -inf" : fmt::format("{:6.1f}", levelDB);
    return fmt::format("{:<20.20} {} {} dB", label, levelBar(levelDB), figure);
}

std::vector<std::string> linesOf(const MeterFrame& frame) {
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < frame.strips.size(); ++i) {
        const MeterFrame::Strip& strip = frame.strips[i];
        lines.push_back(fmt::format(
            "{}  GR {:5.1f} dB{}",
            meterLine(fmt::format("{:>2} {}", i + 1, platform::plainText(strip.name)), strip.level),
            strip.gainReductionDB, strip.inputPeak.overs > 0 ? "  CLIP" : ""
        ));
    }
    lines.push_back(fmt::format(
        "{}  peak {:5.1f} dB", meterLine("   Master", frame.masterLevel),
        std::max(dsp::linearToDB(frame.masterPeak.peak), lowestShownDB)
    ));
    lines.push_back(meterLine("   Reference", frame.referenceLevel));
    const std::string overs = oversText(frame.outputPeaks);
    lines.push_back(fmt::format(
        "   {:.1f} s, load {:.1f} %, {} xruns{}{}", frame.seconds, frame.cpuLoad * 100.0, frame.xruns,
        overs.empty() ? "" : ", ", overs
    ));
    return lines;
}

} // namespace

std::string meterText(const MeterFrame& frame) {
    std::string text;
    for (const std::string& line : linesOf(frame))
        text += line + "\n";
    return text;
}

std::string meterTextOver(const MeterFrame& frame) {
    const std::vector<std::string> lines = linesOf(frame);
    std::string text = fmt::format("\x1b[{}A", lines.size());
    for (const std::string& line : lines)
        text += "\r" + line + "\x1b[K\n";
    return text;
}

std::string meterJSON(const MeterFrame& frame) {
    nlohmann::json object = {
        {"seconds", frame.seconds},
        {"masterDB", dsp::linearToDB(frame.masterLevel)},
        {"masterGainDB", dsp::linearToDB(frame.masterGain)},
        {"masterPeakDB", dsp::linearToDB(frame.masterPeak.peak)},
        {"masterOvers", frame.masterPeak.overs},
        {"outputs", peaksJSON(frame.outputPeaks)},
        {"referenceDB", dsp::linearToDB(frame.referenceLevel)},
        {"cpuLoad", frame.cpuLoad},
        {"xruns", frame.xruns},
        {"strips", nlohmann::json::array()}};
    for (const MeterFrame::Strip& strip : frame.strips)
        object["strips"].push_back(
            {{"name", strip.name},
             {"levelDB", dsp::linearToDB(strip.level)},
             {"gainReductionDB", strip.gainReductionDB},
             {"inputPeakDB", dsp::linearToDB(strip.inputPeak.peak)},
             {"inputOvers", strip.inputPeak.overs},
             {"muted", strip.muted},
             {"bypassed", strip.bypassed}}
        );
    object["scene"] = nullptr;
    if (frame.scene) object["scene"] = {{"number", frame.scene->number}, {"name", frame.scene->name}};
    return object.dump() + "\n";
}

} // namespace orvane::cli
