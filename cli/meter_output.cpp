#include "cli/meter_output.h"

#include "cli/printing.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string_view>
#include <thread>
#include <utility>

namespace orvane::cli {

namespace {

constexpr std::chrono::milliseconds longestEnding{200};

/// Returns an error number, or 0.
int writeWhole(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            // Another process that shares the descriptor has made it nonblocking.
            pollfd output{.fd = descriptor, .events = POLLOUT, .revents = 0};
            ::poll(&output, 1, -1);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

} // namespace

/// Shared with the thread, which may remain blocked in a write after the output is destroyed.
struct MeterOutput::State {
    explicit State(int writtenTo) : descriptor(writtenTo), isTerminal(::isatty(writtenTo) == 1) {}

    const int descriptor;
    const bool isTerminal;
    std::mutex mutex;
    std::condition_variable changed;
    std::string frame;
    bool isWriting = false;
    bool isOver = false;
    int error = 0;
};

MeterOutput::MeterOutput(int descriptor) : state(std::make_shared<State>(descriptor)) {
    std::thread([held = state] { writeFrames(*held); }).detach();
}

MeterOutput::~MeterOutput() {
    std::unique_lock lock(state->mutex);
    state->isOver = true;
    state->changed.notify_all();
    state->changed.wait_for(lock, longestEnding, [this] { return !state->isWriting; });
}

bool MeterOutput::write(std::string frame) {
    const std::scoped_lock lock(state->mutex);
    if (state->isWriting || state->error != 0) return false;
    state->frame = state->isTerminal ? terminalText(frame) : std::move(frame);
    state->isWriting = true;
    state->changed.notify_all();
    return true;
}

int MeterOutput::error() const {
    const std::scoped_lock lock(state->mutex);
    return state->error;
}

void MeterOutput::writeFrames(State& state) {
    std::unique_lock lock(state.mutex);
    while (true) {
        state.changed.wait(lock, [&state] { return state.isWriting || state.isOver; });
        if (!state.isWriting) return;
        lock.unlock();
        const int error = writeWhole(state.descriptor, state.frame);
        lock.lock();
        state.error = error;
        state.isWriting = false;
        state.changed.notify_all();
    }
}

} // namespace orvane::cli
