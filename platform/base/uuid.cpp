#include "platform/base/uuid.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace orvane::platform {

namespace {

constexpr std::size_t textLength = 36;
constexpr std::string_view upperCaseDigits = "0123456789ABCDEF";

constexpr bool isHyphenPosition(std::size_t position) {
    return position == 8 || position == 13 || position == 18 || position == 23;
}

std::optional<std::uint8_t> digitValue(char digit) {
    if (digit >= 'a' && digit <= 'f') digit = static_cast<char>(digit - 'a' + 'A');
    const std::size_t value = upperCaseDigits.find(digit);
    if (value == std::string_view::npos) return std::nullopt;
    return static_cast<std::uint8_t>(value);
}

} // namespace

Uuid Uuid::random() {
    Uuid uuid;
    if (getentropy(uuid.bytes.data(), uuid.bytes.size()) != 0)
        throw std::system_error(errno, std::generic_category(), "Could not read random bytes");
    uuid.bytes[6] = static_cast<std::uint8_t>((uuid.bytes[6] & 0x0F) | 0x40);
    uuid.bytes[8] = static_cast<std::uint8_t>((uuid.bytes[8] & 0x3F) | 0x80);
    return uuid;
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != textLength) return std::nullopt;
    Uuid uuid;
    std::size_t digitCount = 0;
    for (std::size_t position = 0; position < textLength; ++position) {
        if (isHyphenPosition(position)) {
            if (text[position] != '-') return std::nullopt;
            continue;
        }
        const auto value = digitValue(text[position]);
        if (!value) return std::nullopt;
        std::uint8_t& byte = uuid.bytes[digitCount / 2];
        byte = static_cast<std::uint8_t>(byte << 4 | *value);
        ++digitCount;
    }
    return uuid;
}

std::string Uuid::toString() const {
    std::string text;
    text.reserve(textLength);
    for (const std::uint8_t byte : bytes) {
        if (isHyphenPosition(text.size())) text += '-';
        text += upperCaseDigits[byte >> 4];
        text += upperCaseDigits[byte & 0x0F];
    }
    return text;
}

} // namespace orvane::platform

std::size_t std::hash<orvane::platform::Uuid>::operator()(const orvane::platform::Uuid& uuid) const noexcept {
    return std::hash<std::string_view>{}({reinterpret_cast<const char*>(uuid.bytes.data()), uuid.bytes.size()}
    );
}
