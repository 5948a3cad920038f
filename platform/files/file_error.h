#pragma once

#include "platform/base/result.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace orvane::platform {

/// A sentence about a failure with a file. `failure` is the predicate ("could not be read"), `reason` the
/// cause, without a full stop.
inline Error fileError(const std::filesystem::path& path, std::string_view failure, std::string_view reason) {
    std::string sentence = "The file \"" + path.string() + "\" ";
    sentence.append(failure).append(": ").append(reason).append(".");
    return {sentence};
}

/// As above, with the system's text for an errno value.
inline Error fileError(const std::filesystem::path& path, std::string_view failure, int errorNumber) {
    return fileError(path, failure, std::generic_category().message(errorNumber));
}

/// The reason for refusing a folder, device or pipe.
inline constexpr std::string_view notARegularFile = "it is not a regular file";

} // namespace orvane::platform
