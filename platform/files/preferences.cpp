#include "platform/files/preferences.h"

#include "platform/files/atomic_file.h"
#include "platform/files/read_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <span>
#include <system_error>

namespace orvane::platform {

namespace {

constexpr std::size_t largestFile = 1 << 20;

std::optional<std::string> find(const PreferenceValues& values, std::string_view key) {
    const auto found = values.find(key);
    return found == values.end() ? std::nullopt : std::optional(found->second);
}

} // namespace

std::int64_t Preferences::integer(std::string_view key) const {
    const std::string text = value(key).value_or("");
    std::int64_t number = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    return failure == std::errc() && end == text.data() + text.size() ? number : 0;
}

std::optional<std::string> InMemoryPreferences::value(std::string_view key) const {
    return find(values, key);
}

Result<Done> InMemoryPreferences::setValue(std::string_view key, std::string_view value) {
    values.insert_or_assign(std::string(key), value);
    return Done{};
}

PreferenceValues FilePreferences::read() const {
    PreferenceValues values;
    if (!file) return values;
    const auto content = readFile(*file, largestFile);
    if (!content) return values;
    std::string_view rest = content.value();
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        if (const std::size_t equals = line.find('='); equals != std::string_view::npos)
            values.insert_or_assign(std::string(line.substr(0, equals)), line.substr(equals + 1));
    }
    return values;
}

std::optional<std::string> FilePreferences::value(std::string_view key) const {
    return find(read(), key);
}

Result<Done> FilePreferences::setValue(std::string_view key, std::string_view value) {
    if (!file) return Error{"The user has no folder for preferences."};
    PreferenceValues values = read();
    values.insert_or_assign(std::string(key), value);
    std::string content;
    for (const auto& [name, kept] : values)
        content += fmt::format("{}={}\n", name, kept);
    std::error_code failure;
    std::filesystem::create_directories(file->parent_path(), failure);
    if (failure)
        return Error{fmt::format(
            "The folder {} for the preferences could not be made: {}.", file->parent_path().string(),
            failure.message()
        )};
    return writeFileAtomically(*file, std::as_bytes(std::span(content)));
}

} // namespace orvane::platform
