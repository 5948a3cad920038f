#pragma once

#include "platform/audio_hardware/audio_hardware.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace orvane::audio {

/// Tells when a running device's buffer size changes to one that nobody here asked for. Each foreign size is
/// told once in a row; a return to the requested one neither counts nor makes a foreign one new again.
/// Destroying it unregisters it; a notification that comes later finds nothing. Owned by a device's I/O
/// engine. Main thread.
class BufferSizeWatch final {
  public:
    /// Called with the new size in frames on the hardware layer's notification thread.
    using Handler = std::function<void(std::uint32_t frameCount)>;

    /// `requested`: the size asked for; `agreed`: the one the device runs at, taken as told. `handler`
    /// may be empty. A device that cannot be listened to is never told of.
    BufferSizeWatch(
        platform::AudioHardware& audioHardware, platform::AudioObjectID device, std::uint32_t requested,
        std::uint32_t agreed, Handler handler
    );
    ~BufferSizeWatch();
    BufferSizeWatch(const BufferSizeWatch&) = delete;
    BufferSizeWatch& operator=(const BufferSizeWatch&) = delete;

  private:
    struct State;

    platform::AudioHardware& hardware;
    /// The listener holds it weakly: the only thing that a late notification can touch.
    std::shared_ptr<State> state;
    platform::AudioObjectPropertyListenerID bufferSizeListener = 0;
};

} // namespace orvane::audio
