#include "cli/peak_text.h"

#include "dsp/decibels.h"

#include <fmt/format.h>

namespace orvane::cli {

nlohmann::json peaksJSON(std::span<const audio::SignalPeak> outputs) {
    nlohmann::json used = nlohmann::json::array();
    for (std::size_t i = 0; i < outputs.size(); ++i)
        if (outputs[i].isUsed)
            used.push_back(
                {{"number", i + 1}, {"peakDB", dsp::linearToDB(outputs[i].peak)}, {"overs", outputs[i].overs}}
            );
    return used;
}

std::string oversText(std::span<const audio::SignalPeak> outputs) {
    std::string text;
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        if (outputs[i].overs == 0) continue;
        text += fmt::format(
            "{}{} {} on output {}", text.empty() ? "" : ", ", outputs[i].overs,
            outputs[i].overs == 1 ? "over" : "overs", i + 1
        );
    }
    return text;
}

} // namespace orvane::cli
