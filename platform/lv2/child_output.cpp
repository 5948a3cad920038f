#include "platform/lv2/child_output.h"

#include "platform/base/file_descriptor.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <optional>
#include <thread>
#include <utility>

namespace orvane::platform::lv2 {

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

/// How often a wait checks its end conditions.
constexpr auto interval = 20ms;
/// How long to wait for a killed child before giving it up: a process that waits for a dead disk cannot end.
constexpr auto longestEnding = 500ms;

/// A running child; the destructor kills and reaps it.
class Child final {
  public:
    Child(pid_t startedProcess, FileDescriptor readEnd)
        : process(startedProcess), output(std::move(readEnd)) {}
    ~Child() {
        if (isReaped) return;
        ::kill(process, SIGKILL);
        const auto end = Clock::now() + longestEnding;
        while (!reap() && Clock::now() < end)
            std::this_thread::sleep_for(1ms);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    /// Returns the wait status once the child has ended.
    std::optional<int> reap() {
        int status = 0;
        const pid_t reaped = ::waitpid(process, &status, WNOHANG);
        if (reaped == 0 || (reaped < 0 && errno == EINTR)) return std::nullopt;
        isReaped = true;
        // If the program ignores SIGCHLD there is no status, and the output alone decides.
        return reaped == process ? status : 0;
    }

    [[nodiscard]] int outputDescriptor() const { return output.number(); }

  private:
    pid_t process;
    FileDescriptor output;
    bool isReaped = false;
};

/// The child's standard output is its end of the pipe; its only other open file is /dev/null.
std::optional<pid_t>
spawn(const std::filesystem::path& program, const std::vector<std::string>& arguments, int writeEnd) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, writeEnd, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    std::vector<std::string> words{program.native()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    pid_t process = 0;
    const int error = posix_spawn(&process, program.c_str(), &actions, &attributes, pointers.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? std::optional(process) : std::nullopt;
}

/// Appends what can be read now. Returns false at the end of the output.
bool readSome(int descriptor, std::vector<std::uint8_t>& output) {
    std::array<std::uint8_t, 65536> chunk{};
    const ssize_t count = ::read(descriptor, chunk.data(), chunk.size());
    if (count < 0) return errno == EINTR || errno == EAGAIN;
    output.insert(output.end(), chunk.begin(), chunk.begin() + count);
    return count > 0;
}

ChildFailure endedBadly(int status) {
    if (WIFSIGNALED(status)) return {fmt::format("reading it crashes (signal {})", WTERMSIG(status)), true};
    return {fmt::format("reading it fails (exit code {})", WEXITSTATUS(status)), true};
}

} // namespace

Result<std::vector<std::uint8_t>, ChildFailure> outputOfChild(
    const std::filesystem::path& program, const std::vector<std::string>& arguments,
    const ChildLimits& limits, const std::stop_token& stop
) {
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0) return ChildFailure{"the system has no files left to read it with"};
    FileDescriptor readEnd(ends[0]);
    std::optional<FileDescriptor> writeEnd(std::in_place, ends[1]);
    const auto process = spawn(program, arguments, ends[1]);
    writeEnd.reset();
    if (!process) return ChildFailure{fmt::format("{} cannot be started", program.native())};
    Child child(*process, std::move(readEnd));

    std::vector<std::uint8_t> output;
    const auto deadline = Clock::now() + limits.time;
    bool isOpen = true;
    while (true) {
        if (stop.stop_requested()) return ChildFailure{"the program is closing"};
        if (Clock::now() >= deadline)
            return ChildFailure{fmt::format(
                "reading it takes longer than {} s", std::chrono::duration<double>(limits.time).count()
            )};
        if (output.size() > limits.outputBytes) return ChildFailure{"it describes too much", true};
        if (isOpen) {
            pollfd readable{.fd = child.outputDescriptor(), .events = POLLIN, .revents = 0};
            if (::poll(&readable, 1, static_cast<int>(interval.count())) > 0)
                isOpen = readSome(child.outputDescriptor(), output);
            continue;
        }
        if (const auto status = child.reap()) {
            if (*status != 0) return endedBadly(*status);
            return output;
        }
        std::this_thread::sleep_for(1ms);
    }
}

} // namespace orvane::platform::lv2
