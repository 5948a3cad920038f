#include "platform/lv2/bundle_report.h"

#include "platform/files/property_list.h"

#include <cstddef>
#include <limits>
#include <utility>

namespace orvane::platform::lv2 {

namespace {

constexpr std::size_t longestText = 4096;
constexpr std::size_t mostEntries = 4096;

constexpr const char* effectsKey = "effects";
constexpr const char* presetsKey = "presets";
constexpr const char* leftOutKey = "leftOut";
constexpr const char* bundlesKey = "bundles";
constexpr const char* uriKey = "uri";
constexpr const char* nameKey = "name";
constexpr const char* makerKey = "maker";
constexpr const char* bankKey = "bank";
constexpr const char* pluginKey = "plugin";
constexpr const char* minorKey = "minor";
constexpr const char* microKey = "micro";
constexpr const char* folderKey = "folder";
constexpr const char* stampKey = "stamp";

std::optional<std::string> textOf(const PropertyList& list) {
    const auto* const bytes = std::get_if<PropertyList::Data>(&list.value);
    if (bytes == nullptr || bytes->size() > longestText) return std::nullopt;
    return std::string(bytes->begin(), bytes->end());
}

const PropertyList::Array* entriesAt(const PropertyList::Dictionary& dictionary, const char* key) {
    const auto* const entries = valueAt<PropertyList::Array>(dictionary, key);
    return entries == nullptr || entries->size() > mostEntries ? nullptr : entries;
}

int versionAt(const PropertyList::Dictionary& dictionary, const char* key) {
    const auto* const number = valueAt<std::int64_t>(dictionary, key);
    return number != nullptr && std::in_range<int>(*number) ? static_cast<int>(*number) : 0;
}

std::optional<InstalledPlugin> effectOf(const PropertyList& value, const std::filesystem::path& folder) {
    const auto* const entry = std::get_if<PropertyList::Dictionary>(&value.value);
    if (entry == nullptr) return std::nullopt;
    auto uri = textAt(*entry, uriKey);
    auto name = textAt(*entry, nameKey);
    auto maker = textAt(*entry, makerKey);
    if (!uri || !name || !maker || name->empty()) return std::nullopt;
    const AudioComponentDescription description = effectDescription(*uri, *maker);
    return InstalledPlugin{
        {description, *std::move(name), *std::move(maker)},
        *std::move(uri),
        folder,
        {versionAt(*entry, minorKey), versionAt(*entry, microKey)}};
}

std::optional<InstalledPreset> presetOf(const PropertyList& value, const std::filesystem::path& folder) {
    const auto* const entry = std::get_if<PropertyList::Dictionary>(&value.value);
    if (entry == nullptr) return std::nullopt;
    auto uri = textAt(*entry, uriKey);
    auto name = textAt(*entry, nameKey);
    auto bank = textAt(*entry, bankKey);
    auto plugin = textAt(*entry, pluginKey);
    if (!uri || !name || !bank || !plugin) return std::nullopt;
    return InstalledPreset{*std::move(uri), *std::move(name), *std::move(bank), *std::move(plugin), folder};
}

/// Applies `read` to each entry; absent if `read` fails for any of them or `entries` is null.
template <class T, class Read>
std::optional<std::vector<T>> eachOf(const PropertyList::Array* entries, const Read& read) {
    if (entries == nullptr) return std::nullopt;
    std::vector<T> all;
    for (const PropertyList& entry : *entries) {
        auto one = read(entry);
        if (!one) return std::nullopt;
        all.push_back(*std::move(one));
    }
    return all;
}

} // namespace

PropertyList valueOf(const std::string& text) {
    PropertyList value;
    value.value.emplace<PropertyList::Data>(text.begin(), text.end());
    return value;
}

std::optional<std::string> textAt(const PropertyList::Dictionary& dictionary, const std::string& key) {
    const auto found = dictionary.find(key);
    return found == dictionary.end() ? std::nullopt : textOf(found->second);
}

PropertyList::Dictionary dictionaryOf(const BundleContents& contents) {
    PropertyList::Dictionary dictionary;
    auto& effects = dictionary[effectsKey].value.emplace<PropertyList::Array>();
    for (const InstalledPlugin& effect : contents.effects) {
        auto& entry = effects.emplace_back().value.emplace<PropertyList::Dictionary>();
        entry[uriKey] = valueOf(effect.uri);
        entry[nameKey] = valueOf(effect.component.name);
        entry[makerKey] = valueOf(effect.component.manufacturerName);
        entry[minorKey].value = std::int64_t{effect.version.first};
        entry[microKey].value = std::int64_t{effect.version.second};
    }
    auto& presets = dictionary[presetsKey].value.emplace<PropertyList::Array>();
    for (const InstalledPreset& preset : contents.presets) {
        auto& entry = presets.emplace_back().value.emplace<PropertyList::Dictionary>();
        entry[uriKey] = valueOf(preset.uri);
        entry[nameKey] = valueOf(preset.name);
        entry[bankKey] = valueOf(preset.bank);
        entry[pluginKey] = valueOf(preset.pluginUri);
    }
    auto& leftOut = dictionary[leftOutKey].value.emplace<PropertyList::Array>();
    for (const std::string& sentence : contents.leftOut)
        leftOut.push_back(valueOf(sentence));
    return dictionary;
}

std::optional<BundleContents>
contentsOf(const PropertyList::Dictionary& dictionary, const std::filesystem::path& folder) {
    auto effects = eachOf<InstalledPlugin>(entriesAt(dictionary, effectsKey), [&](const PropertyList& value) {
        return effectOf(value, folder);
    });
    auto presets = eachOf<InstalledPreset>(entriesAt(dictionary, presetsKey), [&](const PropertyList& value) {
        return presetOf(value, folder);
    });
    auto leftOut = eachOf<std::string>(entriesAt(dictionary, leftOutKey), textOf);
    if (!effects || !presets || !leftOut) return std::nullopt;
    return BundleContents{*std::move(effects), *std::move(presets), *std::move(leftOut)};
}

PropertyList::Dictionary dictionaryOf(const std::vector<BundleStamp>& bundles) {
    PropertyList::Dictionary dictionary;
    auto& entries = dictionary[bundlesKey].value.emplace<PropertyList::Array>();
    for (const BundleStamp& bundle : bundles) {
        auto& entry = entries.emplace_back().value.emplace<PropertyList::Dictionary>();
        entry[folderKey] = valueOf(bundle.folder.native());
        entry[stampKey].value = bundle.stamp;
    }
    return dictionary;
}

std::optional<std::vector<BundleStamp>> bundlesOf(const PropertyList::Dictionary& dictionary) {
    const auto* const entries = entriesAt(dictionary, bundlesKey);
    if (entries == nullptr) return std::nullopt;
    std::vector<BundleStamp> bundles;
    for (const PropertyList& value : *entries) {
        const auto* const entry = std::get_if<PropertyList::Dictionary>(&value.value);
        const auto folder = entry == nullptr ? std::nullopt : textAt(*entry, folderKey);
        const auto* const stamp = entry == nullptr ? nullptr : valueAt<std::int64_t>(*entry, stampKey);
        if (!folder || stamp == nullptr) return std::nullopt;
        bundles.push_back({*folder, *stamp});
    }
    return bundles;
}

} // namespace orvane::platform::lv2
