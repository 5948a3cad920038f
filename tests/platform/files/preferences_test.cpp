#include "platform/files/preferences.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

using namespace orvane::platform;
using namespace orvane::test;

TEST(Preferences, ShareAFileWithOtherPrograms) {
    const TemporaryFolder folder;
    const auto file = folder / "config/orvane/preferences";
    FilePreferences preferences(file);
    EXPECT_FALSE(preferences.value("count"));
    EXPECT_TRUE(preferences.setValue("count", "24"));
    EXPECT_TRUE(preferences.setValue("window", "AAA=="));
    FilePreferences other(file);
    EXPECT_TRUE(other.setValue("later", ""));
    EXPECT_TRUE(preferences.setValue("count", "8"));
    EXPECT_EQ(contentOf(file), "count=8\nlater=\nwindow=AAA==\n");
    EXPECT_EQ(other.value("window"), "AAA==");
    EXPECT_EQ(other.integer("count"), 8);
}

TEST(Preferences, ReadValidLinesAndReportWhatCannotBeStored) {
    const TemporaryFolder folder;
    const FilePreferences damaged(folder.add("damaged", "no value\n=x\ncount=12\r\nsize=007\nlast=3"));
    for (const auto& [key, number] :
         {std::tuple("count", 0), {"size", 7}, {"last", 3}, {"no value", 0}, {"absent", 0}})
        EXPECT_EQ(damaged.integer(key), number) << key;
    folder.add("file", "");
    FilePreferences below(folder / "file/below/preferences");
    const auto kept = below.setValue("count", "8");
    ASSERT_FALSE(kept);
    EXPECT_NE(kept.error().description.find("file/below"), std::string::npos);
    EXPECT_FALSE(FilePreferences(std::nullopt).setValue("count", "8"));
    InMemoryPreferences memory;
    EXPECT_TRUE(memory.setValue("count", "-12"));
    EXPECT_EQ(memory.integer("count"), -12);
}

} // namespace
