#pragma once

#include <string>
#include <utility>
#include <variant>

namespace orvane::platform {

/// Why something failed, as one complete sentence for the person at the screen.
struct Error {
    std::string description;

    bool operator==(const Error&) const = default;
};

/// The value of an operation that can fail, or why it failed. Any thread.
template <class T, class E = Error>
class [[nodiscard]] Result final {
  public:
    Result(T value) : state(std::in_place_index<0>, std::move(value)) {}
    Result(E error) : state(std::in_place_index<1>, std::move(error)) {}

    [[nodiscard]] bool hasValue() const { return state.index() == 0; }
    explicit operator bool() const { return hasValue(); }

    /// Only where `hasValue()`; anything else throws std::bad_variant_access.
    [[nodiscard]] T& value() & { return std::get<0>(state); }
    [[nodiscard]] const T& value() const& { return std::get<0>(state); }
    [[nodiscard]] T&& value() && { return std::get<0>(std::move(state)); }

    /// Only where not `hasValue()`; anything else throws std::bad_variant_access.
    [[nodiscard]] const E& error() const { return std::get<1>(state); }

  private:
    std::variant<T, E> state;
};

/// The value of an operation that gives nothing but success.
struct Done {
    bool operator==(const Done&) const = default;
};

} // namespace orvane::platform
