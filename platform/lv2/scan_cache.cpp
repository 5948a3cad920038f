#include "platform/lv2/scan_cache.h"

#include "platform/files/atomic_file.h"
#include "platform/files/property_list.h"
#include "platform/files/read_file.h"

#include <span>
#include <system_error>
#include <tuple>
#include <utility>

namespace orvane::platform::lv2 {

namespace {

/// Raised with every change of what a scan reads or of the file's format.
constexpr std::int64_t formatVersion = 3;

constexpr const char* versionKey = "version";
constexpr const char* bundlesKey = "bundles";
constexpr const char* folderKey = "folder";
constexpr const char* stampKey = "stamp";

} // namespace

ScanCache::ScanCache(std::optional<std::filesystem::path> cacheFile) : file(std::move(cacheFile)) {
    if (file) before = read(*file);
}

const BundleContents* ScanCache::find(const BundleStamp& bundle) const {
    const auto found = before.find(bundle.folder);
    return found == before.end() || found->second.stamp != bundle.stamp ? nullptr : &found->second.contents;
}

void ScanCache::keep(const BundleStamp& bundle, BundleContents contents) {
    kept.insert_or_assign(bundle.folder, Entry{bundle.stamp, std::move(contents)});
}

ScanCache::Entries ScanCache::read(const std::filesystem::path& file) {
    const auto bytes = readFile(file, maximumPropertyListSize);
    if (!bytes) return {};
    const auto* const first = reinterpret_cast<const std::uint8_t*>(bytes.value().data());
    const auto document = propertyListWithData({first, bytes.value().size()});
    if (!document) return {};
    const auto* const version = valueAt<std::int64_t>(document.value(), versionKey);
    const auto* const bundles = valueAt<PropertyList::Array>(document.value(), bundlesKey);
    if (version == nullptr || *version != formatVersion || bundles == nullptr) return {};
    Entries entries;
    for (const PropertyList& value : *bundles) {
        const auto* const bundle = std::get_if<PropertyList::Dictionary>(&value.value);
        const auto folder = bundle == nullptr ? std::nullopt : textAt(*bundle, folderKey);
        const auto* const stamp = bundle == nullptr ? nullptr : valueAt<std::int64_t>(*bundle, stampKey);
        if (!folder || stamp == nullptr) return {};
        auto contents = contentsOf(*bundle, *folder);
        if (!contents) return {};
        entries.insert_or_assign(*folder, Entry{*stamp, *std::move(contents)});
    }
    return entries;
}

void ScanCache::store() const {
    if (!file || kept == before) return;
    PropertyList::Dictionary document;
    document[versionKey].value = formatVersion;
    auto& bundles = document[bundlesKey].value.emplace<PropertyList::Array>();
    for (const auto& [folder, entry] : kept) {
        auto& bundle = bundles.emplace_back().value.emplace<PropertyList::Dictionary>();
        bundle = dictionaryOf(entry.contents);
        bundle[folderKey] = valueOf(folder.native());
        bundle[stampKey].value = entry.stamp;
    }
    const auto bytes = dataWithPropertyList(document);
    if (!bytes) return;
    std::error_code ignored;
    std::filesystem::create_directories(file->parent_path(), ignored);
    std::ignore = writeFileAtomically(*file, std::as_bytes(std::span(bytes.value())));
}

} // namespace orvane::platform::lv2
