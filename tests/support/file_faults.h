#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace orvane::test {

/// While one stands, this thread's calls that change files are counted, and the one of that number (the first
/// is 0) goes wrong, and so do those that follow it if more than one is to. Such calls are open for writing,
/// mkdir, write, fsync, fchmod, ftruncate, linkat and rename. One at a time.
class FileFault final {
  public:
    /// What becomes of the call: an error number, or `kill`, which ends the process in its middle.
    static constexpr int kill = -1;

    FileFault(std::size_t call, int outcome, std::size_t howMany = 1);
    ~FileFault();
    FileFault(const FileFault&) = delete;
    FileFault& operator=(const FileFault&) = delete;

    /// Whether the call was reached.
    [[nodiscard]] bool hasHappened() const noexcept;
};

/// While one stands, this thread's calls that change files are kept by name, those of fsync as "fsync file"
/// or "fsync folder". One at a time.
class FileCalls final {
  public:
    FileCalls();
    ~FileCalls();
    FileCalls(const FileCalls&) = delete;
    FileCalls& operator=(const FileCalls&) = delete;

    [[nodiscard]] std::vector<std::string> names() const;
};

} // namespace orvane::test
