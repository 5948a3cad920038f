#pragma once

#include <fmt/format.h>

#include <optional>
#include <string>

namespace orvane::soak {

/// The first thing that did not hold; what comes after it may only follow from it. One thread.
class Fault final {
  public:
    /// Keeps the sentence, formatted with the values, where `holds` is false and nothing has failed before.
    template <class... Values>
    void require(bool holds, fmt::format_string<const Values&...> sentence, const Values&... values) {
        if (!holds && !sentenceOfFirst) sentenceOfFirst = fmt::format(sentence, values...) + ".";
    }

    [[nodiscard]] const std::optional<std::string>& first() const { return sentenceOfFirst; }

  private:
    std::optional<std::string> sentenceOfFirst;
};

} // namespace orvane::soak
