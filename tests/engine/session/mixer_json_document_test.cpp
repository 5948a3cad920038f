#include "engine/session/mixer_json_document.h"
#include "support/description_of.h"
#include "support/random_document.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace orvane::session;
using namespace orvane::test;
using testing::HasSubstr;

TEST(MixerJSONDocument, ReadsWhatItWroteAndKeepsTheFileIfEncodingFails) {
    const TemporaryFolder folder;
    MixerJSONDocument document{randomDocument(1)};
    ASSERT_EQ(descriptionOf(document.write(folder / "Settings.orvane")), "success");
    const auto read = MixerJSONDocument::read(folder / "Settings.orvane");
    ASSERT_EQ(descriptionOf(read), "success");
    EXPECT_EQ(read.value(), document);

    const std::string before = contentOf(folder / "Settings.orvane");
    document.data.master.levels.masterTargetDB = std::numeric_limits<double>::infinity();
    const auto written = document.write(folder / "Settings.orvane");
    EXPECT_EQ(descriptionOf(written), "masterTargetDB is not a finite number.");
    EXPECT_EQ(contentOf(folder / "Settings.orvane"), before);
}

TEST(MixerJSONDocument, NamesTheFileThatCannotBeReadOrWritten) {
    const TemporaryFolder folder;
    const auto missing = folder / "missing" / "Settings.orvane";
    EXPECT_THAT(descriptionOf(MixerJSONDocument::read(missing)), HasSubstr(missing.string()));
    EXPECT_THAT(descriptionOf(MixerJSONDocument{}.write(missing)), HasSubstr(missing.string()));
    EXPECT_EQ(descriptionOf(MixerJSONDocument::read(folder.add("bad", "{}"))), "channels is missing.");
}

} // namespace
