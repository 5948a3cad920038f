#pragma once

#include "platform/lv2/bundle_report.h"
#include "platform/lv2/component_scan.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>

namespace orvane::platform::lv2 {

/// The results of the last scan, so that only bundles that have changed are read again. Used by one scan, on
/// its thread.
class ScanCache final {
  public:
    /// Starts empty if no file is given, or if it is missing, damaged or of another version.
    explicit ScanCache(std::optional<std::filesystem::path> cacheFile);

    /// The contents of the bundle at this stamp; null if unknown.
    [[nodiscard]] const BundleContents* find(const BundleStamp& bundle) const;

    /// Keeps a bundle for the next start.
    void keep(const BundleStamp& bundle, BundleContents contents);

    /// Writes what has been kept, if it differs from what was read. If that fails, the next start scans
    /// again.
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
