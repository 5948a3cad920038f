#include "platform/alsa/alsa_stream.h"

#include "platform/base/flush_denormals.h"

#include <poll.h>
#include <unistd.h>

#include <system_error>
#include <utility>

namespace orvane::platform::alsa {

namespace {

/// How many consecutive failures make the device count as dead.
constexpr int mostFailuresInARow = 10;
/// A device that stays silent for its whole patience after a restart counts as five failures.
constexpr int failuresOfASilence = 5;
constexpr int pauseAfterFailedRestartMs = 100;

} // namespace

AlsaStream::Blocks::Blocks(std::size_t channelCount, std::size_t frameCount)
    : samples(channelCount, frameCount) {
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        writable.push_back(samples[channel]);
        readable.emplace_back(samples[channel]);
    }
}

AlsaStream::AlsaStream(
    Duplex openDevice, AudioStreamClient& streamClient, std::function<void()> died,
    std::shared_ptr<const void> deviceLease, PriorityLender* priorityLender
)
    : lease(std::move(deviceLease)),
      device(std::move(openDevice)),
      client(streamClient),
      tellDeath(std::move(died)),
      lender(priorityLender),
      inputs(device.inputChannelCount(), device.periodFrames()),
      outputs(device.outputChannelCount(), device.periodFrames()) {}

AlsaStream::~AlsaStream() {
    stop();
}

OSStatus AlsaStream::start() {
    if (thread.joinable() && !dead.load()) return noErr;
    if (!stop()) return kAudioHardwareUnspecifiedError;
    if (const ErrorNumber error = device.prepare()) return statusOf(error);
    gate.open();
    stopping = false;
    dead = false;
    xruns = 0;
    threadId = 0;
    try {
        thread = std::thread([this] { run(); });
    } catch (const std::system_error&) {
        return kAudioHardwareUnspecifiedError;
    }
    threadId.wait(0);
    if (lender != nullptr && priority == 0) priority = lender->lend(threadId);
    return noErr;
}

bool AlsaStream::stop() {
    if (!thread.joinable()) return true;
    stopping = true;
    if (!gate.close()) {
        thread.detach();
        return false;
    }
    thread.join();
    priority = 0;
    device.drop();
    return true;
}

std::uint32_t AlsaStream::xrunCount() const noexcept {
    return xruns.load(std::memory_order_relaxed);
}

int AlsaStream::realtimePriority() const noexcept {
    return dead.load() ? 0 : priority.load(std::memory_order_relaxed);
}

void AlsaStream::run() noexcept {
    pthread_setname_np(pthread_self(), "orvane-alsa");
    priority = takeRealtimePriority();
    threadId = ::gettid();
    threadId.notify_one();
    dead = !turnUntilStopped();
    if (dead) tellDeath();
}

/// Returns false if the device has died.
bool AlsaStream::turnUntilStopped() noexcept {
    const FlushDenormals flush;
    ErrorNumber error = device.start();
    for (int failures = 0; !stopping.load(std::memory_order_relaxed);) {
        if (error == 0) error = turn();
        if (error == 0) {
            failures = 0;
            continue;
        }
        failures += error == -ETIMEDOUT ? failuresOfASilence : 1;
        if (error == -ENODEV || failures >= mostFailuresInARow) return false;
        error = restart();
    }
    return true;
}

ErrorNumber AlsaStream::turn() noexcept {
    if (const ErrorNumber error = device.read(inputs.writable)) return error;
    const bool goesOn =
        gate.pass([this] { client.cycle(inputs.readable, outputs.writable, device.periodFrames()); });
    // The stream is stopping or has been abandoned.
    if (!goesOn) return 0;
    const ErrorNumber error = device.write(outputs.writable);
    // The device delivered a moment ago, so the cycle took too long: however often that happens, it is not a
    // failure of the device.
    return error == -EPIPE ? restart() : error;
}

ErrorNumber AlsaStream::restart() noexcept {
    xruns.fetch_add(1, std::memory_order_relaxed);
    ErrorNumber error = device.prepare();
    if (error == 0) error = device.start();
    // A suspended device needs time to wake up, and a broken one must not keep this thread busy.
    if (error != 0) poll(nullptr, 0, pauseAfterFailedRestartMs);
    return error;
}

} // namespace orvane::platform::alsa
