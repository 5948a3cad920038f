#pragma once

#include <unistd.h>

#include <utility>

namespace orvane::platform {

/// Owns an open file of the system and closes it. Movable, one thread at a time.
class FileDescriptor final {
  public:
    /// Takes over what open() and its kin returned; a negative number owns nothing.
    explicit FileDescriptor(int openedNumber) noexcept : descriptor(openedNumber) {}
    ~FileDescriptor() {
        if (isOpen()) ::close(descriptor);
    }
    FileDescriptor(FileDescriptor&& other) noexcept : descriptor(std::exchange(other.descriptor, -1)) {}
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    [[nodiscard]] bool isOpen() const noexcept { return descriptor >= 0; }

    /// The number to hand to system calls; negative where nothing is open.
    [[nodiscard]] int number() const noexcept { return descriptor; }

  private:
    int descriptor;
};

} // namespace orvane::platform
