#include "platform/files/user_folders.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

namespace {

using orvane::platform::applicationSupportDirectory;
using orvane::platform::configurationDirectory;
using std::filesystem::path;

/// Sets an environment variable, or removes it if there is no value, until destroyed.
class Variable final {
  public:
    Variable(const char* changed, const std::optional<std::string>& value) : name(changed) {
        if (const char* const found = std::getenv(name)) before = found;
        set(value);
    }
    ~Variable() { set(before); }

  private:
    void set(const std::optional<std::string>& value) const {
        if (value)
            ::setenv(name, value->c_str(), 1);
        else
            ::unsetenv(name);
    }

    const char* name;
    std::optional<std::string> before;
};

TEST(UserFolders, AreCreatedAtThePathInTheEnvironment) {
    const orvane::test::TemporaryFolder folder;
    folder.add("file", "");
    const std::string home = (folder / "home").string();
    const std::tuple<std::optional<std::string>, std::optional<std::string>, std::optional<path>> cases[] = {
        {(folder / "data/inner").string(), home, folder / "data/inner"},
        {std::nullopt, home, folder / "home/.local/share"},
        {"relative", home, folder / "home/.local/share"},
        {"", home, folder / "home/.local/share"},
        {(folder / "file/below").string(), home, std::nullopt},
        {std::nullopt, std::nullopt, std::nullopt}};
    for (const auto& [dataHome, homeFolder, expected] : cases) {
        const Variable first("XDG_DATA_HOME", dataHome);
        const Variable second("HOME", homeFolder);
        EXPECT_EQ(applicationSupportDirectory(), expected);
        EXPECT_TRUE(!expected || std::filesystem::is_directory(*expected));
    }
}

TEST(UserFolders, ForConfigurationAreNotCreated) {
    const orvane::test::TemporaryFolder folder;
    const Variable home("HOME", (folder / "home").string());
    for (const auto& [configured, expected] :
         {std::pair((folder / "config").string(), folder / "config"),
          {"relative", folder / "home/.config"}}) {
        const Variable variable("XDG_CONFIG_HOME", configured);
        EXPECT_EQ(configurationDirectory(), expected);
        EXPECT_FALSE(std::filesystem::exists(expected));
    }
}

} // namespace
