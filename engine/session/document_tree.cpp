#include "engine/session/document_tree.h"

#include "engine/session/displayed_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvane::session {

namespace {

using nlohmann::json;
using platform::Error;

/// `offset` is that of the first byte that is not valid JSON.
Error syntaxError(std::string_view text, std::size_t offset) {
    const std::string_view before = text.substr(0, offset);
    const auto line = std::ranges::count(before, '\n') + 1;
    const std::string_view lineStart = before.substr(before.find_last_of('\n') + 1);
    const auto column = std::ranges::count_if(lineStart, [](char byte) { return (byte & 0xC0) != 0x80; }) + 1;
    const std::string where = "line " + std::to_string(line) + ", column " + std::to_string(column) + ".";
    if (offset >= text.size()) return {"The JSON text ends too early, at " + where};
    return {"The text is not valid JSON at " + where};
}

/// An object or array that is kept, and the parser's position in it.
struct Level {
    json* node = nullptr;
    /// The key whose value is being read, in an object.
    std::string key;
    /// The index of the element that is being read, in an array.
    std::size_t elementIndex = 0;
};

/// Receives the parser's events, checks them and keeps the known parts. The parser stops at the first event
/// answered with false; `failure` holds the reason.
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
    bool end_object() { return leave(); }
    bool parse_error(std::size_t position, const std::string& token, const json::exception& exception);

    /// Whether the parser is inside a value that is not kept.
    [[nodiscard]] bool isSkipping() const;
    /// Counts a byte before the parser's position that was left out.
    void noteLeftOut() { ++leftOutCount; }

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
    /// The depth of skipped objects and arrays around the parser's position.
    std::size_t skippedLevels = 0;
    std::size_t keptCount = 0;
    std::size_t leftOutCount = 0;
};

bool TreeBuilder::key(std::string& word) {
    if (skippedLevels > 0) return true;
    Level& level = levels.back();
    level.key = std::move(word);
    if (isKnown(level.key) && level.node->contains(level.key))
        return fail(path() + " appears more than once.");
    return true;
}

bool TreeBuilder::parse_error(std::size_t position, const std::string&, const json::exception& exception) {
    constexpr int numberOverflow = 406;
    if (exception.id == numberOverflow) return fail(path() + " is a number beyond the range of a double.");
    // The position counts the bytes read, including the offending one.
    failure = syntaxError(text, position > 0 ? position - 1 + leftOutCount : 0);
    return false;
}

bool TreeBuilder::addScalar(json value) {
    keep(std::move(value));
    finishValue();
    return !failure;
}

bool TreeBuilder::enter(json container) {
    if (!isSkipping() && levels.size() == maximumNesting)
        return fail(
            displayed(path()) + " is nested more than " + std::to_string(maximumNesting) + " levels deep."
        );
    if (json* const node = keep(std::move(container)))
        levels.push_back({node, {}, 0});
    else
        ++skippedLevels;
    return !failure;
}

bool TreeBuilder::leave() {
    if (skippedLevels > 0)
        --skippedLevels;
    else
        levels.pop_back();
    finishValue();
    return true;
}

bool TreeBuilder::isSkipping() const {
    if (skippedLevels > 0) return true;
    return !levels.empty() && levels.back().node->is_object() && !isKnown(levels.back().key);
}

json* TreeBuilder::keep(json value) {
    if (levels.empty()) return &(tree.root = std::move(value));
    if (skippedLevels > 0) return nullptr;
    const Level& level = levels.back();
    failure = limits.excess(text.size(), ++keptCount);
    if (failure) return nullptr;
    if (level.node->is_array()) {
        level.node->push_back(std::move(value));
        return &level.node->back();
    }
    json& member = (*level.node)[level.key];
    if (isSkipping()) return nullptr;
    member = std::move(value);
    return &member;
}

void TreeBuilder::finishValue() {
    if (!levels.empty() && skippedLevels == 0) ++levels.back().elementIndex;
}

bool TreeBuilder::fail(std::string description) {
    failure = Error{std::move(description)};
    return false;
}

std::string TreeBuilder::path() const {
    std::string way;
    for (const Level& level : levels) {
        if (level.node->is_array()) {
            way += '[' + std::to_string(level.elementIndex) + ']';
        } else {
            if (!way.empty()) way += '.';
            way += displayed(level.key);
        }
    }
    return way.empty() ? "The document" : way;
}

/// Passes the text to the parser. In skipped values it shortens runs of digits to two, so that no number
/// exceeds the range of a double.
class TextIterator final {
  public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = char;

    TextIterator(const char* position, const char* textEnd, TreeBuilder& treeBuilder)
        : at(position), end(textEnd), builder(&treeBuilder) {}

    char operator*() const { return *at; }
    TextIterator& operator++();
    bool operator==(const TextIterator& other) const { return at == other.at; }

  private:
    void pass(char byte);

    const char* at;
    const char* end;
    TreeBuilder* builder;
    bool isInString = false;
    bool isEscaped = false;
    std::size_t digitsInRow = 0;
};

bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

TextIterator& TextIterator::operator++() {
    constexpr std::size_t mostDigits = 2;
    pass(*at++);
    while (digitsInRow >= mostDigits && at != end && isDigit(*at) && builder->isSkipping()) {
        builder->noteLeftOut();
        ++at;
    }
    return *this;
}

void TextIterator::pass(char byte) {
    if (byte == '"' && !isEscaped) isInString = !isInString;
    isEscaped = isInString && byte == '\\' && !isEscaped;
    digitsInRow = !isInString && isDigit(byte) ? digitsInRow + 1 : 0;
}

/// Empties all containers below a node, the innermost first.
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
    // The parser would stop at a zero byte and ignore the rest.
    if (const auto zero = text.find('\0'); zero != std::string_view::npos) return syntaxError(text, zero);

    TreeBuilder builder(text, isKnown, limits);
    const char* const end = text.data() + text.size();
    json::sax_parse(TextIterator(text.data(), end, builder), TextIterator(end, end, builder), &builder);
    if (builder.failure) return *builder.failure;
    return std::move(builder.tree);
}

} // namespace orvane::session
