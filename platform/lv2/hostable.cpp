#include "platform/lv2/hostable.h"

#include "platform/lv2/host_features.h"

#include <fmt/format.h>

#include <cstddef>

namespace orvane::platform::lv2 {

std::optional<Error> whyNotInstantiable(const PluginDescription& description) {
    if (auto error = HostFeatures::whyUnsupported(description)) return error;
    for (std::size_t i = 0; i < description.roles.size(); ++i)
        if (description.roles[i].kind == PortKind::unknown && !description.roles[i].isOptional)
            return Error{fmt::format(
                "\"{}\" cannot be used: its port number {} is of a kind that is not supported.",
                description.name, i
            )};
    return std::nullopt;
}

bool isHostable(const PluginDescription& description) {
    return description.audio.channelCount() && !whyNotInstantiable(description);
}

} // namespace orvane::platform::lv2
