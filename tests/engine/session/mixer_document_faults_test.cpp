#include "engine/session/mixer_document_codec.h"
#include "engine/session/mixer_json_document.h"
#include "support/description_of.h"
#include "support/failing_allocation.h"
#include "support/random_document.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>
#include <random>
#include <ranges>
#include <sstream>
#include <string>
#include <string_view>

namespace {

using namespace orvane::session;
using namespace orvane::test;
using nlohmann::json;
using testing::HasSubstr;

const std::string nearlyWhole = R"({"bufferSize": 64, "masterTargetDB": 0, "snapshots": [], "channels": [])";

json validDocument() {
    return json::parse(R"({
        "bufferSize": 128, "masterTargetDB": -18.5, "masterOutputRouting": {"none": {}},
        "pluginSlotRecallSafe": [true, false], "duckerReleaseMs": 300,
        "channels": [
            {"name": "One", "inputChannelIndex": 0, "outputRouting": {"mono": {"channel": 4}}, "trim": 1.0,
             "genderMode": "male", "muted": false, "bypassed": false, "vocalRole": "lead"},
            {"name": "Two", "outputRouting": {"stereo": {"left": 0, "pan": 0.25, "right": 1}}, "trim": 2,
             "genderMode": "neutral", "muted": true, "bypassed": true, "pluginSlots": [
                {"id": "00000000-0000-4000-8000-000000000001", "bypassed": true, "pluginName": "Comp",
                 "component": {"componentType": 1635083896, "componentSubType": 2, "componentManufacturer": 3},
                 "presetData": "AAECAw=="}]}],
        "snapshots": [{"id": "00000000-0000-4000-8000-0000000000FF", "name": "Scene", "channels": [],
                       "masterTargetDB": 0, "midiTrigger": {"channel": 1, "note": 60}}]})");
}

/// Turns "channels[1].name" into "/channels/1/name".
json::json_pointer pointerTo(std::string path) {
    std::erase(path, ']');
    std::ranges::replace(path, '[', '/');
    std::ranges::replace(path, '.', '/');
    return json::json_pointer('/' + path);
}

/// The valid document with any text in place of one value, which may be new.
std::string documentWith(const std::string& path, std::string_view replacement) {
    json document = validDocument();
    document[pointerTo(path)] = "@";
    std::string text = document.dump();
    return text.replace(text.find("\"@\""), 3, replacement);
}

/// The reader's error for a text.
std::string descriptionOf(std::string_view text, const DocumentLimits& limits = {}) {
    return orvane::test::descriptionOf(decodeMixerDocument(text, limits));
}

TEST(MixerDocumentFaults, AMissingSettingIsNamed) {
    EXPECT_EQ(descriptionOf(validDocument().dump()), "success");
    std::istringstream paths(
        "bufferSize channels masterTargetDB snapshots channels[1].name channels[0].trim channels[1].muted "
        "channels[1].genderMode channels[0].bypassed channels[0].outputRouting snapshots[0].name "
        "channels[0].outputRouting.mono.channel channels[1].outputRouting.stereo.left snapshots[0].id "
        "channels[1].outputRouting.stereo.pan channels[1].outputRouting.stereo.right snapshots[0].channels "
        "channels[1].pluginSlots[0].id channels[1].pluginSlots[0].bypassed snapshots[0].masterTargetDB "
        "channels[1].pluginSlots[0].component.componentType snapshots[0].midiTrigger.channel "
        "channels[1].pluginSlots[0].component.componentSubType snapshots[0].midiTrigger.note "
        "channels[1].pluginSlots[0].component.componentManufacturer"
    );
    for (std::string path; paths >> path;) {
        json document = validDocument();
        const auto pointer = pointerTo(path);
        document[pointer.parent_pointer()].erase(pointer.back());
        EXPECT_EQ(descriptionOf(document.dump()), path + " is missing.");
    }
}

TEST(MixerDocumentFaults, ABadValueIsNamed) {
    const std::string whole = "must be a whole number from ";
    const std::string wholeBufferSize =
        whole + "-9223372036854775808 to 9223372036854775807, without fraction or exponent";
    const std::string wholeCode = whole + "0 to 4294967295, without fraction or exponent";
    const std::string beyond = "is a number beyond the range of a double";
    const std::string notOneKey = "is not a routing: Invalid number of keys found, expected one";
    const std::string slot = "channels[1].pluginSlots[0]";
    const std::string output = "channels[0].outputRouting";
    const std::string gender = "channels[0].genderMode";
    const std::string longWord = "123456789012345678901234567890123456789";
    const std::tuple<std::string, std::string, std::vector<std::string>> textsByProblem[] = {
        {"masterTargetDB", "must be a number", {"null", R"("-18.5")", "true"}},
        {"masterTargetDB", beyond, {"1e400", "-1e400"}},
        {"bufferSize", beyond, {"1e999"}},
        {"bufferSize", wholeBufferSize, {"1.0", "1e2", "9223372036854775808", "-9223372036854775809", "[]"}},
        {slot + ".component.componentType", wholeCode, {"-1", "4294967296", "1.0", "18446744073709551615"}},
        {"channels[0].name", "must be a string", {"1", "null"}},
        {slot + ".pluginName", "must be a string", {"[]"}},
        {"channels[0].muted", "must be true or false", {"0"}},
        {"pluginSlotRecallSafe[1]", "must be true or false", {"0"}},
        {"pluginSlotRecallSafe[1]", beyond, {"1e400"}},
        {"pluginSlotRecallSafe", "must be an array", {"{}"}},
        {"snapshots[0].midiTrigger", "must be an object", {"[1, 60]"}},
        {"masterOutputRouting", "must be an object", {R"("none")"}},
        {"masterOutputRouting.none", "must be an object", {"1"}},
        {output + ".mono", "must be an object", {"4"}},
        {output,
         notOneKey,
         {"{}", R"({"mono": {"channel": 2}, "none": {}})", R"({"none": {}, "future": 1})"}},
        {output, R"(has the unknown case "surround")", {R"({"surround": {}})"}},
        {output, R"(has the unknown case "channel")", {R"({"channel": {}})"}},
        {"channels[0].vocalRole", R"(is the unknown word "Lead")", {R"("Lead")"}},
        {gender, R"(is the unknown word "")", {R"("")"}},
        {gender, R"(is the unknown word "a?b")", {R"("a\nb")"}},
        {gender, "is the unknown word \"" + longWord + "...\"", {'"' + longWord + "é and more\""}},
        {slot + ".id", R"(is not a UUID: "1")", {R"("1")"}},
        {slot + ".presetData", "is not base64 text", {R"("AAECAw")"}},
        {"bufferSize", "appears more than once", {R"(1, "bufferSize": 1)"}},
        {"channels[1].name", "appears more than once", {R"("a", "n\u0061me": "b")"}}};
    for (const auto& [path, problem, texts] : textsByProblem)
        for (const std::string& text : texts)
            EXPECT_EQ(descriptionOf(documentWith(path, text)), path + ' ' + problem + '.') << text;
    for (const char* other : {"[]", "1", "\"text\"", "null", "true"})
        EXPECT_EQ(descriptionOf(other), "The document must be an object.") << other;
    for (const char* extreme : {"9223372036854775807", "-9223372036854775808", "-0"})
        EXPECT_EQ(descriptionOf(documentWith("bufferSize", extreme)), "success") << extreme;
    EXPECT_EQ(descriptionOf(documentWith(slot + ".component.componentType", "4294967295")), "success");
    EXPECT_EQ(descriptionOf(R"({"x": [1e400, "\\\"1"], "bufferSize": 1e400})"), "bufferSize " + beyond + '.');
}

TEST(MixerDocumentFaults, AnInvalidTextIsReportedByLineAndColumn) {
    using namespace std::string_view_literals;
    const std::pair<std::string_view, const char*> descriptionByText[] = {
        {"{\n\"a\": 1\n  \"b\": 2}", "The text is not valid JSON at line 3, column 5."},
        {"{\n\"a\": 'b'}", "The text is not valid JSON at line 2, column 6."},
        {"{\"a\": \"話é\xFF\"}", "The text is not valid JSON at line 1, column 10."},
        {"{\"a\": \"\\ud800\"}", "The text is not valid JSON at line 1, column 14."},
        {"{\"a\": 12345.67890e1234, \"b\": x}", "The text is not valid JSON at line 1, column 30."},
        {"{\"a\": 0128}", "The text is not valid JSON at line 1, column 10."},
        {"{\"a\": NaN}", "The text is not valid JSON at line 1, column 7."},
        {"{\"a\": // b\n1}", "The text is not valid JSON at line 1, column 7."},
        {"{}}", "The text is not valid JSON at line 1, column 3."},
        {"{}\0x"sv, "The text is not valid JSON at line 1, column 3."},
        {"", "The JSON text ends too early, at line 1, column 1."},
        {"{\n\"a\": \"b", "The JSON text ends too early, at line 2, column 8."}};
    for (const auto& [text, description] : descriptionByText)
        EXPECT_EQ(descriptionOf(text), description) << text;
}

TEST(MixerDocumentFaults, ATruncatedTextIsRefused) {
    const std::string text = documentWith("channels[0].name", R"("話\"\ud83c\udfa4é")");
    ASSERT_EQ(descriptionOf(text), "success");
    for (std::size_t length = 0; length < text.size(); ++length)
        ASSERT_NE(descriptionOf(text.substr(0, length)), "success") << length << " bytes of\n" << text;
}

TEST(MixerDocumentFaults, DamagedBytesResultInASessionOrAnError) {
    for (std::uint64_t seed = 1; seed <= 1000; ++seed) {
        std::mt19937_64 draw(seed);
        std::string text = encodeMixerDocument(randomDocument(seed % 10)).value();
        for (std::size_t count = 1 + draw() % 3; count > 0; --count)
            text[draw() % text.size()] =
                draw() % 2 == 0 ? "{}[]\",:0-e."[draw() % 11] : static_cast<char>(draw());
        const auto data = decodeMixerDocument(text);
        EXPECT_NE(orvane::test::descriptionOf(data), "") << "seed " << seed;
        if (!data) continue;
        const auto again = encodeMixerDocument(data.value());
        ASSERT_TRUE(again) << "seed " << seed;
        EXPECT_EQ(decodeMixerDocument(again.value()).value(), data.value()) << "seed " << seed;
    }
}

std::string repeated(std::string_view piece, std::size_t count) {
    std::string text;
    for (std::size_t index = 0; index < count; ++index)
        text += piece;
    return text;
}

TEST(MixerDocumentFaults, ATextThatExceedsTheMemoryFails) {
    const std::string text = validDocument().dump();
    std::size_t nth = 0;
    for (bool isOver = false; !isOver;) {
        const FailingAllocation failing(++nth);
        try {
            const auto document = decodeMixerDocument(text);
            ASSERT_TRUE(document);
            isOver = !failing.hasHappened();
        } catch (const std::bad_alloc&) {
        }
    }
    EXPECT_GT(nth, 100U);
}

TEST(MixerDocumentFaults, DeepNestingIsRefusedInKnownValues) {
    const auto nested = [](const char* key, std::size_t depth) {
        return nearlyWhole + ", \"" + key + "\": " + std::string(depth - 1, '[') + std::string(depth - 1, ']')
               + "}";
    };
    EXPECT_EQ(descriptionOf(nested("name", 64)), "success");
    for (const std::string& text :
         {nested("name", 65), std::string(1U << 20U, '['), repeated("{\"name\":", 100000)})
        EXPECT_THAT(descriptionOf(text), HasSubstr("is nested more than 64 levels deep."));
    EXPECT_EQ(descriptionOf(nested("x", 1U << 20U)), "success");
}

TEST(MixerDocumentFaults, ATextBeyondTheLimitsIsNeitherReadNorWritten) {
    constexpr std::size_t mebibyte = 1U << 20U;
    EXPECT_THAT(descriptionOf(std::string(mebibyte + 1, ' '), {.size = mebibyte}), HasSubstr("the 1 MiB"));
    for (std::uint64_t seed = 1; seed <= 3; ++seed) {
        const MixerDocumentData data = randomDocument(seed);
        const std::string text = encodeMixerDocument(data).value();
        DocumentLimits least{.size = text.size()};
        least.valueCount = *std::ranges::partition_point(
            std::views::iota(std::size_t{0}, text.size()),
            [&](std::size_t count) {
                return descriptionOf(text, {text.size(), count}) != "success";
            }
        );
        EXPECT_EQ(encodeMixerDocument(data, least).value(), text);
        for (const DocumentLimits& lower :
             {DocumentLimits{least.size - 1, least.valueCount}, {least.size, least.valueCount - 1}}) {
            const std::string refusal = orvane::test::descriptionOf(encodeMixerDocument(data, lower));
            EXPECT_THAT(refusal, HasSubstr("that a file may have."));
            EXPECT_EQ(descriptionOf(text, lower), refusal);
        }
    }
}

TEST(MixerDocumentFaults, ManyValuesAreRefusedIfTheyAreKeptAndSkippedOtherwise) {
    const std::string zeros = '[' + repeated("0,", 1000) + "0]";
    const DocumentLimits limits{.valueCount = 1000};
    std::string others;
    for (int key = 0; key < 1000; ++key)
        others += ", \"x" + std::to_string(key) + "\": 0";
    for (const std::string& value : {zeros, R"({"a":0)" + others + "}"})
        EXPECT_EQ(descriptionOf(nearlyWhole + R"(, "x": )" + value + "}", limits), "success");
    for (const std::string& text : {R"({"channels": )" + zeros + "}", nearlyWhole + others + "}"})
        EXPECT_THAT(descriptionOf(text, limits), HasSubstr("more than the 1000 values"));
}

TEST(MixerJSONDocument, KeepsTheFileIfEncodingFailsAndNamesOneThatItCannotReach) {
    const orvane::test::TemporaryFolder folder;
    const auto path = folder.add("Settings.orvane", "the last one");
    MixerJSONDocument document;
    document.data.master.levels.masterTargetDB = std::numeric_limits<double>::infinity();
    EXPECT_EQ(orvane::test::descriptionOf(document.write(path)), "masterTargetDB is not a finite number.");
    EXPECT_EQ(orvane::test::contentOf(path), "the last one");
    const auto missing = folder / "missing" / "Settings.orvane";
    EXPECT_THAT(orvane::test::descriptionOf(MixerJSONDocument::read(missing)), HasSubstr(missing.string()));
    EXPECT_THAT(orvane::test::descriptionOf(MixerJSONDocument{}.write(missing)), HasSubstr(missing.string()));
}

} // namespace
