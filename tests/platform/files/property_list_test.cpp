#include "platform/files/property_list.h"
#include "support/description_of.h"
#include "support/random_blocks.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

using namespace orvane::platform;
using namespace orvane::test;
using testing::HasSubstr;
using Dictionary = PropertyList::Dictionary;
using Bytes = PropertyList::Data;

Dictionary everyKind() {
    constexpr auto lowest = std::numeric_limits<std::int64_t>::min();
    constexpr auto highest = std::numeric_limits<std::int64_t>::max();
    PropertyList::Array numbers;
    for (const std::int64_t number : {lowest, std::int64_t{-1}, std::int64_t{0}, std::int64_t{300}, highest})
        numbers.emplace_back().value = number;
    PropertyList::Array reals;
    for (const double number : {0.1, -1e300, 5e-324, 1.0, 3.4e38, std::numeric_limits<double>::infinity()})
        reals.emplace_back().value = number;
    PropertyList::Array many(700, {std::string("same")});
    return {
        {"", {std::string()}},
        {"on", {true}},
        {"off", {false}},
        {"numbers", {numbers}},
        {"reals", {reals}},
        {"many", {many}},
        {"Größe \U0001F39A", {std::string("é\U0001F39Ax")}},
        {"data", {Bytes{0, 255, 0}}},
        {"same data", {PropertyList::Array(500, {Bytes{1, 2, 3}})}},
        {"no data", {Bytes{}}},
        {"inner", {Dictionary{{"empty", {Dictionary{}}}, {"none", {PropertyList::Array{}}}}}}};
}

TEST(PropertyList, SurvivesARoundTripAndEqualListsHaveEqualBytes) {
    const auto data = dataWithPropertyList(everyKind());
    ASSERT_TRUE(data) << data.error().description;
    EXPECT_EQ(dataWithPropertyList(everyKind()).value(), data.value());
    const auto read = propertyListWithData(data.value());
    ASSERT_TRUE(read) << read.error().description;
    EXPECT_EQ(read.value(), everyKind());

    const auto notANumber = dataWithPropertyList({{"x", {std::nan("")}}});
    EXPECT_TRUE(std::isnan(std::get<double>(propertyListWithData(notANumber.value()).value().at("x").value)));
    EXPECT_EQ(propertyListWithData(dataWithPropertyList({}).value()).value(), Dictionary{});
}

Dictionary nested(std::size_t depth) {
    Dictionary inner;
    for (std::size_t level = 1; level < depth; ++level)
        inner = Dictionary{{"k", {std::move(inner)}}};
    return inner;
}

TEST(PropertyList, IsWrittenOnlyIfItCanBeReadBack) {
    EXPECT_EQ(propertyListWithData(dataWithPropertyList(nested(64)).value()).value(), nested(64));
    const std::pair<const char*, Dictionary> cases[] = {
        {"nested too deeply", nested(65)},
        {"nested too deeply", nested(200)},
        {"not UTF-8", {{"x", {std::string("\xC3(")}}}},
        {"not UTF-8", {{"x", {std::string("\xED\xA0\x80")}}}},
        {"not UTF-8", {{std::string("a\0b", 3), {true}}}},
        {"larger than any", {{"x", {Bytes(40'000'000)}}}},
        {"larger than any", {{"x", {PropertyList::Array(300'000, {true})}}}}};
    for (const auto& [reason, dictionary] : cases)
        EXPECT_THAT(descriptionOf(dataWithPropertyList(dictionary)), HasSubstr(reason));
}

std::string bigEndian(std::uint64_t number, std::size_t width) {
    std::string text(width, '\0');
    for (std::size_t index = width; index-- > 0; number >>= 8U)
        text[index] = static_cast<char>(number & 0xFFU);
    return text;
}

/// A binary property list of hand-made objects, with one-byte references and the first object at the top.
Bytes listOf(const std::vector<std::string>& objects) {
    std::string bytes = "bplist00";
    std::string table;
    for (const std::string& object : objects) {
        table += bigEndian(bytes.size(), 4);
        bytes += object;
    }
    const std::size_t tableStart = bytes.size();
    bytes += table + std::string(6, '\0') + "\x04\x01" + bigEndian(objects.size(), 8) + bigEndian(0, 8)
             + bigEndian(tableStart, 8);
    return {bytes.begin(), bytes.end()};
}

/// Object i is a dictionary whose only value, or an array whose every element, is object i + 1.
Bytes foldedList(std::size_t levels, std::size_t references) {
    std::vector<std::string> objects = {"\xD1\x01\x02", "Qk"};
    for (std::size_t level = 1; level < levels; ++level)
        objects.push_back(
            std::string(1, static_cast<char>(0xA0U | references))
            + std::string(references, static_cast<char>(objects.size() + 1))
        );
    objects.emplace_back("\x09");
    return listOf(objects);
}

TEST(PropertyList, RefusesHostileBytes) {
    using namespace std::string_literals;
    EXPECT_TRUE(propertyListWithData(foldedList(5, 2)));
    Bytes manyObjects = foldedList(2, 1);
    manyObjects[manyObjects.size() - 24] = 0x7F;
    Bytes wideTable = foldedList(2, 1);
    for (std::size_t i = 1; i <= 8; ++i)
        wideTable[wideTable.size() - i] = 0xFF;
    const std::tuple<const char*, const char*, Bytes> cases[] = {
        {"nothing", "damaged", {}},
        {"50 MB", "larger than any", Bytes(50'000'000, 'x')},
        {"not a dictionary", "not a dictionary", listOf({"\xA1\x01", "\x09"})},
        {"itself as its value", "refers to itself", listOf({"\xD1\x01\x00"s, "Qk"})},
        {"two objects in a ring", "refers to itself", listOf({"\xD1\x02\x01"s, "\xD1\x02\x00"s, "Qk"})},
        {"nested too deeply", "nested too deeply", foldedList(66, 1)},
        {"2 to the 40", "larger than any", foldedList(42, 2)},
        {"14 to the 60", "larger than any", foldedList(60, 14)},
        {"number as a key", "damaged", listOf({"\xD1\x01\x01", "\x10\x05"})},
        {"reference to nowhere", "damaged", listOf({"\xD1\x01\x09", "Qk"})},
        {"more objects than bytes", "damaged", manyObjects},
        {"table beyond the end", "damaged", wideTable},
        {"text beyond the end", "damaged", listOf({"\xD1\x01\x01", "_\x10\x20k"})},
        {"huge count", "damaged", listOf({"\xDF\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", "Qk"})},
        {"half a pair", "cannot be read", listOf({"\xD1\x01\x01", "\x61\xD8\x00"s})},
        {"zero in a text", "cannot be read", listOf({"\xD1\x01\x01", "\x51\x00"s})},
        {"date", "no plugin's state", listOf({"\xD1\x01\x02", "Qk", "\x33" + std::string(8, '\0')})},
        {"null", "no plugin's state", listOf({"\xD1\x01\x02", "Qk", "\0"s})},
        {"wide number", "no plugin's state", listOf({"\xD1\x01\x02", "Qk", "\x14" + std::string(16, '\0')})}};
    for (const auto& [what, reason, bytes] : cases)
        EXPECT_THAT(descriptionOf(propertyListWithData(bytes)), HasSubstr(reason)) << what;
}

TEST(PropertyList, HandlesAnyDamageToItsBytes) {
    Random random(11);
    Dictionary dictionary = everyKind();
    dictionary.erase("many");
    dictionary.erase("same data");
    const Bytes whole = dataWithPropertyList(dictionary).value();
    int readable = 0;
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(propertyListWithData(std::span(whole).first(size))) << size;
    for (int round = 0; round < 20'000; ++round) {
        Bytes bytes = whole;
        for (long change = wholeBetween(random, 1, 4); change > 0; --change) {
            const auto index = static_cast<std::size_t>(wholeBetween(random, 8, long(bytes.size()) - 1));
            bytes[index] = static_cast<std::uint8_t>(wholeBetween(random, 0, 255));
        }
        const auto read = propertyListWithData(bytes);
        // Whatever can be read survives a round trip.
        if (!read) continue;
        ++readable;
        EXPECT_TRUE(dataWithPropertyList(read.value())) << "round " << round;
    }
    EXPECT_GT(readable, 100);
}

} // namespace
