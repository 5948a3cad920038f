#include "platform/pipewire/pipewire_socket.h"

#include "platform/base/file_descriptor.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>

namespace orvane::platform::pipewire {

namespace {

/// The first of the variables that holds anything.
std::optional<std::string> firstInEnvironment(std::initializer_list<const char*> names) {
    for (const char* name : names)
        if (const char* const value = std::getenv(name); value != nullptr && *value != '\0') return value;
    return std::nullopt;
}

/// Empty if the environment does not lead to one.
std::string socketPath() {
    const std::filesystem::path remote = firstInEnvironment({"PIPEWIRE_REMOTE"}).value_or("pipewire-0");
    if (remote.is_absolute()) return remote;
    const auto folder = firstInEnvironment({"PIPEWIRE_RUNTIME_DIR", "XDG_RUNTIME_DIR"});
    if (!folder) return {};
    return std::filesystem::path(*folder) / remote;
}

} // namespace

bool isPipeWireRunning() {
    const std::string path = socketPath();
    sockaddr_un address{};
    if (path.empty() || path.size() >= sizeof(address.sun_path)) return false;
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, path.size());
    // A server that has crashed leaves its socket behind, but takes no connection. One that is busy would
    // keep a blocking socket waiting.
    const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const auto* const end = reinterpret_cast<const sockaddr*>(&address);
    return ::connect(socket.number(), end, sizeof(address)) == 0 || errno == EAGAIN;
}

} // namespace orvane::platform::pipewire
