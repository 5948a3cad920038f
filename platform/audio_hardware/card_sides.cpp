#include "platform/audio_hardware/card_sides.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <iterator>

namespace orvane::platform {

namespace {

constexpr std::string_view directionWords[] = {"in",  "input",  "inputs",  "capture",
                                               "out", "output", "outputs", "playback"};
constexpr std::string_view wordSeparators = " _-.";

} // namespace

std::string nameOfBothSides(std::string_view name) {
    const std::size_t wordStart = name.find_last_of(wordSeparators) + 1;
    std::string word(name.substr(wordStart));
    std::ranges::transform(word, word.begin(), [](unsigned char c) { return std::tolower(c); });
    if (wordStart == 0 || std::ranges::find(directionWords, word) == std::end(directionWords))
        return std::string(name);
    const std::size_t end = name.find_last_not_of(wordSeparators, wordStart - 1);
    return std::string(end == std::string_view::npos ? name : name.substr(0, end + 1));
}

} // namespace orvane::platform
