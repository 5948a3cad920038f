#pragma once

#include "platform/files/property_list.h"
#include "platform/lv2/component_scan.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orvane::platform::lv2 {

// The reports of the program that reads bundles, also used as cache entries. Any thread.

/// A bundle folder and a stamp, which changes when a description in it is written, added or removed.
struct BundleStamp {
    std::filesystem::path folder;
    std::int64_t stamp = 0;

    bool operator==(const BundleStamp&) const = default;
};

PropertyList::Dictionary dictionaryOf(const BundleContents& contents);
/// Absent if the dictionary does not describe the contents of a bundle or exceeds the size limits.
std::optional<BundleContents>
contentsOf(const PropertyList::Dictionary& dictionary, const std::filesystem::path& folder);

PropertyList::Dictionary dictionaryOf(const std::vector<BundleStamp>& bundles);
/// Absent if the dictionary is not a list of bundles.
std::optional<std::vector<BundleStamp>> bundlesOf(const PropertyList::Dictionary& dictionary);

/// Stores a text, which may hold any bytes, as a value of a dictionary.
PropertyList valueOf(const std::string& text);
/// Returns a text stored with `valueOf`; absent if the value is of another type or too long.
std::optional<std::string> textAt(const PropertyList::Dictionary& dictionary, const std::string& key);

} // namespace orvane::platform::lv2
