#pragma once

#include "platform/base/result.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

namespace orvane::session {

/// A value of a document tree that is being read into a session, and its path. Keeps the first fault of the
/// tree; later faults are consequences of it. After a fault, nodes read as empty values, so that readers need
/// no checks and the caller checks once at the end. A node must not outlive its parent.
class DocumentNode final {
  public:
    /// The root of a tree; `noted` receives the first fault.
    DocumentNode(const nlohmann::json& tree, std::optional<platform::Error>& noted)
        : value(&tree), fault(noted) {}
    DocumentNode(const DocumentNode&) = delete;
    DocumentNode& operator=(const DocumentNode&) = delete;

    /// The text of a string; valid as long as the tree.
    [[nodiscard]] std::string_view text() const;
    [[nodiscard]] bool boolean() const;
    /// A number, with or without a fraction.
    [[nodiscard]] double number() const;
    /// A number without fraction and exponent, within the bounds.
    [[nodiscard]] std::int64_t integer(
        std::int64_t lowest = std::numeric_limits<std::int64_t>::min(),
        std::int64_t highest = std::numeric_limits<std::int64_t>::max()
    ) const;

    /// A member that an object must have.
    [[nodiscard]] DocumentNode required(std::string_view key) const;

    /// Applies `read` to a member of an object; absent if the member is missing or null.
    template <class Read>
    [[nodiscard]] auto optional(std::string_view key, Read read) const
        -> std::optional<std::invoke_result_t<Read, const DocumentNode&>> {
        const DocumentNode node(member(key), this, key);
        if (node.value == nullptr || node.value->is_null()) return std::nullopt;
        return std::invoke(read, node);
    }

    /// Applies `read` to every element of an array.
    template <class Read>
    [[nodiscard]] auto list(Read read) const -> std::vector<std::invoke_result_t<Read, const DocumentNode&>> {
        std::vector<std::invoke_result_t<Read, const DocumentNode&>> items;
        const std::size_t count = elementCount();
        for (std::size_t index = 0; index < count && !fault; ++index)
            items.push_back(std::invoke(read, DocumentNode(&(*value)[index], this, index)));
        return items;
    }

    /// Notes a fault unless this is an object.
    void expectObject() const;

    /// The key of an object that must have exactly one.
    [[nodiscard]] std::string_view onlyKey() const;

    /// Notes a fault of this value: its path, then `problem`, then a full stop.
    void fail(std::string_view problem) const;

  private:
    using Step = std::variant<std::string_view, std::size_t>;

    DocumentNode(const nlohmann::json* found, const DocumentNode* origin, Step wayHere)
        : value(found), parent(origin), step(wayHere), fault(origin->fault) {}

    [[nodiscard]] const nlohmann::json* member(std::string_view key) const;
    [[nodiscard]] std::size_t elementCount() const;
    [[nodiscard]] std::string path() const;

    /// Null if there is no value; the fault was noted.
    const nlohmann::json* value;
    const DocumentNode* parent = nullptr;
    Step step;
    std::optional<platform::Error>& fault;
};

} // namespace orvane::session
