#include "timed_driver.h"

#include <utility>
#include <vector>

namespace orvane::bench {

namespace {

using namespace platform;

/// Stands between a stream and its client.
class TimedClient final : public AudioStreamClient {
  public:
    TimedClient(AudioStreamClient& timedClient, CycleTimes& cycleTimes)
        : client(timedClient), times(cycleTimes) {}

    void cycle(
        std::span<const std::span<const float>> inputs, std::span<const std::span<float>> outputs,
        std::size_t frameCount
    ) noexcept override {
        const auto begun = CycleTimes::Moment::now();
        client.cycle(inputs, outputs, frameCount);
        times.add(begun, CycleTimes::Moment::now(), frameCount);
    }

  private:
    AudioStreamClient& client;
    CycleTimes& times;
};

/// A stream and its timed client, which outlives it.
class TimedStream final : public AudioStream {
  public:
    TimedStream(std::unique_ptr<TimedClient> timedClient, std::unique_ptr<AudioStream> opened)
        : client(std::move(timedClient)), stream(std::move(opened)) {}

    OSStatus start() override { return stream->start(); }
    bool stop() override { return stream->stop(); }
    [[nodiscard]] std::size_t maximumFrames() const override { return stream->maximumFrames(); }
    [[nodiscard]] std::uint32_t xrunCount() const noexcept override { return stream->xrunCount(); }
    [[nodiscard]] int realtimePriority() const noexcept override { return stream->realtimePriority(); }

  private:
    std::unique_ptr<TimedClient> client;
    std::unique_ptr<AudioStream> stream;
};

class TimedDriver final : public AudioDriver {
  public:
    TimedDriver(std::unique_ptr<AudioDriver> timedDriver, CycleTimes& cycleTimes)
        : driver(std::move(timedDriver)), times(cycleTimes) {}

    [[nodiscard]] std::string_view name() const override { return driver->name(); }
    std::vector<AudioDriverDevice> devices() override { return driver->devices(); }
    Result<std::uint32_t, OSStatus> bufferSize(std::string_view uid) override {
        return driver->bufferSize(uid);
    }
    OSStatus requestBufferSize(std::string_view uid, std::uint32_t frameCount) override {
        return driver->requestBufferSize(uid, frameCount);
    }
    Result<std::unique_ptr<AudioStream>, OSStatus>
    open(std::string_view uid, bool enableInput, AudioStreamClient& client) override {
        auto timedClient = std::make_unique<TimedClient>(client, times);
        auto stream = driver->open(uid, enableInput, *timedClient);
        if (!stream) return stream.error();
        return std::unique_ptr<AudioStream>(
            std::make_unique<TimedStream>(std::move(timedClient), std::move(stream).value())
        );
    }
    std::unique_ptr<AudioDeviceWatch> watch(std::string_view uid, Listener listener) override {
        return driver->watch(uid, std::move(listener));
    }

  private:
    std::unique_ptr<AudioDriver> driver;
    CycleTimes& times;
};

} // namespace

std::unique_ptr<AudioDriver> timed(std::unique_ptr<AudioDriver> driver, CycleTimes& times) {
    return std::make_unique<TimedDriver>(std::move(driver), times);
}

} // namespace orvane::bench
