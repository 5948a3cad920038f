#include "platform/base/base64.h"

#include <array>
#include <cstddef>

namespace orvane::platform {

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t noDigit = 0xFF;

constexpr std::array<std::uint8_t, 256> makeDigitValues() {
    std::array<std::uint8_t, 256> values{};
    values.fill(noDigit);
    for (std::size_t value = 0; value < alphabet.size(); ++value)
        values[static_cast<std::uint8_t>(alphabet[value])] = static_cast<std::uint8_t>(value);
    return values;
}

constexpr std::array<std::uint8_t, 256> digitValues = makeDigitValues();

} // namespace

std::string encodeBase64(std::span<const std::uint8_t> bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    std::uint32_t pending = 0;
    unsigned pendingBits = 0;
    for (const std::uint8_t byte : bytes) {
        pending = pending << 8 | byte;
        pendingBits += 8;
        while (pendingBits >= 6) {
            pendingBits -= 6;
            text += alphabet[pending >> pendingBits & 0x3F];
        }
    }
    if (pendingBits > 0) text += alphabet[pending << (6 - pendingBits) & 0x3F];
    while (text.size() % 4 != 0)
        text += '=';
    return text;
}

std::optional<std::vector<std::uint8_t>> decodeBase64(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    const std::size_t paddingLength = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    text.remove_suffix(paddingLength);

    std::vector<std::uint8_t> bytes;
    bytes.reserve(text.size() / 4 * 3 + 2);
    std::uint32_t pending = 0;
    unsigned pendingBits = 0;
    for (const char digit : text) {
        const std::uint8_t value = digitValues[static_cast<std::uint8_t>(digit)];
        if (value == noDigit) return std::nullopt;
        pending = pending << 6 | value;
        pendingBits += 6;
        if (pendingBits < 8) continue;
        pendingBits -= 8;
        bytes.push_back(static_cast<std::uint8_t>(pending >> pendingBits));
    }
    const std::uint32_t unusedBits = pending & ((1U << pendingBits) - 1);
    if (unusedBits != 0) return std::nullopt;
    return bytes;
}

} // namespace orvane::platform
