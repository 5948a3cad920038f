#pragma once

#include <string>
#include <utility>
#include <variant>

namespace orvane::platform {

/// A failure, as one complete sentence for the user.
struct Error {
    std::string description;

    bool operator==(const Error&) const = default;
};

/// The value of an operation, or the reason of its failure. Any thread.
template <class T, class E = Error>
class [[nodiscard]] Result final {
  public:
    Result(T value) : state(std::in_place_index<0>, std::move(value)) {}
    Result(E error) : state(std::in_place_index<1>, std::move(error)) {}

    [[nodiscard]] bool hasValue() const { return state.index() == 0; }
    explicit operator bool() const { return hasValue(); }

    /// Requires `hasValue()`; throws std::bad_variant_access otherwise.
    [[nodiscard]] T& value() & { return std::get<0>(state); }
    [[nodiscard]] const T& value() const& { return std::get<0>(state); }
    [[nodiscard]] T&& value() && { return std::get<0>(std::move(state)); }

    /// Requires that `hasValue()` is false; throws std::bad_variant_access otherwise.
    [[nodiscard]] const E& error() const { return std::get<1>(state); }

  private:
    std::variant<T, E> state;
};

/// The value of an operation that only succeeds or fails.
struct Done {
    bool operator==(const Done&) const = default;
};

} // namespace orvane::platform
