#include "platform/base/utf8.h"
#include "platform/files/property_list.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <limits>
#include <optional>
#include <string_view>

namespace orvane::platform {

namespace {

using Data = PropertyList::Data;
using Array = PropertyList::Array;
using Dictionary = PropertyList::Dictionary;

/// One object of the file: a value, or a key of a dictionary.
using Object = std::variant<
    bool, std::int64_t, double, const std::string*, const Data*, const Array*, const Dictionary*>;

Object objectOf(bool value) {
    return value;
}
Object objectOf(std::int64_t value) {
    return value;
}
Object objectOf(double value) {
    return value;
}
template <class Value>
Object objectOf(const Value& value) {
    return &value;
}

std::size_t widthOf(std::uint64_t number) {
    return std::max<std::size_t>((static_cast<std::size_t>(std::bit_width(number)) + 7) / 8, 1);
}

/// Writes the objects in the order of their numbers. The children of a container are consecutive and come
/// after all objects numbered before.
class Writer final {
  public:
    /// Absent if a text cannot be written.
    std::optional<Data> write(const Dictionary& top) {
        append("bplist00");
        numberObjects(top);
        referenceWidth = widthOf(objects.size());
        nextChild = 1;
        for (const Object& object : objects) {
            offsets.push_back(data.size());
            std::visit([this](const auto& value) { writeObject(value); }, object);
        }
        writeTable();
        return hasBadText ? std::nullopt : std::optional(std::move(data));
    }

  private:
    void numberObjects(const Dictionary& top) {
        objects.emplace_back(&top);
        // The list grows during the loop.
        for (std::size_t index = 0; index < objects.size(); ++index) {
            if (const auto* const array = std::get_if<const Array*>(&objects[index])) {
                for (const PropertyList& value : **array)
                    number(value);
            } else if (const auto* const found = std::get_if<const Dictionary*>(&objects[index])) {
                const Dictionary& dictionary = **found;
                for (const auto& entry : dictionary)
                    objects.emplace_back(&entry.first);
                for (const auto& entry : dictionary)
                    number(entry.second);
            }
        }
    }

    void number(const PropertyList& list) {
        objects.push_back(std::visit([](const auto& value) { return objectOf(value); }, list.value));
    }

    void writeObject(bool value) { data.push_back(value ? 0x09 : 0x08); }

    void writeObject(std::int64_t value) {
        // Only eight-byte numbers are signed.
        std::size_t exponent = 3;
        if (value >= 0 && value <= std::numeric_limits<std::uint32_t>::max())
            exponent = value <= 0xFF ? 0 : value <= 0xFFFF ? 1 : 2;
        data.push_back(static_cast<std::uint8_t>(0x10U | exponent));
        writeNumber(static_cast<std::uint64_t>(value), std::size_t{1} << exponent);
    }

    void writeObject(double value) {
        data.push_back(0x23);
        writeNumber(std::bit_cast<std::uint64_t>(value), sizeof value);
    }

    void writeObject(const std::string* text) {
        // Plugins in C take a zero for the end of a text.
        const auto characters = decodeUTF8(*text);
        if (!characters || text->find('\0') != std::string::npos) {
            hasBadText = true;
        } else if (characters->size() == text->size()) {
            writeHead(0x50, text->size());
            append(*text);
        } else {
            writeUTF16(*characters);
        }
    }

    void writeUTF16(const std::u32string& characters) {
        constexpr char32_t firstOfPairs = 0x10000;
        const auto isPair = [](char32_t character) { return character >= firstOfPairs; };
        const auto pairs = static_cast<std::size_t>(std::ranges::count_if(characters, isPair));
        writeHead(0x60, characters.size() + pairs);
        for (const char32_t character : characters) {
            if (isPair(character)) {
                writeNumber(0xD800 + ((character - firstOfPairs) >> 10U), 2);
                writeNumber(0xDC00 + ((character - firstOfPairs) & 0x3FFU), 2);
            } else {
                writeNumber(character, 2);
            }
        }
    }

    void writeObject(const Data* bytes) {
        writeHead(0x40, bytes->size());
        data.insert(data.end(), bytes->begin(), bytes->end());
    }

    void writeObject(const Array* array) {
        writeHead(0xA0, array->size());
        writeReferences(array->size());
    }

    void writeObject(const Dictionary* dictionary) {
        writeHead(0xD0, dictionary->size());
        writeReferences(2 * dictionary->size());
    }

    void writeHead(unsigned kind, std::size_t count) {
        constexpr std::size_t sizeFollows = 0xF;
        data.push_back(static_cast<std::uint8_t>(kind | std::min(count, sizeFollows)));
        if (count >= sizeFollows) writeObject(static_cast<std::int64_t>(count));
    }

    void writeReferences(std::size_t count) {
        for (; count > 0; --count)
            writeNumber(nextChild++, referenceWidth);
    }

    void writeTable() {
        const std::size_t table = data.size();
        const std::size_t offsetWidth = widthOf(table);
        for (const std::size_t offset : offsets)
            writeNumber(offset, offsetWidth);
        writeNumber(0, 6);
        writeNumber(offsetWidth, 1);
        writeNumber(referenceWidth, 1);
        for (const std::size_t number : {objects.size(), std::size_t{0}, table})
            writeNumber(number, sizeof(std::uint64_t));
    }

    void writeNumber(std::uint64_t number, std::size_t width) {
        for (std::size_t shift = 8 * width; shift > 0; shift -= 8)
            data.push_back(static_cast<std::uint8_t>(number >> (shift - 8)));
    }

    void append(std::string_view text) { data.insert(data.end(), text.begin(), text.end()); }

    Data data;
    std::vector<Object> objects;
    std::vector<std::size_t> offsets;
    std::size_t referenceWidth = 0;
    std::size_t nextChild = 0;
    bool hasBadText = false;
};

} // namespace

Result<Data> dataWithPropertyList(const Dictionary& dictionary) {
    auto data = Writer().write(dictionary);
    if (!data) return Error{"The property list has a text that is not UTF-8 or holds a zero byte."};
    // What is written can be read back.
    if (const auto read = propertyListWithData(*data); !read) return read.error();
    return *std::move(data);
}

} // namespace orvane::platform
