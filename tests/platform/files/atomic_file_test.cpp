#include "platform/files/atomic_file.h"
#include "platform/files/read_file.h"
#include "support/description_of.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace orvane::platform;
using namespace orvane::test;
using std::filesystem::path;
using testing::ElementsAre;

/// Writes a text; returns the error message.
std::string write(const path& target, std::string_view text) {
    return descriptionOf(writeFileAtomically(target, std::as_bytes(std::span(text))));
}

std::string refusal(const path& target, const std::string& reason) {
    return "The file \"" + target.string() + "\" could not be written: " + reason + ".";
}

mode_t permissionsOf(const path& file) {
    struct stat status {};
    ::stat(file.c_str(), &status);
    return status.st_mode & 07777U;
}

TEST(AtomicFile, UsesDefaultPermissionsOrThoseOfTheReplacedFile) {
    const TemporaryFolder folder;
    const path target = folder / "target";
    const mode_t ordinary = permissionsOf(folder.add("ordinary", ""));
    for (const mode_t mode : {ordinary, 0600U, 0640U, 0666U, 0444U}) {
        if (mode != ordinary) {
            folder.add("target", "a longer content than the new one");
            ::chmod(target.c_str(), mode);
        }
        EXPECT_EQ(write(target, "new"), "success");
        EXPECT_EQ(contentOf(target), "new");
        EXPECT_EQ(permissionsOf(target), mode) << std::oct << mode;
        EXPECT_THAT(folder.names(), ElementsAre("ordinary", "target"));
    }
}

TEST(AtomicFile, ReplacesTheTargetOfALinkAndKeepsTheLink) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "inner");
    std::filesystem::create_symlink(folder / "inner/yet-to-be-made", folder / "second-link");
    std::filesystem::create_symlink("second-link", folder / "first-link");
    for (const char* content : {"made", "replaced"}) {
        EXPECT_EQ(write(folder / "first-link", content), "success");
        EXPECT_TRUE(std::filesystem::is_symlink(folder / "first-link"));
        EXPECT_TRUE(std::filesystem::is_symlink(folder / "second-link"));
        EXPECT_EQ(contentOf(folder / "inner/yet-to-be-made"), content);
    }
}

TEST(AtomicFile, HasNoNameBeforeItIsComplete) {
    const TemporaryFolder folder(memoryFolder());
    auto file = AtomicFile::open(folder / "target");
    ASSERT_EQ(descriptionOf(file), "success");
    EXPECT_THAT(folder.names(), testing::IsEmpty()) << "a kill leaves nothing behind";
    EXPECT_EQ(descriptionOf(file.value().commit()), "success");
    EXPECT_THAT(folder.names(), ElementsAre("target"));
}

TEST(AtomicFile, FollowsNoLinkOfAnotherUserInASharedFolder) {
    const TemporaryFolder folder;
    std::filesystem::create_symlink(folder / "victim", folder / "link");
    constexpr uid_t other = 12345;
    if (::lchown((folder / "link").c_str(), other, other) != 0)
        GTEST_SKIP() << "only root can make another user's link";
    ::chmod((folder / "").c_str(), 01777);
    EXPECT_EQ(
        write(folder / "link", "new"),
        refusal(folder / "link", "it is a link that another user put into a shared folder")
    );
    EXPECT_FALSE(std::filesystem::exists(folder / "victim"));
    ::chmod((folder / "").c_str(), 0755);
    EXPECT_EQ(write(folder / "link", "new"), "success") << "no other user can put links here";
}

TEST(AtomicFile, RefusesATargetThatCannotBeAFile) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "folder");
    std::filesystem::create_symlink("loop", folder / "loop");
    const auto before = folder.names();
    const std::pair<const char*, const char*> reasonByName[] = {
        {"folder", "it is not a regular file"},
        {"loop", "Too many levels of symbolic links"},
        {"missing/target", "No such file or directory"}};
    for (const auto& [name, reason] : reasonByName)
        EXPECT_EQ(write(folder / name, "new"), refusal(folder / name, reason));
    EXPECT_EQ(folder.names(), before);
}

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
