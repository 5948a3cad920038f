#pragma once

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

namespace orvane::test {

/// Starts a program without standard streams that ends with the test; returns its process id.
inline pid_t startServer(std::vector<std::string> words) {
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const pid_t process = ::fork();
    if (process != 0) return process;
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    const int nowhere = ::open("/dev/null", O_RDWR);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        ::dup2(nowhere, stream);
    ::execvp(arguments.front(), arguments.data());
    ::_exit(EXIT_FAILURE);
}

/// Waits for a child process; returns its exit code, or -1 if a signal ended it.
inline int exitCodeOf(pid_t process) {
    int status = -1;
    ::waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// The exit code of a copy of this process that does `work`; EXIT_SUCCESS if `work` returns.
template <class Work>
int exitCodeOfChild(Work work) {
    const pid_t child = ::fork();
    if (child != 0) return exitCodeOf(child);
    work();
    ::_exit(EXIT_SUCCESS);
}

} // namespace orvane::test
