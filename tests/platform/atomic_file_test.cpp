#include "platform/atomic_file.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

namespace {

using namespace orvane::platform;
using orvane::test::contentOf;
using orvane::test::TemporaryFolder;
using std::filesystem::path;
using testing::ElementsAre;

Result<Done> writeText(const path& target, std::string_view text) {
    return writeFileAtomically(target, std::as_bytes(std::span(text)));
}

std::string descriptionOf(const Result<Done>& result) {
    return result ? "success" : result.error().description;
}

mode_t permissionsOf(const path& file) {
    struct stat status {};
    ::stat(file.c_str(), &status);
    return status.st_mode & 07777U;
}

/// No file of this process can grow beyond the size until this goes.
class FileSizeLimit final {
  public:
    explicit FileSizeLimit(rlim_t size) : handler(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limited{size, before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    void (*handler)(int);
    rlimit before{};
};

TEST(AtomicFile, MakesANewFileLikeAnyOther) {
    const TemporaryFolder folder;
    const path ordinary = folder.add("ordinary", "");
    const path target = folder / "new";
    EXPECT_EQ(descriptionOf(writeText(target, "content")), "success");
    EXPECT_EQ(contentOf(target), "content");
    EXPECT_EQ(permissionsOf(target), permissionsOf(ordinary));
    EXPECT_THAT(folder.names(), ElementsAre("new", "ordinary"));
}

TEST(AtomicFile, KeepsThePermissionsOfTheFileItReplaces) {
    const TemporaryFolder folder;
    for (const mode_t mode : {0600U, 0640U, 0666U, 0444U}) {
        const path target = folder.add("target", "a longer content than the new one");
        ::chmod(target.c_str(), mode);
        EXPECT_EQ(descriptionOf(writeText(target, "new")), "success");
        EXPECT_EQ(contentOf(target), "new");
        EXPECT_EQ(permissionsOf(target), mode) << std::oct << mode;
        ::unlink(target.c_str());
    }
}

TEST(AtomicFile, ShowsNothingBeforeItIsCommitted) {
    const TemporaryFolder folder;
    const path target = folder.add("target", "old");
    auto file = AtomicFile::open(target);
    ASSERT_TRUE(file);
    ASSERT_EQ(::write(file.value().descriptor(), "new", 3), 3);
    EXPECT_EQ(contentOf(target), "old");
    EXPECT_TRUE(file.value().commit());
    EXPECT_EQ(contentOf(target), "new");
}

TEST(AtomicFile, LeavesNoTraceWhenAbandoned) {
    const TemporaryFolder folder;
    const path target = folder.add("target", "old");
    {
        const auto file = AtomicFile::open(target);
        ASSERT_TRUE(file);
        ASSERT_EQ(::write(file.value().descriptor(), "new", 3), 3);
    }
    EXPECT_EQ(contentOf(target), "old");
    EXPECT_THAT(folder.names(), ElementsAre("target"));
}

TEST(AtomicFile, LeavesTheOldFileWholeWhenWritingFails) {
    const TemporaryFolder folder;
    const path target = folder.add("target", "old");
    Result<Done> result = Done{};
    {
        const FileSizeLimit limit(1000);
        result = writeText(target, std::string(5000, 'x'));
    }
    EXPECT_EQ(
        descriptionOf(result), "The file \"" + target.string() + "\" could not be written: File too large."
    );
    EXPECT_EQ(contentOf(target), "old");
    EXPECT_THAT(folder.names(), ElementsAre("target"));
}

TEST(AtomicFile, RemovesItsTemporaryFileWhenTheNameCannotBeTaken) {
    const TemporaryFolder folder;
    const path target = folder / "target";
    {
        auto file = AtomicFile::open(target);
        ASSERT_TRUE(file);
        std::filesystem::create_directory(target);
        EXPECT_EQ(
            descriptionOf(file.value().commit()),
            "The file \"" + target.string() + "\" could not be written: Is a directory."
        );
    }
    EXPECT_THAT(folder.names(), ElementsAre("target"));
}

TEST(AtomicFile, ReplacesWhatALinkLeadsToAndKeepsTheLink) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "inner");
    for (const char* name : {"inner/existing", "inner/yet-to-be-made"}) {
        if (std::string_view(name) == "inner/existing") folder.add(name, "old");
        std::filesystem::create_symlink(folder / name, folder / "second-link");
        std::filesystem::create_symlink("second-link", folder / "first-link");
        EXPECT_EQ(descriptionOf(writeText(folder / "first-link", "new")), "success") << name;
        EXPECT_TRUE(std::filesystem::is_symlink(folder / "first-link"));
        EXPECT_TRUE(std::filesystem::is_symlink(folder / "second-link"));
        EXPECT_EQ(contentOf(folder / name), "new") << name;
        std::filesystem::remove(folder / "first-link");
        std::filesystem::remove(folder / "second-link");
    }
}

TEST(AtomicFile, RefusesATargetThatCannotBecomeAFile) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "folder");
    ::mkfifo((folder / "pipe").c_str(), 0666);
    std::filesystem::create_symlink("loop", folder / "loop");
    folder.add("file", "content");
    const auto before = folder.names();
    const std::pair<const char*, const char*> reasonByName[] = {
        {"folder", "it is not a regular file"},
        {"pipe", "it is not a regular file"},
        {"loop", "Too many levels of symbolic links"},
        {"missing/target", "No such file or directory"},
        {"file/target", "Not a directory"}};
    for (const auto& [name, reason] : reasonByName) {
        const path target = folder / name;
        EXPECT_EQ(
            descriptionOf(writeText(target, "new")),
            "The file \"" + target.string() + "\" could not be written: " + reason + "."
        );
    }
    EXPECT_EQ(folder.names(), before);
}

} // namespace
