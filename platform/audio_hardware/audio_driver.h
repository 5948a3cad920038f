#pragma once

#include "dsp/realtime.h"
#include "platform/base/os_status.h"
#include "platform/base/result.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::platform {

/// One device as a driver lists it. A plain value.
struct AudioDriverDevice {
    /// Names the driver and the device, stable across reconnections and reboots: "jack:system".
    std::string uid;
    /// For people.
    std::string name;
    std::size_t inputChannelCount = 0;
    std::size_t outputChannelCount = 0;
    /// In Hz.
    double sampleRate = 0.0;

    bool operator==(const AudioDriverDevice&) const = default;
};

/// Receives and fills the blocks of a running stream.
class AudioStreamClient {
  public:
    virtual ~AudioStreamClient() = default;

    /// One cycle. `inputs` are the device's input channels, empty if input is not enabled; must fill all of
    /// `outputs`, the device's output channels. Every block has `frameCount` frames, which may differ from
    /// the device's buffer size but never exceeds the stream's `maximumFrames`. I/O thread of the stream,
    /// real-time safe.
    ORVANE_REALTIME virtual void cycle(
        std::span<const std::span<const float>> inputs, std::span<const std::span<float>> outputs,
        std::size_t frameCount
    ) noexcept = 0;

    /// Called before opening or starting the stream fails, with the reason as one sentence for people, if the
    /// driver knows more than its status says. Main thread.
    virtual void explainFailure(std::string_view /*reason*/) {}
};

/// An open device. Destroying it stops and closes the device. Main thread.
class AudioStream {
  public:
    virtual ~AudioStream() = default;

    /// Lets cycles run; `noErr` if they run now or did already. The I/O thread flushes denormals and has
    /// real-time priority if the system grants it.
    virtual OSStatus start() = 0;

    /// Ends the cycles, also of a device that has died: no cycle runs when it returns and none comes after.
    /// Returns false if the cycle under way did not return within `stopPatience`: then the stream is
    /// abandoned, and it, its client and everything that the cycle uses must never be freed.
    virtual bool stop() = 0;

    /// The longest possible cycle, in frames; fixed while the stream is open.
    [[nodiscard]] virtual std::size_t maximumFrames() const = 0;

    /// Cycles that came late or lost samples since the last start. Any thread.
    [[nodiscard]] virtual std::uint32_t xrunCount() const noexcept = 0;

    /// The real-time priority of the I/O thread, 0 if it has none or does not run yet. Any thread.
    [[nodiscard]] virtual int realtimePriority() const noexcept = 0;
};

/// What has changed about a device.
enum class AudioDeviceChange {
    /// Its buffer size, whichever program requested it.
    bufferSize,
    /// Its sample rate; a stream that is open runs on at the new one.
    sampleRate,
    /// Some channels of its stream are silent for good while others go on: one of the interfaces that it
    /// consists of is gone. Reported once per stream.
    lostChannels,
    /// It is gone: unplugged, or its server has shut down.
    died,
};

/// A subscription to the changes of one device. Its destructor waits for a call of the listener under way; no
/// call comes after. Must not be destroyed from within its listener.
class AudioDeviceWatch {
  public:
    virtual ~AudioDeviceWatch() = default;
};

/// One kind of audio hardware or sound server. Main thread unless stated otherwise; must outlive its streams
/// and watches. No call throws: if a device or its server is gone, lists are empty and calls return a status.
class AudioDriver {
  public:
    using Listener = std::function<void(AudioDeviceChange)>;

    virtual ~AudioDriver() = default;

    /// The word that its uids begin with, before the colon.
    [[nodiscard]] virtual std::string_view name() const = 0;

    /// The devices that are present now, in a stable order.
    virtual std::vector<AudioDriverDevice> devices() = 0;

    /// The device as it is now; absent if it is not present.
    virtual std::optional<AudioDriverDevice> device(std::string_view uid) {
        const std::vector<AudioDriverDevice> listed = devices();
        const auto found = std::ranges::find(listed, uid, &AudioDriverDevice::uid);
        return found == listed.end() ? std::nullopt : std::optional(*found);
    }

    /// The frames per cycle that the device runs at, or would if it were opened now. Any thread.
    virtual Result<std::uint32_t, OSStatus> bufferSize(std::string_view uid) = 0;

    /// Requests another buffer size. `noErr` means that the request was accepted, not that it was granted:
    /// read it back.
    virtual OSStatus requestBufferSize(std::string_view uid, std::uint32_t frameCount) = 0;

    /// Opens a device with all its output channels and, if `enableInput`, all its input channels, at its
    /// buffer size. `client` must outlive the stream. Fails with a status if the device is gone, busy or
    /// refuses.
    virtual Result<std::unique_ptr<AudioStream>, OSStatus>
    open(std::string_view uid, bool enableInput, AudioStreamClient& client) = 0;

    /// Calls `listener` at every change of the device, on the driver's own thread, never on an audio thread.
    virtual std::unique_ptr<AudioDeviceWatch> watch(std::string_view uid, Listener listener) = 0;
};

} // namespace orvane::platform
