#pragma once

#include <sys/resource.h>

#include <csignal>

namespace orvane::test {

/// Limits files of this process to `bytes` while it lives, as if the disk were full.
class FileSizeLimit final {
  public:
    explicit FileSizeLimit(rlim_t bytes) : handlerBefore(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit{bytes, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handlerBefore);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    rlimit before{};
    void (*handlerBefore)(int);
};

} // namespace orvane::test
