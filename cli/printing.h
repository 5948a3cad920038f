#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <string_view>

namespace orvane::cli {

/// Writes a sentence to standard error as one line "orvane-cli: ..."; a failure to write is ignored. Main
/// thread.
void printMessage(std::string_view sentence);

/// Prints the sentence of an error like `printMessage`. Returns 1, the exit code of a command that failed.
int fail(std::string_view sentence);

/// Writes the result of a command whole to standard output; a terminal receives its `terminalText`. Returns
/// the exit code: 0, also if the reader has closed its end, or 1 with a message if writing failed. Main
/// thread.
int printResult(std::string_view text);

/// Formats a document for programs. Bytes of names that are not valid UTF-8 are replaced.
std::string jsonText(const nlohmann::json& document);

/// Returns JSON or a table with each character that could control a terminal or reorder its text replaced by
/// its JSON escape: the control characters from U+007F on, the line and paragraph separators, and the
/// bidirectional controls. JSON keeps its meaning. `text` is UTF-8; ASCII control characters stay. Any thread
/// but the audio ones.
std::string terminalText(std::string_view text);

} // namespace orvane::cli
