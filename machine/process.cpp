#include "machine/process.h"

#include "platform/base/abandoned.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace orvane::machine {

namespace {

/// Opens the descriptors of closed standard streams, so that no file opened later takes one of them and
/// receives the program's output.
void occupyStandardStreams() {
    int descriptor = -1;
    do
        // Read-only, so that writing to it still fails.
        descriptor = ::open("/dev/null", O_RDONLY);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0) ::close(descriptor);
}

} // namespace

void prepareProcess() {
    occupyStandardStreams();
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    const mode_t wanted = ::umask(S_IWOTH);
    ::umask(wanted | S_IWOTH);
}

void endIfAbandoned(int exitCode) {
    if (!platform::isAnythingAbandoned()) return;
    std::fflush(nullptr);
    std::_Exit(exitCode);
}

} // namespace orvane::machine
