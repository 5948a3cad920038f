#pragma once

#include "platform/audio_driver.h"
#include "platform/jack_audio/jack_events.h"
#include "platform/jack_audio/jack_server.h"

#include <memory>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

namespace orvane::platform {

/// The watches of a driver and the thread that tells them what the server's events mean for their devices.
class JackWatches final {
  public:
    JackWatches(JackEvents& serverEvents, JackServer& jackServer);
    ~JackWatches();
    JackWatches(const JackWatches&) = delete;
    JackWatches& operator=(const JackWatches&) = delete;

    /// Any thread. A device that is not there is told to have died.
    std::unique_ptr<AudioDeviceWatch> add(std::string_view uid, AudioDriver::Listener listener);

    /// Lets devices that died and are there again change and die again. Any thread.
    void welcomeBack(const JackServerState& state);

  private:
    class Watch;
    struct Entry;

    void run();
    void tellBufferSize();
    void tellDeath(bool isServerGone);
    std::vector<std::shared_ptr<Entry>> livingEntries();

    JackEvents& events;
    JackServer& server;
    std::mutex mutex;
    std::vector<std::weak_ptr<Entry>> entries;
    std::thread thread;
};

} // namespace orvane::platform
