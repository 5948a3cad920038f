#include "platform/files/read_file.h"
#include "support/description_of.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

using namespace orvane::test;
using orvane::platform::readFile;

TEST(ReadFile, NamesTheFileThatItCannotRead) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "folder");
    ::mkfifo((folder / "pipe").c_str(), 0666);
    folder.add("large", std::string(101, 'x'));
    const std::pair<const char*, std::string> reasonByName[] = {
        {"folder", "it is not a regular file"},
        {"pipe", "it is not a regular file"},
        {"missing", "No such file or directory"},
        {"large", "it is larger than 100 bytes"}};
    for (const auto& [name, reason] : reasonByName)
        EXPECT_EQ(
            descriptionOf(readFile(folder / name, 100)),
            "The file \"" + (folder / name).string() + "\" could not be read: " + reason + "."
        );
}

} // namespace
