#pragma once

#include <fcntl.h>
#include <sys/prctl.h>
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

} // namespace orvane::test
