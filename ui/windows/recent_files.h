#pragma once

#include "platform/base/result.h"
#include "platform/files/preferences.h"

#include <cstddef>
#include <filesystem>
#include <vector>

namespace orvane::ui {

/// The session files that were opened or saved last, kept in the preferences. Main thread.
class RecentFiles final {
  public:
    static constexpr std::size_t mostFiles = 8;

    /// `kept` must outlive this object.
    explicit RecentFiles(platform::Preferences& kept) : preferences(kept) {}

    /// Puts a file first. Fails if that could not be stored.
    platform::Result<platform::Done> add(const std::filesystem::path& path);
    /// The files that still exist, the last one first.
    [[nodiscard]] std::vector<std::filesystem::path> existing() const;

  private:
    [[nodiscard]] std::vector<std::filesystem::path> all() const;

    platform::Preferences& preferences;
};

} // namespace orvane::ui
