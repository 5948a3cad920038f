#pragma once

#include "platform/audio_hardware.h"
#include "platform/host_clock.h"
#include "platform/main_thread.h"

namespace orvane::engine {

/// The platform services that an engine works with. Made by the composition root; all outlive the engine.
struct Services {
    platform::AudioHardware& audioHardware;
    platform::MainThread& mainThread;
    platform::HostClock clock = platform::HostClock::system();
};

} // namespace orvane::engine
