#include "platform/virtual/stream_cycles.h"

#include "platform/virtual/virtual_endpoints.h"

#include <system_error>

namespace orvane::platform::virtual_devices {

namespace {

template <class Side>
Result<Done> startOf(Side& side, VirtualPacing pacing) {
    try {
        return side.start(pacing);
    } catch (const std::system_error&) {
        return Error{"The system has no threads left to read and write the sound with."};
    }
}

} // namespace

StreamCycles::StreamCycles(
    VirtualDeviceState& openedDevice, bool enableInput, AudioStreamClient& streamClient, SystemLog& systemLog
)
    : device(openedDevice),
      deathsBefore(device.deaths.load()),
      input(enableInput ? device.device.input.get() : nullptr),
      output(device.device.output.get()),
      client(streamClient),
      log(systemLog),
      inputBlocks(enableInput ? device.device.description.inputChannelCount : 0, longestVirtualBuffer),
      outputBlocks(device.device.description.outputChannelCount, longestVirtualBuffer) {
    device.isOpen = true;
}

StreamCycles::~StreamCycles() {
    device.isOpen = false;
}

OSStatus StreamCycles::begin(VirtualPacing pacing) {
    gate.open();
    if (input != nullptr)
        if (const auto started = startOf(*input, pacing); !started) return refuse(started.error());
    if (output != nullptr) {
        if (const auto started = startOf(*output, pacing); !started) {
            if (input != nullptr) input->stop();
            return refuse(started.error());
        }
    }
    return noErr;
}

void StreamCycles::end() {
    if (input != nullptr) input->stop();
    if (output != nullptr) output->stop();
}

bool StreamCycles::run(std::size_t frameCount) noexcept {
    if (input != nullptr) input->fill(inputBlocks.writable(frameCount));
    const bool goesOn = gate.pass([&] {
        client.cycle(inputBlocks.readable(frameCount), outputBlocks.writable(frameCount), frameCount);
    });
    if (goesOn && output != nullptr) output->take(outputBlocks.readable(frameCount));
    return goesOn;
}

OSStatus StreamCycles::refuse(const Error& why) {
    log.post(
        LogLevel::error, virtualAudioLogCategory,
        {device.device.description.name, " does not start. ", why.description}
    );
    client.explainFailure(why.description);
    return kAudioHardwareUnspecifiedError;
}

} // namespace orvane::platform::virtual_devices
