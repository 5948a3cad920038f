#pragma once

#include "platform/base/result.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace orvane::platform {

/// What the program remembers between launches: single-line values under keys without "=". Made by the
/// composition root. Main thread.
class Preferences {
  public:
    virtual ~Preferences() = default;

    /// Absent if nothing is stored.
    [[nodiscard]] virtual std::optional<std::string> value(std::string_view key) const = 0;
    /// Fails if the value could not be stored.
    virtual Result<Done> setValue(std::string_view key, std::string_view value) = 0;

    /// The integer under a key; 0 if there is none.
    [[nodiscard]] std::int64_t integer(std::string_view key) const;
};

/// Values by key, in the order in which they are written.
using PreferenceValues = std::map<std::string, std::string, std::less<>>;

/// Preferences that last until the program ends.
class InMemoryPreferences final : public Preferences {
  public:
    [[nodiscard]] std::optional<std::string> value(std::string_view key) const override;
    Result<Done> setValue(std::string_view key, std::string_view value) override;

  private:
    PreferenceValues values;
};

/// Preferences in a file of "key=value" lines. Read and written on every call, so that several programs can
/// share it.
class FilePreferences final : public Preferences {
  public:
    /// The file and its folder need not exist. Without a path, no value is found and none can be stored.
    explicit FilePreferences(std::optional<std::filesystem::path> path) : file(std::move(path)) {}

    [[nodiscard]] std::optional<std::string> value(std::string_view key) const override;
    Result<Done> setValue(std::string_view key, std::string_view value) override;

  private:
    [[nodiscard]] PreferenceValues read() const;

    std::optional<std::filesystem::path> file;
};

} // namespace orvane::platform
