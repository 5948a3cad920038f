#include "engine/session/mixer_json_document.h"
#include "support/random_document.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace orvane::session;
using orvane::test::contentOf;
using orvane::test::randomDocument;
using orvane::test::TemporaryFolder;

TEST(MixerJSONDocument, ReadsBackWhatItWrote) {
    const TemporaryFolder folder;
    const auto path = folder / "Settings.orvane";
    const MixerJSONDocument document{randomDocument(1)};
    ASSERT_TRUE(document.write(path));
    const auto read = MixerJSONDocument::read(path);
    ASSERT_TRUE(read) << read.error().description;
    EXPECT_EQ(read.value(), document);
}

TEST(MixerJSONDocument, LeavesTheOldFileWhenItCannotBeEncoded) {
    const TemporaryFolder folder;
    const auto path = folder.add("Settings.orvane", "old");
    MixerJSONDocument document;
    document.data.masterTargetDB = std::numeric_limits<double>::infinity();
    const auto written = document.write(path);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().description, "masterTargetDB is not a finite number.");
    EXPECT_EQ(contentOf(path), "old");
}

TEST(MixerJSONDocument, SaysWhichFileCannotBeReadOrWritten) {
    const TemporaryFolder folder;
    const auto missing = folder / "missing" / "Settings.orvane";
    const auto read = MixerJSONDocument::read(missing);
    const auto written = MixerJSONDocument{}.write(missing);
    ASSERT_FALSE(read);
    ASSERT_FALSE(written);
    EXPECT_THAT(read.error().description, testing::HasSubstr(missing.string()));
    EXPECT_THAT(written.error().description, testing::HasSubstr(missing.string()));
}

TEST(MixerJSONDocument, SaysWhatIsWrongInAFile) {
    const TemporaryFolder folder;
    const auto read = MixerJSONDocument::read(folder.add("Settings.orvane", "{}"));
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error().description, "channels is missing.");
}

} // namespace
