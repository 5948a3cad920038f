#include "platform/base/natural_order.h"

#include <algorithm>
#include <cstddef>

namespace orvane::platform {

namespace {

constexpr std::string_view digits = "0123456789";

/// Removes the number at the start of `text` and returns it without leading zeros; empty if it is 0 or there
/// is none.
std::string_view cutNumber(std::string_view& text) {
    const std::size_t length = std::min(text.find_first_not_of(digits), text.size());
    const std::string_view number = text.substr(0, length);
    text.remove_prefix(length);
    return number.substr(std::min(number.find_first_not_of('0'), length));
}

bool beginsWithDigit(std::string_view text) {
    return digits.find(text.front()) != std::string_view::npos;
}

} // namespace

bool comesNaturallyBefore(std::string_view left, std::string_view right) {
    while (!left.empty() && !right.empty()) {
        if (beginsWithDigit(left) && beginsWithDigit(right)) {
            const std::string_view leftNumber = cutNumber(left);
            const std::string_view rightNumber = cutNumber(right);
            if (leftNumber.size() != rightNumber.size()) return leftNumber.size() < rightNumber.size();
            if (leftNumber != rightNumber) return leftNumber < rightNumber;
        } else {
            if (left.front() != right.front()) return left.front() < right.front();
            left.remove_prefix(1);
            right.remove_prefix(1);
        }
    }
    return left.size() < right.size();
}

} // namespace orvane::platform
