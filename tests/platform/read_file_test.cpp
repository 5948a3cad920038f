#include "platform/read_file.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

using orvane::platform::readFile;
using orvane::test::TemporaryFolder;

TEST(ReadFile, GivesEveryByte) {
    const TemporaryFolder folder;
    for (const std::size_t size : {0U, 1U, 65535U, 65536U, 65537U, 300000U}) {
        std::string content(size, '\0');
        for (std::size_t index = 0; index < size; ++index)
            content[index] = static_cast<char>(index * 31);
        const auto read = readFile(folder.add("file", content), size);
        ASSERT_TRUE(read) << size << " bytes: " << read.error().description;
        EXPECT_EQ(read.value(), content) << size << " bytes";
    }
}

TEST(ReadFile, RefusesWhatItCannotReadWithASentenceThatNamesIt) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "folder");
    ::mkfifo((folder / "pipe").c_str(), 0666);
    folder.add("large", std::string(101, 'x'));
    const std::pair<const char*, const char*> reasonByName[] = {
        {"folder", "it is not a regular file"},
        {"pipe", "it is not a regular file"},
        {"missing", "No such file or directory"},
        {"large", "it is larger than 100 bytes"}};
    for (const auto& [name, reason] : reasonByName) {
        const auto path = folder / name;
        const auto read = readFile(path, 100);
        ASSERT_FALSE(read) << name;
        EXPECT_EQ(
            read.error().description, "The file \"" + path.string() + "\" could not be read: " + reason + "."
        );
    }
}

} // namespace
