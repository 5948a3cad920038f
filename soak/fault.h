#pragma once

#include <fmt/format.h>

#include <optional>
#include <string>

namespace orvane::soak {

/// Keeps the first violated condition; later ones may only be its consequences. One thread.
class Fault final {
  public:
    /// Keeps the formatted sentence if `holds` is false and it is the first failure.
    template <class... Values>
    void require(bool holds, fmt::format_string<const Values&...> sentence, const Values&... values) {
        if (!holds && !sentenceOfFirst) sentenceOfFirst = fmt::format(sentence, values...) + ".";
    }

    [[nodiscard]] const std::optional<std::string>& first() const { return sentenceOfFirst; }

  private:
    std::optional<std::string> sentenceOfFirst;
};

} // namespace orvane::soak
