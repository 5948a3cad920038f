#pragma once

#include "platform/base/result.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace orvane::platform {

/// A tree of the value types of property lists. A plain value.
struct PropertyList {
    using Data = std::vector<std::uint8_t>;
    using Array = std::vector<PropertyList>;
    using Dictionary = std::map<std::string, PropertyList>;

    std::variant<bool, std::int64_t, double, std::string, Data, Array, Dictionary> value;

    bool operator==(const PropertyList&) const = default;
};

/// The value under a key; null if it is missing or not a T.
template <class T>
const T* valueAt(const PropertyList::Dictionary& dictionary, const std::string& key) {
    const auto found = dictionary.find(key);
    return found == dictionary.end() ? nullptr : std::get_if<T>(&found->second.value);
}

/// The largest binary property list, in bytes, and the most bytes of text and data that it may unfold to.
inline constexpr std::size_t maximumPropertyListSize = 32U << 20U;

/// The most values of a property list, keys included, each counted wherever it is referred to.
inline constexpr std::size_t maximumPropertyListValues = 1U << 18U;

/// How deeply dictionaries and arrays may be nested.
inline constexpr std::size_t maximumPropertyListDepth = 64;

/// Returns the dictionary as a binary property list, the same bytes for equal dictionaries. Fails if it could
/// not be read back. Any thread.
Result<PropertyList::Data> dataWithPropertyList(const PropertyList::Dictionary& dictionary);

/// Reads the dictionary at the top of a binary property list from an untrusted file. Fails if there is none,
/// and if the list is damaged, refers to itself, holds a kind of value that `PropertyList` lacks, or exceeds
/// the limits above. Any thread.
Result<PropertyList::Dictionary> propertyListWithData(std::span<const std::uint8_t> data);

} // namespace orvane::platform
