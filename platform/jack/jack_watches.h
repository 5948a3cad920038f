#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "platform/audio_hardware/device_watches.h"
#include "platform/jack/jack_events.h"
#include "platform/jack/jack_server.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace orvane::platform::jack {

/// The watches of the driver, and the thread that works out what the server's events mean for their devices.
class JackWatches final {
  public:
    JackWatches(JackEvents& serverEvents, JackServer& jackServer);
    ~JackWatches();
    JackWatches(const JackWatches&) = delete;
    JackWatches& operator=(const JackWatches&) = delete;

    /// Any thread. The death of a device that is not there is reported.
    std::unique_ptr<AudioDeviceWatch> add(std::string_view uid, AudioDriver::Listener listener);

    /// Reports the loss of these ports from now on, and of no other ports of the device: a stream is about to
    /// be connected to them. Any thread.
    void watchPorts(const JackDevice& connected);

    /// Reports changes of devices that had died and are there again. Any thread.
    void rearm(const JackServerState& state);

  private:
    struct WatchedDevice {
        bool isAlive = true;
        bool hasAllChannels = true;
        /// The ports that the stream on it is connected to, once there is one.
        std::optional<JackDevice> connected = {};
    };

    void run();
    void notifyAll(AudioDeviceChange change);
    void notifyLosses(bool isServerGone);
    static std::optional<AudioDeviceChange>
    lossOf(std::string_view uid, const WatchedDevice& device, const JackServerState& state);

    JackEvents& events;
    JackServer& server;
    DeviceWatches watches;
    std::mutex mutex;
    std::map<std::string, WatchedDevice, std::less<>> devices;
    std::thread thread;
};

} // namespace orvane::platform::jack
