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

/// What a PCM was configured to. A plain value.
struct PcmLayout {
    snd_pcm_access_t access = SND_PCM_ACCESS_RW_INTERLEAVED;
    SampleFormat format = SampleFormat::float32LE;
    /// In Hz.
    unsigned rate = 0;
    std::size_t channelCount = 0;
    /// In frames.
    std::size_t periodFrames = 0;
    /// The periods that the device's buffer holds.
    std::size_t periodCount = 0;
};

/// One direction of a device, configured. Moves whole periods between the device and blocks of floats
/// (`channelCount` x `periodFrames`) and never waits for a silent device longer than a fraction of a second,
/// a second after a start. Owned by a stream and used by one thread at a time. Whatever returns an error
/// number is real-time safe but for the system calls by which alsa-lib reaches the device.
class Pcm final {
  public:
    Pcm(PcmHandle configured, Direction streamDirection, const PcmLayout& configuredLayout);

    [[nodiscard]] const PcmLayout& layout() const noexcept { return shape; }

    /// Has the two start at the same instant, where the device can.
    void link(Pcm& other);

    /// Drops what is queued, from whatever state the device is in.
    ORVANE_REALTIME void drop() noexcept;

    /// Makes a dropped PCM ready to start, with nothing queued.
    ORVANE_REALTIME ErrorNumber prepare() noexcept;

    /// Fills the buffer of a prepared playback PCM.
    ORVANE_REALTIME ErrorNumber fillWithSilence() noexcept;

    /// Starts a prepared PCM; one that is linked to a started one runs already.
    ORVANE_REALTIME ErrorNumber start() noexcept;

    /// Waits until the device has a period to give or room for one.
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
    /// Bytes from a sample to the same channel's next one.
    std::size_t frameStep;
    /// Bytes from a sample to the next channel's of the same frame.
    std::size_t channelStep;
    /// How long a running device may take for a period before it counts as silent.
    int usualPatienceMs;
    /// Whether it has moved a period since it was started.
    bool hasDelivered = false;
    /// One period in the device's format.
    std::vector<std::byte> samples;
    /// Scratch of `move`: where each channel's samples are.
    std::vector<void*> channels;
};

} // namespace orvane::platform::alsa
