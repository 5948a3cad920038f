#include "soak/operation.h"

#include "engine/buffer_sizes.h"

#include <algorithm>
#include <iterator>

namespace orvane::soak {

namespace {

platform::virtual_devices::VirtualDeviceControl someDevice(const Hands& h) {
    return *h.stage.driver->control(h.choices.of(h.stage.devices).uid);
}

/// A device that was listed at some time; it may be gone.
std::optional<audio::AudioDeviceInfo> someListedDevice(const Hands& h) {
    const auto& listed = h.state().availableDevices.get();
    return listed.empty() ? std::nullopt : std::optional(h.choices.of(listed));
}

/// Prefers large sizes: small ones take longest to simulate.
std::int64_t someBufferSize(const Hands& h) {
    std::size_t chosen = 0;
    for (int i = 0; i < 3; ++i)
        chosen = std::max(chosen, h.choices.below(std::size(engine::bufferSizes)));
    return engine::bufferSizes[chosen];
}

void plugAndUnplug(Hands& h) {
    platform::virtual_devices::VirtualDeviceControl device = someDevice(h);
    device.die();
    if (h.flag()) h.engine().refreshDevices();
    if (h.flag()) h.stage.settle();
    device.reappear();
    h.engine().refreshDevices();
}

/// Another program takes a device for a while.
void occupy(Hands& h) {
    platform::virtual_devices::VirtualDeviceControl device = someDevice(h);
    device.occupy();
    if (h.flag()) h.engine().stop();
    h.engine().start();
    device.release();
}

void misbehave(Hands& h) {
    constexpr std::uint32_t lengths[] = {1, 7, 64, 333, 2048, 4096};
    someDevice(h).runCyclesOf(h.choices.of(lengths));
}

constexpr Operation operations[] = {
    {"start", 10, true, [](Hands& h) { h.engine().start(); }},
    {"stop", 2, true, [](Hands& h) { h.engine().stop(); }},
    {"set the buffer size", 2, true, [](Hands& h) { h.engine().setBufferSize(someBufferSize(h)); }},
    {"set a wrong buffer size", 1, false, [](Hands& h) { h.engine().setBufferSize(h.channel()); }},
    {"look for devices", 1, false, [](Hands& h) { h.engine().refreshDevices(); }},
    {"select the first device", 2, true,
     [](Hands& h) {
         const auto& listed = h.state().availableDevices.get();
         if (!listed.empty()) h.engine().selectDevice(audio::AudioDeviceInfo(listed.front()));
     }},
    {"select a device", 1, true,
     [](Hands& h) {
         if (const auto device = someListedDevice(h)) h.engine().selectDevice(*device);
     }},
    {"select a master device", 1, true,
     [](Hands& h) { h.engine().selectMasterOutputDevice(h.flag() ? someListedDevice(h) : std::nullopt); }},
    {"unplug and plug", 1, true, plugAndUnplug},
    {"take a device away", 1, true, occupy},
    {"change a device's buffer size", 1, true,
     [](Hands& h) { someDevice(h).changeBufferSize(static_cast<std::uint32_t>(someBufferSize(h))); }},
    {"let a device misbehave", 1, true, misbehave},
    {"disturb the inputs", 3, false,
     [](Hands& h) {
         using enum Voices::Trouble;
         constexpr Voices::Trouble troubles[] = {none, none, none, silence, overload, denormal, notNumbers};
         h.choices.of(h.stage.devices).voices->set(h.choices.of(troubles));
     }},
    {"end all disturbances", 3, false,
     [](Hands& h) {
         for (const StageDevice& device : h.stage.devices)
             device.voices->set(Voices::Trouble::none);
     }},
};

} // namespace

std::span<const Operation> machineOperations() {
    return operations;
}

} // namespace orvane::soak
