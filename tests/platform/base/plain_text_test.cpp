#include "platform/base/plain_text.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

using orvane::platform::plainText;

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

} // namespace
