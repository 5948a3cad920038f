#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::session {

/// Writes JSON text value by value, so that a large document never stands in memory twice. The caller gives
/// the keys of an object in the order in which they are to stand, a key before each value of an object, and
/// ends what it begins. Not for audio threads.
class JSONWriter final {
  public:
    /// Every value on a line of its own, `indent` more spaces in at each level; all on one line where it is
    /// 0.
    explicit JSONWriter(std::size_t indent) : indentWidth(indent) {}

    void beginObject() { begin('{', false); }
    void endObject() { end('}'); }
    void beginArray() { begin('[', true); }
    void endArray() { end(']'); }

    /// `word` is a literal.
    void key(std::string_view word);

    /// A byte that is not UTF-8 becomes the replacement character.
    void value(std::string_view text);
    /// Text that holds neither quotes nor backslashes nor control characters.
    void plainText(std::string_view text);
    void value(bool truth);
    void value(std::int64_t number);
    /// JSON has no form for a number that is not finite; `nonFinite` tells of it.
    void value(double number);

    template <class Value>
    void member(std::string_view word, const Value& given) {
        key(word);
        value(given);
    }

    /// The way to the first number that was not finite, as in "channels[3].trim"; nothing where all were.
    [[nodiscard]] const std::optional<std::string>& nonFinite() const { return nonFinitePath; }

    /// How many values have been written, the outermost aside.
    [[nodiscard]] std::size_t valueCount() const { return writtenCount; }

    /// What has been written.
    [[nodiscard]] std::string& text() { return written; }

  private:
    struct Level {
        bool isArray;
        /// Of the values in it so far.
        std::size_t count = 0;
        /// Of the last one.
        std::string_view key = {};
    };

    void begin(char bracket, bool isArray);
    void end(char bracket);
    /// What stands before a value or, in an object, before its key.
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
