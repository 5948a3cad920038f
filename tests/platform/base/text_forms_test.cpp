#include "platform/base/base64.h"
#include "platform/base/plain_text.h"
#include "platform/base/uuid.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using orvane::platform::decodeBase64;
using orvane::platform::encodeBase64;
using orvane::platform::plainText;
using orvane::platform::Uuid;

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

TEST(PlainText, KeepsReadableTextAndReplacesTerminalCommands) {
    const std::pair<std::string, std::string> plainByText[] = {
        {"Größe 話🎤", "Größe 話🎤"},
        {"a\x1b[2Jb\x07\r\n\x7f", "a?[2Jb????"},
        {"\xC2\x9B", "?"},
        {"\xC2\xA0", "\xC2\xA0"},
        {"\x9B", "?"},
        {"\xC3", "?"},
        {"\xE8\xA9", "??"},
        {"\xF0\x9Fx", "??x"},
        {std::string(1, '\0'), "?"},
        {"", ""}};
    for (const auto& [text, plain] : plainByText)
        EXPECT_EQ(plainText(text), plain);
}

TEST(Uuid, IsReadInEitherCaseAndWrittenInUpperCase) {
    const Uuid expected{{1, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF, 0xFE, 0xDC, 0xBA, 0x98, 0, 1, 0, 0xFF}};
    for (const char* text : {"01234567-89AB-CDEF-FEDC-BA98000100FF", "01234567-89aB-cdef-feDC-ba98000100Ff"})
        EXPECT_EQ(Uuid::parse(text), expected) << text;
    EXPECT_EQ(expected.toString(), "01234567-89AB-CDEF-FEDC-BA98000100FF");
}

TEST(Uuid, IsMarkedAsRandom) {
    for (int i = 0; i < 100; ++i) {
        const std::string text = Uuid::random().toString();
        EXPECT_EQ(text[14], '4') << text;
        EXPECT_NE(std::string("89AB").find(text[19]), std::string::npos) << text;
    }
}

TEST(Uuid, RefusesAnyOtherForm) {
    for (const char* text :
         {"", "0123456789ABCDEFFEDCBA98000100FF", "{01234567-89AB-CDEF-FEDC-BA98000100FF}",
          "01234567-89AB-CDEF-FEDC-BA98000100F", "01234567-89AB-CDEF-FEDC-BA98000100FFF",
          "01234567-89AB-CDEF-FEDC-BA98000100FG", "0123456-789AB-CDEF-FEDC-BA98000100FF"})
        EXPECT_FALSE(Uuid::parse(text)) << text;
}

} // namespace
