#include "engine/session/mixer_document_decoder.h"
#include "engine/session/mixer_document_encoder.h"
#include "support/random_document.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace {

using namespace orvane::session;
using orvane::test::randomDocument;
using testing::HasSubstr;

constexpr std::size_t sizeLimit = 64U << 20U;
constexpr const char* nearlyWhole =
    R"({"bufferSize": 64, "masterTargetDB": 0, "snapshots": [], "channels": [])";

std::string descriptionOf(std::string_view text) {
    const auto data = decodeMixerDocument(text);
    return data ? "success" : data.error().description;
}

std::string repeated(std::string_view piece, std::size_t count) {
    std::string text;
    text.reserve(piece.size() * count);
    for (std::size_t index = 0; index < count; ++index)
        text += piece;
    return text;
}

std::string nested(std::size_t depth) {
    return nearlyWhole + (R"(, "x": )" + std::string(depth - 1, '[')) + std::string(depth - 1, ']') + "}";
}

TEST(HostileDocument, CutOffAnywhereIsRefused) {
    for (const std::uint64_t seed : {1U, 2U, 3U, 4U}) {
        MixerDocumentData data = randomDocument(seed);
        data.channels.resize(1);
        data.snapshots.resize(1);
        data.snapshots[0].channels.clear();
        const auto text = encodeMixerDocument(data);
        ASSERT_TRUE(text) << "seed " << seed;
        for (std::size_t length = 0; length < text.value().size(); ++length)
            ASSERT_NE(descriptionOf(text.value().substr(0, length)), "success")
                << "seed " << seed << ", " << length << " bytes of\n"
                << text.value();
    }
}

TEST(HostileDocument, DamagedBytesGiveASessionOrAnErrorAndNothingElse) {
    for (std::uint64_t seed = 1; seed <= 3000; ++seed) {
        std::mt19937_64 draw(seed);
        std::string text = encodeMixerDocument(randomDocument(seed % 10)).value();
        for (std::size_t count = 1 + draw() % 3; count > 0; --count)
            text[draw() % text.size()] =
                draw() % 2 == 0 ? "{}[]\",:0-e."[draw() % 11] : static_cast<char>(draw());
        const auto data = decodeMixerDocument(text);
        if (!data) {
            EXPECT_FALSE(data.error().description.empty()) << "seed " << seed;
            continue;
        }
        const auto again = encodeMixerDocument(data.value());
        ASSERT_TRUE(again) << "seed " << seed;
        EXPECT_EQ(decodeMixerDocument(again.value()).value(), data.value()) << "seed " << seed;
    }
}

TEST(HostileDocument, DeepNestingIsRefused) {
    EXPECT_EQ(descriptionOf(nested(64)), "success");
    EXPECT_THAT(descriptionOf(nested(65)), HasSubstr("is nested more than 64 levels deep."));
    EXPECT_THAT(
        descriptionOf(std::string(60U << 20U, '[')), HasSubstr("is nested more than 64 levels deep.")
    );
    EXPECT_THAT(
        descriptionOf(repeated("{\"a\":", 1000000)), HasSubstr("is nested more than 64 levels deep.")
    );
}

TEST(HostileDocument, ATextBeyondTheSizeLimitIsNeitherReadNorWritten) {
    std::string text = std::string(nearlyWhole) + "}";
    text.resize(sizeLimit, ' ');
    EXPECT_EQ(descriptionOf(text), "success");
    text += ' ';
    EXPECT_THAT(descriptionOf(text), HasSubstr("64 MiB"));

    MixerDocumentData data;
    data.channels.resize(1);
    data.channels[0].pluginSlots.resize(1);
    data.channels[0].pluginSlots[0].presetData.emplace(sizeLimit / 4 * 3);
    const auto written = encodeMixerDocument(data);
    ASSERT_FALSE(written);
    EXPECT_THAT(written.error().description, HasSubstr("64 MiB"));
}

TEST(HostileDocument, MillionsOfValuesAreSkippedWhereTheyMeanNothingAndRefusedWhereTheyAreKept) {
    const std::string zeros = '[' + repeated("0,", 5000000) + "0]";
    EXPECT_EQ(descriptionOf(nearlyWhole + (R"(, "x": )" + zeros) + "}"), "success");
    EXPECT_THAT(descriptionOf(R"({"channels": )" + zeros + "}"), HasSubstr("has more than"));
}

TEST(HostileDocument, TheLargestSessionThatIsWrittenCanBeReadBack) {
    MixerDocumentData data;
    data.pluginSlotRecallSafe.assign(4790000, true);
    const auto text = encodeMixerDocument(data);
    ASSERT_TRUE(text) << text.error().description;
    EXPECT_GT(text.value().size(), sizeLimit * 99 / 100);
    const auto read = decodeMixerDocument(text.value());
    ASSERT_TRUE(read) << read.error().description;
    EXPECT_TRUE(read.value() == data);
}

} // namespace
