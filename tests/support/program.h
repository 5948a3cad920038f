#pragma once

#include "support/temporary_folder.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

namespace orvane::test {

/// Runs a shell command and stores its output as "stdout" and "stderr" in the folder.
inline int exitCodeOfShell(const TemporaryFolder& folder, const std::string& command) {
    const std::string redirected = "{ " + command + "; } >'" + (folder / "stdout").string() + "' 2>'"
                                   + (folder / "stderr").string() + "'";
    return WEXITSTATUS(std::system(redirected.c_str()));
}

/// A test of programs, with a folder for their files and their output.
class ProgramTest : public testing::Test {
  protected:
    /// Runs a shell command.
    [[nodiscard]] int exitCodeOfShell(const std::string& command) const {
        return test::exitCodeOfShell(folder, command);
    }
    // Of the last command.
    [[nodiscard]] std::string output() const { return contentOf(folder / "stdout"); }
    [[nodiscard]] std::string errors() const { return contentOf(folder / "stderr"); }

    const TemporaryFolder folder;
};

} // namespace orvane::test
