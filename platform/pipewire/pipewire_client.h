#pragma once

#include <pipewire/pipewire.h>

#include <chrono>
#include <functional>

namespace orvane::platform::pipewire {

/// A connection to the PipeWire server that the environment selects, with a thread of its own for the
/// server's events and, while it is connected, another one for cycles: connections do not wait for each
/// other. Only for the sources of this folder: other headers hide libpipewire. Any thread; every function
/// requires a `Lock`, in which libpipewire may be called, except where noted.
class PipeWireClient final {
  public:
    /// How the thread for cycles runs.
    enum class Cycles {
        /// With real-time priority, if the system grants it.
        realtime,
        /// There are none.
        none,
    };

    /// Excludes the event thread and other users of the client; can be taken repeatedly by one thread.
    class Lock final {
      public:
        explicit Lock(const PipeWireClient& locked) : loop(locked.thread) { pw_thread_loop_lock(loop); }
        ~Lock() { pw_thread_loop_unlock(loop); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

      private:
        pw_thread_loop* loop;
    };

    /// Starts the event thread, but does not connect. `onLost` is called on it, with the lock, when the
    /// server is gone; it must not disconnect there. No lock.
    explicit PipeWireClient(
        Cycles cycles, std::function<void()> onLost = [] {}
    );
    /// Everything made with the core must be destroyed before. No lock.
    ~PipeWireClient();
    PipeWireClient(const PipeWireClient&) = delete;
    PipeWireClient& operator=(const PipeWireClient&) = delete;

    /// Returns whether the client is connected now. Fails at once if no server listens; never starts one.
    bool connect();

    /// Everything made with the core must be destroyed before. Not within a callback of the core.
    void disconnect();

    /// Null if not connected.
    [[nodiscard]] pw_core* core() const { return connection; }
    /// The event thread.
    [[nodiscard]] pw_thread_loop* eventThread() const { return thread; }
    [[nodiscard]] pw_loop* loop() const { return pw_thread_loop_get_loop(thread); }
    [[nodiscard]] bool isConnected() const { return connection != nullptr && !lost; }

    /// Waits until the server has done what was requested; false if it is gone or does not answer within
    /// seconds. Not on the event thread.
    bool sync();

    /// Waits until `condition` holds, which is checked after each event and `wake`; false if it does not
    /// within `longest` or the server is gone. Not on the event thread.
    template <class Condition>
    bool waitUntil(Condition condition, std::chrono::nanoseconds longest = usualPatience) {
        timespec deadline{};
        pw_thread_loop_get_time(thread, &deadline, longest.count());
        while (!condition()) {
            if (!isConnected() || pw_thread_loop_timed_wait_full(thread, &deadline) != 0) return condition();
        }
        return true;
    }

    /// Has conditions that are waited for checked again.
    void wake() { pw_thread_loop_signal(thread, false); }

    /// How many requests the server has refused.
    [[nodiscard]] int refusals() const { return refused; }

  private:
    static constexpr std::chrono::seconds usualPatience{2};

    bool makeContext();
    static void done(void* self, std::uint32_t id, int sequence);
    static void failed(void* self, std::uint32_t id, int sequence, int status, const char* message);

    Cycles cycles;
    std::function<void()> onLost;
    pw_thread_loop* thread = nullptr;
    pw_context* context = nullptr;
    pw_core* connection = nullptr;
    spa_hook coreListener{};
    bool lost = false;
    int lastDone = 0;
    int refused = 0;
};

} // namespace orvane::platform::pipewire
