#include "engine/session/mixer_document_decoder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <span>
#include <string>
#include <string_view>

namespace {

using orvane::session::decodeMixerDocument;
using testing::HasSubstr;

constexpr std::string_view validDocument = R"({
    "bufferSize": 128,
    "channels": [
        {"name": "One", "inputChannelIndex": 0, "outputRouting": {"mono": {"channel": 4}}, "genderMode": "male",
         "muted": false, "bypassed": false, "trim": 1.0, "vocalRole": "lead"},
        {"name": "Two", "outputRouting": {"stereo": {"left": 0, "pan": 0.25, "right": 1}}, "genderMode": "neutral",
         "muted": true, "bypassed": true, "trim": 2, "pluginSlots": [
            {"id": "00000000-0000-4000-8000-000000000000", "bypassed": false},
            {"id": "00000000-0000-4000-8000-000000000001", "bypassed": true, "pluginName": "Comp",
             "presetData": "AAECAw==",
             "component": {"componentType": 1635083896, "componentSubType": 2, "componentManufacturer": 3}}]}
    ],
    "masterTargetDB": -18.5,
    "masterOutputRouting": {"none": {}},
    "pluginSlotRecallSafe": [true, false],
    "duckerReleaseMs": 300,
    "snapshots": [{"id": "00000000-0000-4000-8000-0000000000FF", "name": "Scene", "channels": [],
                   "masterTargetDB": 0, "midiTrigger": {"channel": 1, "note": 60}}]
})";

struct Fault {
    std::string_view text;
    std::string_view replacement;
    std::string_view description;
};

/// Replaces one piece of the valid document and tells what the reader says of the result.
std::string descriptionOf(const Fault& fault) {
    std::string text(validDocument);
    const auto position = text.find(fault.text);
    if (position == std::string::npos) return "The valid document lacks the piece.";
    text.replace(position, fault.text.size(), fault.replacement);
    const auto data = decodeMixerDocument(text);
    return data ? "success" : data.error().description;
}

void expectDescriptions(std::span<const Fault> faults) {
    for (const Fault& fault : faults)
        EXPECT_THAT(descriptionOf(fault), HasSubstr(std::string(fault.description)))
            << fault.text << " became " << fault.replacement;
}

TEST(MixerDocumentFaults, TheDocumentThatTheyAreMadeFromIsValid) {
    const auto data = decodeMixerDocument(validDocument);
    ASSERT_TRUE(data) << data.error().description;
    EXPECT_EQ(
        data.value().channels.at(1).pluginSlots.at(1).presetData, (std::vector<std::uint8_t>{0, 1, 2, 3})
    );
}

TEST(MixerDocumentFaults, AMissingSettingIsNamed) {
    const Fault faults[] = {
        {"\"bufferSize\": 128,", "", "bufferSize is missing."},
        {"\"channels\": [", "\"chanels\": [", "channels is missing."},
        {"\"name\": \"Two\", ", "", "channels[1].name is missing."},
        {", \"genderMode\": \"neutral\"", "", "channels[1].genderMode is missing."},
        {"\"muted\": true, ", "", "channels[1].muted is missing."},
        {"\"trim\": 1.0, ", "", "channels[0].trim is missing."},
        {"\"outputRouting\": {\"mono\": {\"channel\": 4}}, ", "", "channels[0].outputRouting is missing."},
        {"\"channel\": 4", "", "channels[0].outputRouting.mono.channel is missing."},
        {"\"pan\": 0.25, ", "", "channels[1].outputRouting.stereo.pan is missing."},
        {", \"bypassed\": false},", "},", "channels[1].pluginSlots[0].bypassed is missing."},
        {"\"componentSubType\": 2, ", "",
         "channels[1].pluginSlots[1].component.componentSubType is missing."},
        {", \"note\": 60", "", "snapshots[0].midiTrigger.note is missing."},
        {"\"id\": \"00000000-0000-4000-8000-0000000000FF\", ", "", "snapshots[0].id is missing."}};
    expectDescriptions(faults);
}

TEST(MixerDocumentFaults, AValueOfAnotherKindIsNamed) {
    const Fault faults[] = {
        {"-18.5", "\"-18.5\"", "masterTargetDB must be a number."},
        {"-18.5", "null", "masterTargetDB must be a number."},
        {"300", "true", "duckerReleaseMs must be a number."},
        {"\"One\"", "1", "channels[0].name must be a string."},
        {"\"One\"", "null", "channels[0].name must be a string."},
        {"\"muted\": false", "\"muted\": 0", "channels[0].muted must be true or false."},
        {"[true, false]", "[true, 0]", "pluginSlotRecallSafe[1] must be true or false."},
        {"[true, false]", "{}", "pluginSlotRecallSafe must be an array."},
        {"\"channels\": []", "\"channels\": {}", "snapshots[0].channels must be an array."},
        {"{\"channel\": 1, \"note\": 60}", "[1, 60]", "snapshots[0].midiTrigger must be an object."},
        {"{\"none\": {}}", "\"none\"", "masterOutputRouting must be an object."},
        {"{\"none\": {}}", "{\"none\": 1}", "masterOutputRouting.none must be an object."},
        {"{\"channel\": 4}", "4", "channels[0].outputRouting.mono must be an object."},
        {"\"Comp\"", "[]", "channels[1].pluginSlots[1].pluginName must be a string."}};
    expectDescriptions(faults);
    for (const char* other : {"[]", "1", "\"text\"", "null", "true"})
        EXPECT_EQ(decodeMixerDocument(other).error().description, "The document must be an object.") << other;
}

TEST(MixerDocumentFaults, AnIntegerMustBeWholeAndFit) {
    const char* notIntegers[] = {
        "1.0",   "1e2",   "1E2",  "1.5", "9223372036854775808",        "-9223372036854775809",
        "1e999", "\"1\"", "true", "[]",  "100000000000000000000000000"};
    for (const char* number : notIntegers) {
        const std::string expected = std::string(number) == "1e999"
                                         ? "bufferSize is a number beyond the range"
                                         : "bufferSize must be a whole number from ";
        EXPECT_THAT(descriptionOf({"128", number, ""}), HasSubstr(expected)) << number;
    }
    for (const char* number : {"9223372036854775807", "-9223372036854775808", "0", "-0", "-1"})
        EXPECT_EQ(descriptionOf({"128", number, ""}), "success") << number;

    const std::string where =
        "channels[1].pluginSlots[1].component.componentType must be a whole number from 0 to "
        "4294967295, without fraction or exponent.";
    for (const char* number : {"-1", "4294967296", "1.0", "18446744073709551615", "\"aufx\""})
        EXPECT_EQ(descriptionOf({"1635083896", number, ""}), where) << number;
    for (const char* number : {"0", "4294967295"})
        EXPECT_EQ(descriptionOf({"1635083896", number, ""}), "success") << number;
}

TEST(MixerDocumentFaults, ANumberMustBeFinite) {
    const Fault faults[] = {
        {"-18.5", "1e400", "masterTargetDB is a number beyond the range of a double."},
        {"0.25", "-1e400", "channels[1].outputRouting.stereo.pan is a number beyond the range of a double."},
        {"[true, false]", "[true, 1e400]",
         "pluginSlotRecallSafe[1] is a number beyond the range of a double."},
        {"-18.5", "NaN", "The text is not valid JSON at line 13, column 23."},
        {"-18.5", "-Infinity", "The text is not valid JSON at line 13, column 24."}};
    expectDescriptions(faults);
}

TEST(MixerDocumentFaults, ARoutingHasExactlyOneKnownCase) {
    const Fault faults[] = {
        {"{\"mono\": {\"channel\": 4}}", "{\"mono\": {\"channel\": 2}, \"none\": {}}",
         "channels[0].outputRouting is not a routing: Invalid number of keys found, expected one."},
        {"{\"mono\": {\"channel\": 4}}", "{}", "Invalid number of keys found, expected one."},
        {"{\"none\": {}}", "{\"none\": {}, \"future\": 1}",
         "masterOutputRouting is not a routing: Invalid number of keys found, expected one."},
        {"{\"none\": {}}", "{\"surround\": {}}", "masterOutputRouting has the unknown case \"surround\"."},
        {"{\"none\": {}}", "{\"None\": {}}", "masterOutputRouting has the unknown case \"None\"."},
        {"{\"none\": {}}", "{\"channel\": {}}", "masterOutputRouting has the unknown case \"channel\"."}};
    expectDescriptions(faults);
}

TEST(MixerDocumentFaults, AWordMustBeKnown) {
    const Fault faults[] = {
        {"\"lead\"", "\"Lead\"", "channels[0].vocalRole is the unknown word \"Lead\"."},
        {"\"male\"", "\"\"", "channels[0].genderMode is the unknown word \"\"."},
        {"\"male\"", "\"a\\nb\"", "channels[0].genderMode is the unknown word \"a?b\"."},
        {"\"male\"", "\"123456789012345678901234567890123456789\xC3\xA9 and more\"",
         "unknown word \"123456789012345678901234567890123456789...\"."},
        {"\"lead\"", "1", "channels[0].vocalRole must be a string."}};
    expectDescriptions(faults);
}

TEST(MixerDocumentFaults, UuidsAndBytesMustHaveTheirForm) {
    const Fault faults[] = {
        {"\"00000000-0000-4000-8000-000000000001\"", "\"1\"",
         "channels[1].pluginSlots[1].id is not a UUID: \"1\"."},
        {"\"00000000-0000-4000-8000-0000000000FF\"", "\"00000000000040008000000000000001\"",
         "snapshots[0].id is not a UUID"},
        {"\"00000000-0000-4000-8000-0000000000FF\"", "null", "snapshots[0].id must be a string."},
        {"AAECAw==", "AAECAw", "channels[1].pluginSlots[1].presetData is not base64 text."},
        {"AAECAw==", "AAEC\\nAw==", "channels[1].pluginSlots[1].presetData is not base64 text."},
        {"AAECAw==", "AAECAx==", "channels[1].pluginSlots[1].presetData is not base64 text."},
        {"\"AAECAw==\"", "7", "channels[1].pluginSlots[1].presetData must be a string."}};
    expectDescriptions(faults);
}

TEST(MixerDocumentFaults, AKeyMustNotComeTwiceAnywhere) {
    const Fault faults[] = {
        {"\"bufferSize\": 128,", "\"bufferSize\": 128, \"bufferSize\": 128,",
         "bufferSize appears more than once."},
        {"\"name\": \"Two\",", "\"name\": \"Two\", \"n\\u0061me\": \"Two\",",
         "channels[1].name appears more than once."},
        {"\"note\": 60", "\"note\": 60, \"x\": [0, {\"a\": {}, \"b\": 1, \"a\": 2}]",
         "snapshots[0].midiTrigger.x[1].a appears more than once."}};
    expectDescriptions(faults);
}

TEST(MixerDocumentFaults, BrokenTextIsPlacedByLineAndColumn) {
    const Fault faults[] = {
        {"\"bufferSize\": 128,", "\"bufferSize\": 128", "The text is not valid JSON at line 3, column 14."},
        {"\"One\"", "'One'", "The text is not valid JSON at line 4, column 18."},
        {"\"One\"", "\"話é\xFF\"", "The text is not valid JSON at line 4, column 21."},
        {"\"One\"", "\"\\ud800\"", "The text is not valid JSON at line 4, column 25."},
        {"128", "0128", "The text is not valid JSON at line 2, column 22."},
        {"128", "// frames\n128", "The text is not valid JSON at line 2, column 19."}};
    expectDescriptions(faults);
    EXPECT_EQ(
        decodeMixerDocument("").error().description, "The JSON text ends too early, at line 1, column 1."
    );
    EXPECT_EQ(
        decodeMixerDocument("{\n\"a\": \"b").error().description,
        "The JSON text ends too early, at line 2, column 8."
    );
    EXPECT_FALSE(decodeMixerDocument(std::string(validDocument) + "}"));
    EXPECT_FALSE(decodeMixerDocument(std::string(validDocument) + '\0' + "x"));
}

} // namespace
