#include "cli/printing.h"

#include "machine/process.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <system_error>

namespace orvane::cli {

namespace {

/// A range of characters whose UTF-8 encodings differ only in the last byte.
struct Range {
    std::string_view first;
    std::string_view last;
    std::uint32_t firstCode;

    [[nodiscard]] bool begins(std::string_view text) const {
        const std::string_view character = text.substr(0, first.size());
        return first <= character && character <= last;
    }
};

/// U+2028 to U+202E are the two separators and five bidirectional controls.
constexpr std::array<Range, 4> commanding{
    {{"\x7F", "\x7F", 0x7F},
     {"\xC2\x80", "\xC2\x9F", 0x80},
     {"\xE2\x80\xA8", "\xE2\x80\xAE", 0x2028},
     {"\xE2\x81\xA6", "\xE2\x81\xA9", 0x2066}}};

bool write(std::string_view text) {
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
}

} // namespace

void printMessage(std::string_view sentence) {
    machine::printMessage("orvane-cli", sentence);
}

int fail(std::string_view sentence) {
    printMessage(sentence);
    return 1;
}

int printResult(std::string_view text) {
    if (::isatty(STDOUT_FILENO) == 1 ? write(terminalText(text)) : write(text)) return 0;
    const int error = errno;
    if (error == EPIPE) return 0;
    return fail(fmt::format("The result could not be written: {}.", std::generic_category().message(error)));
}

std::string jsonText(const nlohmann::json& document) {
    return document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

std::string terminalText(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const auto range =
            std::ranges::find_if(commanding, [text](const Range& one) { return one.begins(text); });
        const std::size_t length = range == commanding.end() ? 1 : range->first.size();
        if (range == commanding.end()) {
            shown += text[0];
        } else {
            const auto lastByte = static_cast<unsigned char>(text[length - 1]);
            const auto firstByte = static_cast<unsigned char>(range->first.back());
            fmt::format_to(std::back_inserter(shown), "\\u{:04x}", range->firstCode + lastByte - firstByte);
        }
        text.remove_prefix(length);
    }
    return shown;
}

} // namespace orvane::cli
