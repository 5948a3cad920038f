#include "engine/session/document_node.h"

#include <utility>

namespace orvane::session {

using nlohmann::json;

std::string_view DocumentNode::text() const {
    const auto* text = value == nullptr ? nullptr : value->get_ptr<const json::string_t*>();
    if (text != nullptr) return *text;
    fail("must be a string");
    return {};
}

bool DocumentNode::boolean() const {
    if (value != nullptr && value->is_boolean()) return value->get<bool>();
    fail("must be true or false");
    return false;
}

double DocumentNode::number() const {
    if (value != nullptr && value->is_number()) return value->get<double>();
    fail("must be a number");
    return 0.0;
}

std::int64_t DocumentNode::integer(std::int64_t lowest, std::int64_t highest) const {
    if (value != nullptr && value->is_number_integer()) {
        const bool fits =
            !value->is_number_unsigned() || std::in_range<std::int64_t>(value->get<std::uint64_t>());
        const auto number = value->get<std::int64_t>();
        if (fits && number >= lowest && number <= highest) return number;
    }
    fail(
        "must be a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest)
        + ", without fraction or exponent"
    );
    return 0;
}

DocumentNode DocumentNode::required(std::string_view key) const {
    const json* const found = member(key);
    if (found == nullptr) DocumentNode(nullptr, this, key).fail("is missing");
    return {found, this, key};
}

void DocumentNode::expectObject() const {
    if (value == nullptr || !value->is_object()) fail("must be an object");
}

std::string_view DocumentNode::onlyKey() const {
    expectObject();
    if (fault) return {};
    if (value->size() == 1) return value->begin().key();
    fail("is not a routing: Invalid number of keys found, expected one");
    return {};
}

void DocumentNode::fail(std::string_view problem) const {
    if (fault) return;
    const std::string way = path();
    fault = platform::Error{(way.empty() ? "The document" : way) + ' ' + std::string(problem) + '.'};
}

const json* DocumentNode::member(std::string_view key) const {
    expectObject();
    if (fault) return nullptr;
    const auto found = value->find(key);
    return found == value->end() ? nullptr : &*found;
}

std::size_t DocumentNode::elementCount() const {
    if (value != nullptr && value->is_array()) return value->size();
    fail("must be an array");
    return 0;
}

std::string DocumentNode::path() const {
    if (parent == nullptr) return {};
    std::string way = parent->path();
    if (const auto* index = std::get_if<std::size_t>(&step)) return way + '[' + std::to_string(*index) + ']';
    if (!way.empty()) way += '.';
    return way.append(std::get<std::string_view>(step));
}

} // namespace orvane::session
