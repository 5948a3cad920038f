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
    // The codec lets halves of a surrogate pair through.
    const auto isSurrogate = [](char32_t character) { return character >= 0xD800 && character <= 0xDFFF; };
    if (std::ranges::any_of(characters, isSurrogate)) return std::nullopt;
    return characters;
}

} // namespace orvane::platform
