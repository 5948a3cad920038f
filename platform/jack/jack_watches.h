#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "platform/jack/jack_events.h"
#include "platform/jack/jack_server.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <thread>
#include <vector>

namespace orvane::platform::jack {

/// The watches of a driver and the thread that tells them what the server's events mean for their devices.
class JackWatches final {
  public:
    JackWatches(JackEvents& serverEvents, JackServer& jackServer);
    ~JackWatches();
    JackWatches(const JackWatches&) = delete;
    JackWatches& operator=(const JackWatches&) = delete;

    /// Any thread. A device that is not there is told to have died.
    std::unique_ptr<AudioDeviceWatch> add(std::string_view uid, AudioDriver::Listener listener);

    /// Has those who watch the device hear of its ports from now on: a stream is to be connected to them.
    /// What else there may be of the device does not count any more. Any thread.
    void watchPorts(const JackDevice& connected);

    /// Lets devices that died and are there again change and die again. Any thread.
    void welcomeBack(const JackServerState& state);

  private:
    class Watch;
    struct Entry;

    void run();
    void tellAll(AudioDeviceChange change);
    void tellLosses(bool isServerGone);
    std::optional<AudioDeviceChange> lossOf(const Entry& entry, const JackServerState& state);
    std::vector<std::shared_ptr<Entry>> livingEntries();

    JackEvents& events;
    JackServer& server;
    std::mutex mutex;
    std::vector<std::weak_ptr<Entry>> entries;
    std::thread thread;
};

} // namespace orvane::platform::jack
