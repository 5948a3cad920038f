#include "platform/base/base64.h"

#include <gtest/gtest.h>

#include <string_view>
#include <utility>
#include <vector>

namespace {

using orvane::platform::decodeBase64;
using orvane::platform::encodeBase64;

TEST(Base64, EncodesAndDecodesTheStandardsExamples) {
    const std::pair<std::string_view, const char*> textByContent[] = {
        {"", ""},        {"f", "Zg=="},        {"fo", "Zm8="},
        {"foo", "Zm9v"}, {"foob", "Zm9vYg=="}, {"\xFB\xFF\xBF", "+/+/"}};
    for (const auto& [content, text] : textByContent) {
        const std::vector<std::uint8_t> bytes(content.begin(), content.end());
        EXPECT_EQ(encodeBase64(bytes), text);
        EXPECT_EQ(decodeBase64(text), bytes);
    }
}

TEST(Base64, RefusesAnyOtherForm) {
    for (const char* text :
         {"Z", "Zg", "Zg=", "Zm9vY", "====", "Z===", "=Zg=", "Zg==Zg==", "Zm9v\nYmFy", "Zm-_", "Zm9\xC3",
          "Zh==", "Zm9="})
        EXPECT_FALSE(decodeBase64(text)) << text;
}

} // namespace
