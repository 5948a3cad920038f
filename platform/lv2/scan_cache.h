#pragma once

#include "platform/lv2/bundle_report.h"
#include "platform/lv2/component_scan.h"

#include <filesystem>
#include <map>
#include <optional>

namespace orvane::platform::lv2 {

/// What was found in bundles the last time, so that only those that have changed are read again. Used by one
/// scan, on its thread.
class ScanCache final {
  public:
    /// Empty if the file is missing, damaged, of another version of the format, or not named at all.
    explicit ScanCache(std::optional<std::filesystem::path> cacheFile);

    /// What the bundle had when it had this stamp; null if that is not known.
    [[nodiscard]] const BundleContents* find(const BundleStamp& bundle) const;

    /// Remembers a bundle for the next start.
    void keep(const BundleStamp& bundle, BundleContents contents);

    /// Replaces the file by what has been kept, if that differs from what was read. A file that cannot be
    /// written costs the next start its time.
    void store() const;

  private:
    struct Entry {
        std::int64_t stamp = 0;
        BundleContents contents;

        bool operator==(const Entry&) const = default;
    };
    using Entries = std::map<std::filesystem::path, Entry>;

    static Entries read(const std::filesystem::path& file);

    std::optional<std::filesystem::path> file;
    Entries before;
    Entries kept;
};

} // namespace orvane::platform::lv2
