#pragma once

#include "platform/base/result.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace orvane::platform {

/// What went wrong with a file, as a sentence: `failure` says what could not be done ("could not be read"),
/// `reason` why, without a full stop.
inline Error fileError(const std::filesystem::path& path, std::string_view failure, std::string_view reason) {
    std::string sentence = "The file \"" + path.string() + "\" ";
    sentence.append(failure).append(": ").append(reason).append(".");
    return {sentence};
}

/// The same with the system's words for an error number (errno).
inline Error fileError(const std::filesystem::path& path, std::string_view failure, int errorNumber) {
    return fileError(path, failure, std::generic_category().message(errorNumber));
}

/// Why a folder, device or pipe is refused where a file's content is asked for.
inline constexpr std::string_view notARegularFile = "it is not a regular file";

} // namespace orvane::platform
