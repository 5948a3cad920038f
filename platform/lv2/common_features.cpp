#include "platform/lv2/common_features.h"

#include "platform/lv2/host_services.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace orvane::platform::lv2 {

namespace {

LV2_URID mapUri(LV2_URID_Map_Handle services, const char* uri) {
    return uri == nullptr ? 0 : static_cast<HostServices*>(services)->urids.map(uri);
}

const char* unmapUrid(LV2_URID_Unmap_Handle services, LV2_URID urid) {
    return static_cast<HostServices*>(services)->urids.unmap(urid);
}

} // namespace

CommonFeatures::CommonFeatures(HostServices& hostServices, std::string pluginName)
    : map{&hostServices, mapUri},
      unmap{&hostServices, unmapUrid},
      log{this, print, vprint},
      services(hostServices),
      name(std::move(pluginName)),
      logTrace(services.urids.map(LV2_LOG__Trace)),
      logError(services.urids.map(LV2_LOG__Error)) {}

int CommonFeatures::print(LV2_Log_Handle features, LV2_URID type, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const int length = vprint(features, type, format, arguments);
    va_end(arguments);
    return length;
}

int CommonFeatures::vprint(
    LV2_Log_Handle features, LV2_URID type, const char* format, std::va_list arguments
) {
    auto& self = *static_cast<CommonFeatures*>(features);
    if (type == self.logTrace) return 0;
    std::array<char, SystemLog::longestLine> text{};
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the plugin has started it.
    const int length = std::vsnprintf(text.data(), text.size(), format, arguments);
    std::string_view line(text.data());
    while (line.ends_with('\n'))
        line.remove_suffix(1);
    if (!line.empty())
        self.services.log.post(
            type == self.logError ? LogLevel::error : LogLevel::standard, logCategory, {self.name, ": ", line}
        );
    return length;
}

const std::string*
firstUnsupported(const std::vector<std::string>& required, std::span<const std::string_view> supported) {
    const auto found = std::ranges::find_if(required, [&](const std::string& each) {
        return std::ranges::find(supported, each) == supported.end();
    });
    return found == required.end() ? nullptr : &*found;
}

} // namespace orvane::platform::lv2
