#include "platform/base/utf8.h"
#include "platform/files/property_list.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace orvane::platform {

namespace {

constexpr std::string_view magic = "bplist00";
constexpr std::size_t trailerSize = 32;
constexpr std::size_t widestNumber = 8;

constexpr const char* damaged = "The property list is damaged.";
constexpr const char* tooDeep = "The property list is nested too deeply or refers to itself.";
constexpr const char* tooLarge = "The property list is larger than any plugin's state.";
constexpr const char* foreignValue = "The property list holds a value that no plugin's state has.";
constexpr const char* badText = "The property list holds a text that cannot be read.";

/// The upper half of an object's first byte; the lower half is its size or a sub-kind.
enum Kind : unsigned {
    simple = 0x0,
    integer = 0x1,
    real = 0x2,
    bytes = 0x4,
    asciiText = 0x5,
    utf16Text = 0x6,
    array = 0xA,
    dictionary = 0xD
};

constexpr unsigned falseValue = 0x8;
constexpr unsigned trueValue = 0x9;
constexpr unsigned sizeFollows = 0xF;

/// Unfolds every reference. The first fault ends the reading.
class Reader final {
  public:
    explicit Reader(std::span<const std::uint8_t> untrustedData) : data(untrustedData) {}

    Result<PropertyList::Dictionary> read() {
        if (data.size() > maximumPropertyListSize) return Error{tooLarge};
        const auto top = readTrailer();
        if (!top) return Error{damaged};
        auto list = readObject(*top, 0);
        if (!list) return Error{fault};
        auto* const found = std::get_if<PropertyList::Dictionary>(&list->value);
        if (found == nullptr) return Error{"The property list is not a dictionary."};
        return std::move(*found);
    }

  private:
    /// An object's first bytes.
    struct Head {
        unsigned kind;
        unsigned detail;
        /// Elements, bytes or units; read for the kinds that have any.
        std::uint64_t count = 0;
        /// Where the content begins.
        std::size_t content;
    };

    std::optional<PropertyList> fail(const char* reason) {
        fault = reason;
        return std::nullopt;
    }

    [[nodiscard]] std::uint64_t number(std::size_t offset, std::size_t width) const {
        std::uint64_t value = 0;
        for (const std::uint8_t byte : data.subspan(offset, width))
            value = value << 8U | byte;
        return value;
    }

    /// The number of the top object.
    std::optional<std::uint64_t> readTrailer() {
        if (data.size() < magic.size() + trailerSize) return std::nullopt;
        if (!std::ranges::equal(data.first(magic.size()), magic)) return std::nullopt;
        const std::size_t trailer = data.size() - trailerSize;
        offsetWidth = data[trailer + 6];
        referenceWidth = data[trailer + 7];
        objectCount = number(trailer + 8, widestNumber);
        const std::uint64_t top = number(trailer + 16, widestNumber);
        const std::uint64_t table = number(trailer + 24, widestNumber);
        const auto isWidth = [](std::size_t width) { return width >= 1 && width <= widestNumber; };
        if (!isWidth(offsetWidth) || !isWidth(referenceWidth)) return std::nullopt;
        if (table < magic.size() || table > trailer || top >= objectCount) return std::nullopt;
        if (objectCount > (trailer - table) / offsetWidth) return std::nullopt;
        tableStart = static_cast<std::size_t>(table);
        return top;
    }

    [[nodiscard]] std::uint64_t offsetOf(std::uint64_t object) const {
        return number(tableStart + static_cast<std::size_t>(object) * offsetWidth, offsetWidth);
    }

    /// Whether `count` things of `width` bytes lie between `offset` and the offset table.
    [[nodiscard]] bool fits(std::size_t offset, std::uint64_t count, std::size_t width) const {
        return offset <= tableStart && count <= (tableStart - offset) / width;
    }

    std::optional<Head> readHead(std::uint64_t object) {
        if (object >= objectCount) return std::nullopt;
        const std::uint64_t offset = offsetOf(object);
        if (offset < magic.size() || offset >= tableStart) return std::nullopt;
        const auto start = static_cast<std::size_t>(offset);
        const unsigned marker = data[start];
        Head head{.kind = marker >> 4U, .detail = marker & 0xFU, .content = start + 1};
        head.count = head.detail;
        if (head.kind < bytes || head.detail != sizeFollows) return head;

        if (!fits(head.content, 1, 1)) return std::nullopt;
        const std::size_t widthExponent = data[head.content] & 0xFU;
        const bool isInteger = data[head.content] >> 4U == integer && widthExponent <= 3;
        const std::size_t width = std::size_t{1} << widthExponent;
        if (!isInteger || !fits(head.content + 1, 1, width)) return std::nullopt;
        head.count = number(head.content + 1, width);
        head.content += 1 + width;
        return head;
    }

    std::optional<PropertyList> readObject(std::uint64_t object, std::size_t depth) {
        if (++valueCount > maximumPropertyListValues) return fail(tooLarge);
        const auto head = readHead(object);
        if (!head) return fail(damaged);
        switch (head->kind) {
        case simple:
            if (head->detail != falseValue && head->detail != trueValue) return fail(foreignValue);
            return PropertyList{head->detail == trueValue};
        case integer:
            return head->detail <= 3 ? readInteger(*head) : fail(foreignValue);
        case real:
            return head->detail == 2 || head->detail == 3 ? readReal(*head) : fail(damaged);
        case bytes:
            return readBytes(*head);
        case asciiText:
            return readASCII(*head);
        case utf16Text:
            return readUTF16(*head);
        case array:
        case dictionary:
            if (depth >= maximumPropertyListDepth) return fail(tooDeep);
            return head->kind == array ? readArray(*head, depth) : readDictionary(*head, depth);
        default:
            return fail(foreignValue);
        }
    }

    std::optional<PropertyList> readInteger(const Head& head) {
        const std::size_t width = std::size_t{1} << head.detail;
        if (!fits(head.content, 1, width)) return fail(damaged);
        return PropertyList{static_cast<std::int64_t>(number(head.content, width))};
    }

    std::optional<PropertyList> readReal(const Head& head) {
        const std::size_t width = std::size_t{1} << head.detail;
        if (!fits(head.content, 1, width)) return fail(damaged);
        const std::uint64_t bits = number(head.content, width);
        if (width == sizeof(double)) return PropertyList{std::bit_cast<double>(bits)};
        return PropertyList{double{std::bit_cast<float>(static_cast<std::uint32_t>(bits))}};
    }

    /// The content of `count` units of `width` bytes.
    std::optional<std::span<const std::uint8_t>> readContent(const Head& head, std::size_t width) {
        fault = damaged;
        if (!fits(head.content, head.count, width)) return std::nullopt;
        const std::size_t size = static_cast<std::size_t>(head.count) * width;
        contentSize += size;
        fault = tooLarge;
        if (contentSize > maximumPropertyListSize) return std::nullopt;
        return data.subspan(head.content, size);
    }

    std::optional<PropertyList> readBytes(const Head& head) {
        const auto content = readContent(head, 1);
        if (!content) return std::nullopt;
        return PropertyList{PropertyList::Data(content->begin(), content->end())};
    }

    // Plugins in C take a zero for the end of a text.

    std::optional<PropertyList> readASCII(const Head& head) {
        const auto text = readContent(head, 1);
        if (!text) return std::nullopt;
        const auto isASCII = [](std::uint8_t byte) { return byte >= 0x01 && byte <= 0x7F; };
        if (!std::ranges::all_of(*text, isASCII)) return fail(badText);
        return PropertyList{std::string(text->begin(), text->end())};
    }

    std::optional<PropertyList> readUTF16(const Head& head) {
        if (!readContent(head, 2)) return std::nullopt;
        std::string text;
        char32_t firstHalf = 0;
        for (std::size_t index = 0; index < head.count; ++index) {
            const auto unit = static_cast<char32_t>(number(head.content + 2 * index, 2));
            const bool isSecondHalf = unit >= 0xDC00 && unit <= 0xDFFF;
            if (unit == 0 || isSecondHalf != (firstHalf != 0)) return fail(badText);
            const bool isFirstHalf = unit >= 0xD800 && unit <= 0xDBFF;
            if (isSecondHalf)
                appendUTF8(text, 0x10000 + ((firstHalf & 0x3FFU) << 10U) + (unit & 0x3FFU));
            else if (!isFirstHalf)
                appendUTF8(text, unit);
            firstHalf = isFirstHalf ? unit : 0;
        }
        if (firstHalf != 0) return fail(badText);
        return PropertyList{std::move(text)};
    }

    std::optional<PropertyList> readElement(const Head& head, std::size_t index, std::size_t depth) {
        return readObject(number(head.content + index * referenceWidth, referenceWidth), depth + 1);
    }

    std::optional<PropertyList> readArray(const Head& head, std::size_t depth) {
        if (!fits(head.content, head.count, referenceWidth)) return fail(damaged);
        PropertyList::Array elements;
        for (std::size_t index = 0; index < head.count; ++index) {
            auto element = readElement(head, index, depth);
            if (!element) return std::nullopt;
            elements.push_back(*std::move(element));
        }
        return PropertyList{std::move(elements)};
    }

    std::optional<PropertyList> readDictionary(const Head& head, std::size_t depth) {
        if (!fits(head.content, head.count, 2 * referenceWidth)) return fail(damaged);
        std::optional<PropertyList> list(std::in_place, PropertyList::Dictionary());
        auto& entries = std::get<PropertyList::Dictionary>(list->value);
        for (std::size_t index = 0; index < head.count; ++index) {
            auto key = readElement(head, index, depth);
            if (!key) return std::nullopt;
            auto* const word = std::get_if<std::string>(&key->value);
            if (word == nullptr) return fail(damaged);
            auto value = readElement(head, static_cast<std::size_t>(head.count) + index, depth);
            if (!value) return std::nullopt;
            entries.emplace(std::move(*word), *std::move(value));
        }
        return list;
    }

    std::span<const std::uint8_t> data;
    std::size_t offsetWidth = 0;
    std::size_t referenceWidth = 0;
    std::uint64_t objectCount = 0;
    std::size_t tableStart = 0;
    std::size_t valueCount = 0;
    std::size_t contentSize = 0;
    const char* fault = damaged;
};

} // namespace

Result<PropertyList::Dictionary> propertyListWithData(std::span<const std::uint8_t> data) {
    return Reader(data).read();
}

} // namespace orvane::platform
