#pragma once

#include <cstddef>

namespace orvane::test {

/// While one stands, this thread's calls that change files are counted, and the one of that number (the first
/// is 0) goes wrong. Such calls are open for writing, mkdir, write, fsync, fchmod, ftruncate and rename. One
/// at a time.
class FileFault final {
  public:
    /// What becomes of the call: an error number, or `kill`, which ends the process in its middle.
    static constexpr int kill = -1;

    FileFault(std::size_t call, int outcome);
    ~FileFault();
    FileFault(const FileFault&) = delete;
    FileFault& operator=(const FileFault&) = delete;

    /// Whether the call was reached.
    [[nodiscard]] bool hasHappened() const noexcept;
};

} // namespace orvane::test
