#pragma once

#include "support/temporary_folder.h"

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

} // namespace orvane::test
