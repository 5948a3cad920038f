#include "audio/buffer_size_watch.h"

#include "audio/buffer_size_negotiation.h"

#include <optional>
#include <span>
#include <utility>

namespace orvane::audio {

using namespace platform;

struct BufferSizeWatch::State {
    AudioHardware& hardware;
    AudioObjectID device;
    std::uint32_t requestedFrameSize;
    std::uint32_t lastReportedBufferFrameSize;
    Handler handler;

    void look() {
        const std::optional<std::uint32_t> now = readBufferSize(hardware, device);
        if (!now || *now == requestedFrameSize || *now == lastReportedBufferFrameSize) return;
        lastReportedBufferFrameSize = *now;
        if (handler) handler(*now);
    }
};

BufferSizeWatch::BufferSizeWatch(
    AudioHardware& audioHardware, AudioObjectID device, std::uint32_t requested, std::uint32_t agreed,
    Handler handler
)
    : hardware(audioHardware),
      state(std::make_shared<State>(State{audioHardware, device, requested, agreed, std::move(handler)})) {
    const auto registration = hardware.AudioObjectAddPropertyListenerBlock(
        device, bufferSizeAddress,
        [weakState = std::weak_ptr(state)](std::span<const AudioObjectPropertyAddress>) {
            if (const auto alive = weakState.lock()) alive->look();
        }
    );
    if (registration.status == noErr) bufferSizeListener = registration.listener;
}

BufferSizeWatch::~BufferSizeWatch() {
    if (bufferSizeListener != 0) hardware.AudioObjectRemovePropertyListenerBlock(bufferSizeListener);
}

} // namespace orvane::audio
