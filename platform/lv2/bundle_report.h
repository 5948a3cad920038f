#pragma once

#include "platform/files/property_list.h"
#include "platform/lv2/component_scan.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace orvane::platform::lv2 {

// What the program that reads bundles writes for the one that asked, and what of it is kept. Any thread.

/// A bundle folder, and a number that changes when one of its descriptions is written, added or removed.
struct BundleStamp {
    std::filesystem::path folder;
    std::int64_t stamp = 0;

    bool operator==(const BundleStamp&) const = default;
};

PropertyList::Dictionary dictionaryOf(const BundleContents& contents);
/// Absent if the dictionary is not a description of a bundle's contents, or goes beyond all that a bundle
/// has.
std::optional<BundleContents>
contentsOf(const PropertyList::Dictionary& dictionary, const std::filesystem::path& folder);

PropertyList::Dictionary dictionaryOf(const std::vector<BundleStamp>& bundles);
/// Absent if the dictionary is not a list of bundles.
std::optional<std::vector<BundleStamp>> bundlesOf(const PropertyList::Dictionary& dictionary);

/// A text of any bytes as a value of a dictionary.
PropertyList valueOf(const std::string& text);
/// The text of such a value; absent if it is another one or too long.
std::optional<std::string> textAt(const PropertyList::Dictionary& dictionary, const std::string& key);

} // namespace orvane::platform::lv2
