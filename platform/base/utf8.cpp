#include "platform/base/utf8.h"

#include <algorithm>
#include <cwchar>
#include <locale>

namespace orvane::platform {

std::optional<std::u32string> decodeUTF8(std::string_view text) {
    using Codec = std::codecvt<char32_t, char8_t, std::mbstate_t>;
    const auto& codec = std::use_facet<Codec>(std::locale::classic());
    const std::u8string bytes(text.begin(), text.end());
    // No character takes less than a byte.
    std::u32string characters(bytes.size(), U'\0');
    const char8_t* read = bytes.data();
    char32_t* written = characters.data();
    std::mbstate_t state{};
    const auto outcome = codec.in(
        state, bytes.data(), bytes.data() + bytes.size(), read, characters.data(),
        characters.data() + characters.size(), written
    );
    if (outcome != Codec::ok || read != bytes.data() + bytes.size()) return std::nullopt;
    characters.resize(static_cast<std::size_t>(written - characters.data()));
    // The codec accepts halves of surrogate pairs.
    const auto isSurrogate = [](char32_t character) { return character >= 0xD800 && character <= 0xDFFF; };
    if (std::ranges::any_of(characters, isSurrogate)) return std::nullopt;
    return characters;
}

void appendUTF8(std::string& text, char32_t character) {
    constexpr char32_t firstOfTwoBytes = 0x80;
    constexpr char32_t firstOfThreeBytes = 0x800;
    constexpr char32_t firstOfFourBytes = 0x10000;
    if (character < firstOfTwoBytes) {
        text += static_cast<char>(character);
        return;
    }
    const unsigned following = character < firstOfThreeBytes ? 1 : character < firstOfFourBytes ? 2 : 3;
    const unsigned lead = 0xFF00U >> (following + 1) & 0xFFU;
    text += static_cast<char>(lead | character >> 6U * following);
    for (unsigned left = following; left-- > 0;)
        text += static_cast<char>(0x80U | (character >> 6U * left & 0x3FU));
}

} // namespace orvane::platform
