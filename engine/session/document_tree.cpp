#include "engine/session/document_tree.h"

#include "engine/session/displayed_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvane::session {

namespace {

using nlohmann::json;
using platform::Error;

/// `offset` is that of the byte at which the text stopped making sense.
Error syntaxError(std::string_view text, std::size_t offset) {
    const std::string_view before = text.substr(0, offset);
    const auto line = std::ranges::count(before, '\n') + 1;
    const std::string_view lineStart = before.substr(before.find_last_of('\n') + 1);
    const auto column = std::ranges::count_if(lineStart, [](char byte) { return (byte & 0xC0) != 0x80; }) + 1;
    const std::string where = "line " + std::to_string(line) + ", column " + std::to_string(column) + ".";
    if (offset >= text.size()) return {"The JSON text ends too early, at " + where};
    return {"The text is not valid JSON at " + where};
}

/// An object or array that the parser is in.
struct Level {
    /// Null in parts that are not kept.
    json* node = nullptr;
    bool isObject = false;
    /// An object's keys up to the one whose value is being read.
    std::vector<std::string> keys;
    /// The index of the element of an array that is being read.
    std::size_t elementIndex = 0;
};

/// Takes the parser's events, checks them and keeps what a session can be made of. The parser stops at the
/// first event that is answered with false; `failure` says why.
class TreeBuilder final {
  public:
    TreeBuilder(std::string_view parsedText, IsKnownKey knownKeys, const DocumentLimits& documentLimits)
        : text(parsedText), isKnown(knownKeys), limits(documentLimits) {}

    bool null() { return addScalar(nullptr); }
    bool boolean(bool value) { return addScalar(value); }
    bool number_integer(std::int64_t value) { return addScalar(value); }
    bool number_unsigned(std::uint64_t value) { return addScalar(value); }
    bool number_float(double value, const std::string&) { return addScalar(value); }
    bool string(std::string& value) { return addScalar(std::move(value)); }
    bool binary(json::binary_t&) { return false; }
    bool start_object(std::size_t) { return enter(json::object()); }
    bool start_array(std::size_t) { return enter(json::array()); }
    bool end_array() { return leave(); }
    bool key(std::string& word);
    bool end_object();
    bool parse_error(std::size_t position, const std::string& token, const json::exception& exception);

    DocumentTree tree;
    std::optional<Error> failure;

  private:
    bool addScalar(json value);
    bool enter(json container);
    bool leave();
    json* keep(json value);
    void finishValue();
    bool fail(std::string description);
    [[nodiscard]] std::string path() const;

    std::string_view text;
    IsKnownKey isKnown;
    const DocumentLimits& limits;
    std::vector<Level> levels;
    std::size_t keptCount = 0;
};

bool TreeBuilder::key(std::string& word) {
    Level& level = levels.back();
    level.keys.push_back(std::move(word));
    // Where the value is kept, that counts.
    if (level.node == nullptr) failure = limits.excess(text.size(), ++keptCount);
    return !failure;
}

bool TreeBuilder::end_object() {
    // Sorting at the end finds duplicates in a fraction of the memory that a set of millions of keys takes.
    auto& keys = levels.back().keys;
    std::ranges::sort(keys);
    if (const auto duplicate = std::ranges::adjacent_find(keys); duplicate != keys.end()) {
        std::swap(*duplicate, keys.back());
        return fail(path() + " appears more than once.");
    }
    return leave();
}

bool TreeBuilder::parse_error(std::size_t position, const std::string&, const json::exception& exception) {
    constexpr int numberOverflow = 406;
    if (exception.id == numberOverflow) return fail(path() + " is a number beyond the range of a double.");
    // The position counts the bytes read, the offending one included.
    failure = syntaxError(text, position > 0 ? position - 1 : 0);
    return false;
}

bool TreeBuilder::addScalar(json value) {
    keep(std::move(value));
    finishValue();
    return !failure;
}

bool TreeBuilder::enter(json container) {
    if (levels.size() == maximumNesting)
        return fail(
            displayed(path()) + " is nested more than " + std::to_string(maximumNesting) + " levels deep."
        );
    const bool isObject = container.is_object();
    json* const node = keep(std::move(container));
    levels.push_back({node, isObject, {}, 0});
    return !failure;
}

bool TreeBuilder::leave() {
    levels.pop_back();
    finishValue();
    return true;
}

json* TreeBuilder::keep(json value) {
    if (levels.empty()) return &(tree.root = std::move(value));
    const Level& level = levels.back();
    if (level.node == nullptr) return nullptr;
    failure = limits.excess(text.size(), ++keptCount);
    if (failure) return nullptr;
    if (!level.isObject) {
        level.node->push_back(std::move(value));
        return &level.node->back();
    }
    json& member = (*level.node)[level.keys.back()];
    if (!isKnown(level.keys.back())) return nullptr;
    member = std::move(value);
    return &member;
}

void TreeBuilder::finishValue() {
    if (!levels.empty()) ++levels.back().elementIndex;
}

bool TreeBuilder::fail(std::string description) {
    failure = Error{std::move(description)};
    return false;
}

std::string TreeBuilder::path() const {
    std::string way;
    for (const Level& level : levels) {
        if (!level.isObject) {
            way += '[' + std::to_string(level.elementIndex) + ']';
        } else {
            if (!way.empty()) way += '.';
            way += displayed(level.keys.back());
        }
    }
    return way.empty() ? "The document" : way;
}

/// Empties every container below, from the innermost on.
void dissolve(json& node) noexcept {
    if (!node.is_structured()) return;
    for (json& member : node)
        dissolve(member);
    node.clear();
}

} // namespace

DocumentTree::~DocumentTree() {
    dissolve(root);
}

platform::Result<DocumentTree>
parseDocumentTree(std::string_view text, IsKnownKey isKnown, const DocumentLimits& limits) {
    if (const auto excess = limits.excess(text.size(), 0)) return *excess;
    // The parser would take a zero byte for the end of the text and leave the rest unread.
    if (const auto zero = text.find('\0'); zero != std::string_view::npos) return syntaxError(text, zero);

    TreeBuilder builder(text, isKnown, limits);
    json::sax_parse(text.data(), text.data() + text.size(), &builder);
    if (builder.failure) return *builder.failure;
    return std::move(builder.tree);
}

} // namespace orvane::session
