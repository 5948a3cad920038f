#include "platform/lv2/lv2_bus.h"

#include <fmt/format.h>

namespace orvane::platform::lv2 {

Result<Done> Lv2Bus::setFormat(const AVAudioFormat& format) {
    if (isBusy()) return Error{fmt::format("{} cannot change its format while it is in use.", name)};
    if (format.channelCount != current.channelCount)
        return Error{fmt::format(
            "{} is for {} channel{}, not {}.", name, current.channelCount,
            current.channelCount == 1 ? "" : "s", format.channelCount
        )};
    if (!AVAudioFormat::initStandardFormat(format.sampleRate, format.channelCount))
        return Error{fmt::format("{} cannot run at {} Hz.", name, format.sampleRate)};
    current = format;
    return Done{};
}

} // namespace orvane::platform::lv2
