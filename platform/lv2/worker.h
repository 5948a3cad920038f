#pragma once

#include "dsp/realtime.h"
#include "platform/lv2/message_ring.h"
#include "platform/lv2/render_mode.h"

#include <lv2/worker/worker.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <thread>

namespace orvane::platform::lv2 {

/// Does a plugin's non-real-time work on a thread of its own and carries the responses back. When rendering
/// offline, it has no thread, and work is done when it is scheduled. Owned by the plugin's instance, which
/// starts it after instantiating the plugin.
class Worker final {
  public:
    explicit Worker(RenderMode renderMode);
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// The feature through which the plugin schedules work: in run() and within a `ControlCall`.
    LV2_Worker_Schedule* schedule() { return &feature; }

    /// Work that was scheduled earlier is done first. `reportFailure` is called on the worker thread the
    /// first time that the plugin throws while working. Control thread.
    void start(
        LV2_Handle pluginHandle, const LV2_Worker_Interface& pluginInterface,
        std::function<void()> reportFailure
    );
    /// Ends the thread and drops pending work. Returns false if the plugin is working: the thread then calls
    /// `whenDone`, which may destroy this worker, after that work. Must be called once after a start, before
    /// destruction. Control thread; does not wait for the plugin.
    bool stop(std::function<void()> whenDone);

    /// Delivers the responses to the plugin and ends the run; called after each run(), within its
    /// `RenderCall`. Passes on the plugin's exceptions. Render thread, real-time safe if the plugin is.
    ORVANE_REALTIME void deliverResponses();

    /// Marks the calling thread as the render thread while it lives: what the thread schedules goes to the
    /// worker. Refused are work from other threads and responses outside of work. Real-time safe.
    class RenderCall final {
      public:
        explicit RenderCall(Worker& called) noexcept : worker(called) {
            worker.renderThread.store(std::this_thread::get_id());
        }
        ~RenderCall() { worker.renderThread.store(std::thread::id()); }
        RenderCall(const RenderCall&) = delete;
        RenderCall& operator=(const RenderCall&) = delete;

      private:
        Worker& worker;
    };

    /// Marks the calling thread as the control thread while it lives; its requests have a ring of their own.
    /// The constructor waits for the current piece of work, but not too long, and no other piece begins
    /// meanwhile.
    class ControlCall final {
      public:
        explicit ControlCall(Worker& called);
        ~ControlCall();
        ControlCall(const ControlCall&) = delete;
        ControlCall& operator=(const ControlCall&) = delete;

        /// Whether the piece ended in time. If not, the plugin must not be called.
        [[nodiscard]] bool isAlone() const { return isInTime; }

      private:
        Worker& worker;
        bool isInTime = false;
    };

  private:
    static constexpr std::chrono::milliseconds usualPatience{2000};

    static LV2_Worker_Status
    scheduleWork(LV2_Worker_Schedule_Handle worker, std::uint32_t size, const void* data);
    static LV2_Worker_Status respond(LV2_Worker_Respond_Handle worker, std::uint32_t size, const void* data);

    void run();
    void workOff(MessageRing& requests);
    bool beginPiece();
    void endPiece();
    LV2_Worker_Status workAtOnce(std::span<const std::byte> data);
    void work(std::span<const std::byte> data);

    const bool isOffline;
    /// A response or the end of a run is being delivered; offline, work that it schedules waits for its end.
    bool isDelivering = false;
    LV2_Worker_Schedule feature;
    LV2_Handle handle = nullptr;
    const LV2_Worker_Interface* interface = nullptr;

    MessageRing renderRequests;
    MessageRing controlRequests;
    MessageRing responses;
    MessageRing::Message request;
    MessageRing::Message response;

    std::atomic<std::thread::id> controlThread;
    std::atomic<std::thread::id> renderThread;
    /// Set while the plugin works.
    std::atomic<std::thread::id> workThread;
    /// Cleared by the first call.
    std::function<void()> failureReport;
    /// The thread waits for this to change.
    std::atomic<std::uint32_t> wakeUps = 0;
    std::atomic<bool> isStopping = false;
    std::thread thread;

    /// Guards the members below, for short moments. In live mode the render thread never takes it.
    std::mutex turns;
    std::condition_variable turnEnded;
    /// The plugin is at a piece of work.
    bool isAtWork = false;
    /// A `ControlCall` lives; no piece begins meanwhile.
    bool isControlCalling = false;
    /// How long a `ControlCall` waits. Zero after one has timed out, until that piece is done.
    std::chrono::milliseconds patience = usualPatience;
    /// Called after the current piece of work.
    std::function<void()> afterwards;
};

} // namespace orvane::platform::lv2
