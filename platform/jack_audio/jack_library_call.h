#pragma once

#include <csignal>
#include <mutex>

namespace orvane::platform {

/// While it lives, the calling thread alone calls libjack, and a write to the socket of a server that has
/// just shut down does not end the program. Any thread but libjack's own.
class JackLibraryCall final {
  public:
    explicit JackLibraryCall(std::mutex& libraryMutex);
    ~JackLibraryCall();
    JackLibraryCall(const JackLibraryCall&) = delete;
    JackLibraryCall& operator=(const JackLibraryCall&) = delete;

  private:
    std::scoped_lock<std::mutex> lock;
    sigset_t maskBefore{};
};

} // namespace orvane::platform
