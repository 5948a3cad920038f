#pragma once

#include "platform/lv2/host_services.h"

#include <lv2/log/log.h>
#include <lv2/options/options.h>
#include <lv2/urid/urid.h>

#include <cstdarg>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform::lv2 {

/// The features for both plugins and editors: URID mapping and the log. Not movable: plugins keep pointers
/// into it.
class CommonFeatures final {
  public:
    /// `pluginName`: the prefix of each log line.
    CommonFeatures(HostServices& hostServices, std::string pluginName);
    CommonFeatures(const CommonFeatures&) = delete;
    CommonFeatures& operator=(const CommonFeatures&) = delete;

    LV2_URID_Map map;
    LV2_URID_Unmap unmap;
    LV2_Log_Log log;

  private:
    static int print(LV2_Log_Handle features, LV2_URID type, const char* format, ...);
    static int vprint(LV2_Log_Handle features, LV2_URID type, const char* format, std::va_list arguments);

    HostServices& services;
    std::string name;
    LV2_URID logTrace;
    LV2_URID logError;
};

/// Returns the first required feature that is not supported; null if all are.
const std::string*
firstUnsupported(const std::vector<std::string>& required, std::span<const std::string_view> supported);

/// An option of an instance. `value` must outlive the option.
template <class Value>
LV2_Options_Option makeOption(UridMap& urids, const char* uri, const char* type, const Value& value) {
    return {LV2_OPTIONS_INSTANCE, 0, urids.map(uri), sizeof value, urids.map(type), &value};
}

/// Terminates a list of options.
inline constexpr LV2_Options_Option noMoreOptions{LV2_OPTIONS_INSTANCE, 0, 0, 0, 0, nullptr};

} // namespace orvane::platform::lv2
