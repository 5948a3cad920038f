#include "machine/process.h"

#include <sys/stat.h>

#include <csignal>

namespace orvane::machine {

void prepareProcess() {
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    const mode_t wanted = ::umask(S_IWOTH);
    ::umask(wanted | S_IWOTH);
}

} // namespace orvane::machine
