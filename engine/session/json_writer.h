#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::session {

/// Writes JSON text value by value, so that a large document is in memory only once. The caller gives an
/// object's keys in their final order, each before its value, and ends every object and array it begins. Not
/// for audio threads.
class JSONWriter final {
  public:
    /// Writes each value on its own line, indented by `indent` spaces per level; everything on one line if it
    /// is 0.
    explicit JSONWriter(std::size_t indent) : indentWidth(indent) {}

    void beginObject() { begin('{', false); }
    void endObject() { end('}'); }
    void beginArray() { begin('[', true); }
    void endArray() { end(']'); }

    /// `word` must be a literal.
    void key(std::string_view word);

    /// Bytes that are not UTF-8 become the replacement character.
    void value(std::string_view text);
    /// The text must not contain quotes, backslashes or control characters.
    void plainText(std::string_view text);
    void value(bool truth);
    void value(std::int64_t number);
    /// A number that is not finite cannot be written; see `nonFinite`.
    void value(double number);

    template <class Value>
    void member(std::string_view word, const Value& given) {
        key(word);
        value(given);
    }

    /// The path of the first number that was not finite, such as "channels[3].trim"; absent if all were
    /// finite.
    [[nodiscard]] const std::optional<std::string>& nonFinite() const { return nonFinitePath; }

    /// The number of values written, except the outermost.
    [[nodiscard]] std::size_t valueCount() const { return writtenCount; }

    /// The text written so far.
    [[nodiscard]] std::string& text() { return written; }

  private:
    struct Level {
        bool isArray;
        /// The number of values in it so far.
        std::size_t count = 0;
        /// The last key.
        std::string_view key = {};
    };

    void begin(char bracket, bool isArray);
    void end(char bracket);
    /// Writes what precedes a value or, in an object, its key.
    void separate();
    void startValue();
    void breakLine();
    [[nodiscard]] std::string path() const;

    std::size_t indentWidth;
    std::string written;
    std::size_t writtenCount = 0;
    std::vector<Level> levels;
    std::optional<std::string> nonFinitePath;
};

} // namespace orvane::session
