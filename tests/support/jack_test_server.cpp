#include "support/jack_test_server.h"

#include "platform/base/file_descriptor.h"
#include "support/server_process.h"
#include "support/wait_for.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

namespace orvane::test {

namespace {

constexpr const char* nameVariable = "JACK_DEFAULT_SERVER";
constexpr const char* clientTimeoutInMs = "3000";

std::string socketPath(const std::string& serverName) {
    return "/dev/shm/jack_" + serverName + "_" + std::to_string(::getuid()) + "_0";
}

/// Checks for a server as libjack does, but without opening a client: clients that close right after opening
/// can hang libjack.
bool canConnect(const std::string& path) {
    const platform::FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    return ::connect(socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
}

/// Killed servers leave their files behind, and so do their clients.
void removeFilesOf(const std::string& serverName) {
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm", ignored))
        if (entry.path().filename().string().find("_" + serverName + "_") != std::string::npos)
            std::filesystem::remove(entry.path(), ignored);
}

} // namespace

JackServerName::JackServerName() : name("orvane_test_" + std::to_string(::getpid())) {
    ::setenv(nameVariable, name.c_str(), 1);
    ::setenv("JACK_NO_AUDIO_RESERVATION", "1", 1);
}

JackServerName::~JackServerName() {
    ::unsetenv(nameVariable);
}

JackTestServer::JackTestServer(Format serverFormat, std::uint32_t portCount)
    : format(serverFormat), mostPorts(portCount) {
    restart();
}

JackTestServer::~JackTestServer() {
    // A computer has room for eight servers. A killed one occupies its place until another of its name ends
    // regularly.
    if (process < 0) launch();
    if (waitUntilReady()) end(SIGTERM);
    removeFilesOf(name.text());
}

void JackTestServer::send(int signal) const {
    ::kill(process, signal);
}

void JackTestServer::restart(std::optional<std::uint32_t> sampleRate) {
    format.sampleRate = sampleRate.value_or(format.sampleRate);
    // Servers that start simultaneously can conflict over their shared registry.
    for (int attempt = 0; attempt < 3; ++attempt) {
        launch();
        if (waitUntilReady()) return;
    }
    throw std::runtime_error(
        "No JACK server could be started; install the package jackd2, and see whether the command "
        "\"jackd -d dummy\" works."
    );
}

void JackTestServer::launch() {
    const std::string channels = std::to_string(format.channelCount);
    std::vector<std::string> words{"jackd",     "-n",
                                   name.text(), "--no-realtime",
                                   "-t",        clientTimeoutInMs,
                                   "-p",        std::to_string(mostPorts)};
    if (format.waitsForClients) words.emplace_back("--sync");
    words.insert(
        words.end(), {"-d", "dummy", "-r", std::to_string(format.sampleRate), "-p",
                      std::to_string(format.period), "-C", channels, "-P", channels}
    );
    process = startServer(std::move(words));
}

bool JackTestServer::waitUntilReady() {
    return waitFor([this] { return hasEnded() || canConnect(socketPath(name.text())); }) && process > 0;
}

bool JackTestServer::hasEnded() {
    if (process > 0 && ::waitpid(process, nullptr, WNOHANG) == 0) return false;
    process = -1;
    return true;
}

void JackTestServer::end(int signal) {
    if (process < 0) return;
    ::kill(process, signal);
    ::waitpid(process, nullptr, 0);
    process = -1;
}

} // namespace orvane::test
