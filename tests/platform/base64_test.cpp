#include "platform/base64.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using orvane::platform::decodeBase64;
using orvane::platform::encodeBase64;

TEST(Base64, GivesTheTextsOfTheStandard) {
    const std::pair<std::string_view, const char*> textByContent[] = {
        {"", ""},        {"f", "Zg=="},        {"fo", "Zm8="},
        {"foo", "Zm9v"}, {"foob", "Zm9vYg=="}, {"\xFB\xFF\xBF", "+/+/"}};
    for (const auto& [content, text] : textByContent)
        EXPECT_EQ(encodeBase64(std::vector<std::uint8_t>(content.begin(), content.end())), text);
}

TEST(Base64, BringsAnyBytesBack) {
    std::mt19937 draw(1);
    for (std::size_t length = 0; length < 300; ++length) {
        std::vector<std::uint8_t> bytes(length);
        for (auto& byte : bytes)
            byte = static_cast<std::uint8_t>(draw());
        EXPECT_EQ(decodeBase64(encodeBase64(bytes)), bytes) << length << " bytes";
    }
}

TEST(Base64, RefusesWhatIsNotStrictlyItsForm) {
    for (const char* text :
         {"Z", "Zg", "Zg=", "Zm8", "Zm9vY", "=", "==", "====", "Z===", "=Zg=", "Zg==Zg==", "Zm9v====",
          "Zm9v\n", "Zm9v\nYmFy", "Zm 9", "Zm-_", "Zm9\xC3", "Zg==\n", "Zm9v    "})
        EXPECT_FALSE(decodeBase64(text)) << text;
}

TEST(Base64, ReadsOnlyTheOneTextThatItWouldWrite) {
    for (int pair = 0; pair < 65536; ++pair) {
        for (const char* ending : {"==", "A=", "B=", "AA"}) {
            const std::string text = {
                static_cast<char>(pair / 256), static_cast<char>(pair), ending[0], ending[1]};
            const auto bytes = decodeBase64(text);
            EXPECT_TRUE(!bytes || encodeBase64(*bytes) == text) << text;
        }
    }
}

} // namespace
