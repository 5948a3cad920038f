#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace orvane::test {

/// While it lives, counts this thread's calls that change files and makes number `call` (the first is 0)
/// and the next `howMany` - 1 calls fail. Counted are open for writing, mkdir, write, fsync,
/// fchmod, ftruncate, linkat and rename. One at a time.
class FileFault final {
  public:
    /// The outcome of the call: an errno value, or `kill`, which ends the process during the call.
    static constexpr int kill = -1;

    FileFault(std::size_t call, int outcome, std::size_t howMany = 1);
    ~FileFault();
    FileFault(const FileFault&) = delete;
    FileFault& operator=(const FileFault&) = delete;

    /// Whether the call was reached.
    [[nodiscard]] bool hasHappened() const noexcept;
};

/// While it lives, records the names of this thread's calls that change files; fsync as "fsync file" or
/// "fsync folder". One at a time.
class FileCalls final {
  public:
    FileCalls();
    ~FileCalls();
    FileCalls(const FileCalls&) = delete;
    FileCalls& operator=(const FileCalls&) = delete;

    [[nodiscard]] std::vector<std::string> names() const;
};

} // namespace orvane::test
