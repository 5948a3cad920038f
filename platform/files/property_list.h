#pragma once

#include "platform/base/result.h"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace orvane::platform {

/// A tree of the values that property lists know. A plain value.
struct PropertyList {
    using Data = std::vector<std::uint8_t>;
    using Array = std::vector<PropertyList>;
    using Dictionary = std::map<std::string, PropertyList>;

    std::variant<bool, std::int64_t, double, std::string, Data, Array, Dictionary> value;

    bool operator==(const PropertyList&) const = default;
};

/// The dictionary as a binary property list, the same bytes for equal dictionaries. Fails where it is nested
/// too deeply to be read back. Any thread.
Result<PropertyList::Data> dataWithPropertyList(const PropertyList::Dictionary& dictionary);

/// The dictionary that a binary property list holds at its top. Fails on anything else, and on whatever is
/// damaged, refers to itself, is nested too deeply or is larger than any plugin's state. Any thread.
Result<PropertyList::Dictionary> propertyListWithData(std::span<const std::uint8_t> data);

} // namespace orvane::platform
