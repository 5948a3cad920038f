#include "platform/files/binary_property_list_check.h"

#include <algorithm>
#include <optional>
#include <string_view>

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

/// What the upper half of an object's first byte says of it; the lower half is its size or a sub-kind.
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

/// Walks the objects as a reader that unfolds every reference would. The first fault ends the walk.
class Checker final {
  public:
    explicit Checker(std::span<const std::uint8_t> checkedData) : data(checkedData) {}

    Result<Done> check() {
        if (data.size() > maximumPropertyListSize) return Error{tooLarge};
        const auto top = readTrailer();
        if (!top) return Error{damaged};
        if (!checkObject(*top, 0, Role::value)) return Error{fault};
        if (!isDictionary(*top)) return Error{"The property list is not a dictionary."};
        return Done{};
    }

  private:
    enum class Role { value, key };

    /// What an object's first bytes tell.
    struct Head {
        unsigned kind;
        unsigned detail;
        /// Elements, bytes or units; read for the kinds that have any.
        std::uint64_t count = 0;
        /// Where the content begins.
        std::size_t content;
    };

    bool fail(const char* reason) {
        fault = reason;
        return false;
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

    [[nodiscard]] bool isDictionary(std::uint64_t object) const {
        return data[static_cast<std::size_t>(offsetOf(object))] >> 4U == dictionary;
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

    bool checkObject(std::uint64_t object, std::size_t depth, Role role) {
        if (++valueCount > maximumPropertyListValues) return fail(tooLarge);
        const auto head = readHead(object);
        if (!head) return fail(damaged);
        const bool isText = head->kind == asciiText || head->kind == utf16Text;
        if (role == Role::key && !isText) return fail(damaged);
        switch (head->kind) {
        case simple:
            return head->detail == falseValue || head->detail == trueValue || fail(foreignValue);
        case integer:
            return head->detail <= 3 ? checkNumber(*head) : fail(foreignValue);
        case real:
            return head->detail == 2 || head->detail == 3 ? checkNumber(*head) : fail(damaged);
        case bytes:
            return checkContent(*head, 1);
        case asciiText:
            return checkContent(*head, 1) && checkASCII(*head);
        case utf16Text:
            return checkContent(*head, 2) && checkUTF16(*head);
        case array:
        case dictionary:
            return depth < maximumPropertyListDepth ? checkElements(*head, depth) : fail(tooDeep);
        default:
            return fail(foreignValue);
        }
    }

    bool checkNumber(const Head& head) {
        return fits(head.content, 1, std::size_t{1} << head.detail) || fail(damaged);
    }

    bool checkContent(const Head& head, std::size_t width) {
        if (!fits(head.content, head.count, width)) return fail(damaged);
        contentSize += static_cast<std::size_t>(head.count) * width;
        return contentSize <= maximumPropertyListSize || fail(tooLarge);
    }

    // Readers in C take a zero for the end of a text.

    bool checkASCII(const Head& head) {
        const auto text = data.subspan(head.content, static_cast<std::size_t>(head.count));
        const auto isASCII = [](std::uint8_t byte) { return byte >= 0x01 && byte <= 0x7F; };
        return std::ranges::all_of(text, isASCII) || fail(badText);
    }

    bool checkUTF16(const Head& head) {
        bool pairIsOpen = false;
        for (std::size_t index = 0; index < head.count; ++index) {
            const auto unit = number(head.content + 2 * index, 2);
            const bool isSecondHalf = unit >= 0xDC00 && unit <= 0xDFFF;
            if (unit == 0 || isSecondHalf != pairIsOpen) return fail(badText);
            pairIsOpen = unit >= 0xD800 && unit <= 0xDBFF;
        }
        return !pairIsOpen || fail(badText);
    }

    bool checkElements(const Head& head, std::size_t depth) {
        const bool hasKeys = head.kind == dictionary;
        if (!fits(head.content, head.count, hasKeys ? 2 * referenceWidth : referenceWidth))
            return fail(damaged);
        const auto count = static_cast<std::size_t>(head.count);
        const auto checkReference = [&](std::size_t index, Role role) {
            const std::size_t offset = head.content + index * referenceWidth;
            return checkObject(number(offset, referenceWidth), depth + 1, role);
        };
        for (std::size_t index = 0; index < count; ++index) {
            if (!checkReference(index, hasKeys ? Role::key : Role::value)) return false;
            if (hasKeys && !checkReference(count + index, Role::value)) return false;
        }
        return true;
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

Result<Done> checkBinaryPropertyList(std::span<const std::uint8_t> data) {
    return Checker(data).check();
}

} // namespace orvane::platform
