#pragma once

#include <unistd.h>

#include <utility>

namespace orvane::platform {

/// Owns a file descriptor and closes it. Movable; one thread at a time.
class FileDescriptor final {
  public:
    /// Takes ownership of a descriptor that open() or a similar call returned; a negative one is ignored.
    explicit FileDescriptor(int openedNumber) noexcept : descriptor(openedNumber) {}
    ~FileDescriptor() {
        if (isOpen()) ::close(descriptor);
    }
    FileDescriptor(FileDescriptor&& other) noexcept : descriptor(std::exchange(other.descriptor, -1)) {}
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    [[nodiscard]] bool isOpen() const noexcept { return descriptor >= 0; }

    /// The descriptor for system calls; negative if none is open.
    [[nodiscard]] int number() const noexcept { return descriptor; }

  private:
    int descriptor;
};

} // namespace orvane::platform
