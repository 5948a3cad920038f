#pragma once

#include "dsp/realtime.h"
#include "platform/alsa/alsa_library.h"
#include "platform/alsa/configuration.h"
#include "platform/alsa/error_number.h"
#include "platform/alsa/sample_format.h"

#include <cstddef>
#include <span>
#include <vector>

namespace orvane::platform::alsa {

/// The settings of a configured PCM. A plain value.
struct PcmLayout {
    snd_pcm_access_t access = SND_PCM_ACCESS_RW_INTERLEAVED;
    SampleFormat format = SampleFormat::float32LE;
    /// In Hz.
    unsigned rate = 0;
    std::size_t channelCount = 0;
    /// In frames.
    std::size_t periodFrames = 0;
    /// The number of periods in the device's buffer.
    std::size_t periodCount = 0;
};

/// One configured direction of a device. Moves whole periods between the device and blocks of floats
/// (`channelCount` x `periodFrames`). Waits for a silent device for at most a fraction of a second, or a
/// second after a start. Owned by a stream; one thread at a time. Functions that return an error number are
/// real-time safe, except for the system calls by which alsa-lib accesses the device.
class Pcm final {
  public:
    Pcm(PcmHandle configured, Direction streamDirection, const PcmLayout& configuredLayout);

    [[nodiscard]] const PcmLayout& layout() const noexcept { return shape; }

    /// Makes both start simultaneously, if the device can.
    void link(Pcm& other);

    /// Drops all queued samples, in any state of the device.
    ORVANE_REALTIME void drop() noexcept;

    /// Makes a dropped PCM ready to start, with an empty queue.
    ORVANE_REALTIME ErrorNumber prepare() noexcept;

    /// Fills the buffer of a prepared playback PCM.
    ORVANE_REALTIME ErrorNumber fillWithSilence() noexcept;

    /// Starts a prepared PCM; one that is linked to a started one runs already.
    ORVANE_REALTIME ErrorNumber start() noexcept;

    /// Waits until the device has a captured period or room for one.
    ORVANE_REALTIME ErrorNumber wait() noexcept;

    /// Waits for a period of a running capture PCM.
    ORVANE_REALTIME ErrorNumber read(std::span<const std::span<float>> blocks) noexcept;

    /// Waits until a running playback PCM has taken a period.
    ORVANE_REALTIME ErrorNumber write(std::span<const std::span<float>> blocks) noexcept;

  private:
    [[nodiscard]] bool isInterleaved() const noexcept;
    [[nodiscard]] int patienceMs() const noexcept;
    ORVANE_REALTIME std::byte* firstSample(std::size_t channel) noexcept;
    ORVANE_REALTIME ErrorNumber movePeriod() noexcept;
    ORVANE_REALTIME snd_pcm_sframes_t move(std::size_t frame, std::size_t frameCount) noexcept;

    PcmHandle pcm;
    Direction direction;
    PcmLayout shape;
    /// The distance in bytes to the same channel's next sample.
    std::size_t frameStep;
    /// The distance in bytes to the next channel's sample of the same frame.
    std::size_t channelStep;
    /// How long a running device may take for a period before it counts as silent.
    int usualPatienceMs;
    /// Whether it has moved a period since the start.
    bool hasDelivered = false;
    /// One period in the device's format.
    std::vector<std::byte> samples;
    /// Scratch of `move`: the position of each channel's samples.
    std::vector<void*> channels;
};

} // namespace orvane::platform::alsa
