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

/// Does a plugin's work that must not be done on the audio thread, on a thread of its own, and carries the
/// responses back. If blocks are rendered offline, there is no such thread, and work is done when it is
/// scheduled. Owned by the plugin's instance, which starts it once the plugin is there.
class Worker final {
  public:
    explicit Worker(RenderMode renderMode);
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// What the plugin schedules work with: from its run(), and within a `ControlCall`.
    LV2_Worker_Schedule* schedule() { return &feature; }

    /// Work that was scheduled before is done first. `reportFailure` is called on the thread that works, the
    /// first time that the plugin throws at its work. Control thread.
    void start(
        LV2_Handle pluginHandle, const LV2_Worker_Interface& pluginInterface,
        std::function<void()> reportFailure
    );
    /// Ends the thread; what waits for it is dropped. Returns false if the plugin is at work: the thread then
    /// calls `whenDone`, which may destroy this worker, once the plugin has done that work. Once, after a
    /// start, before it is destroyed. Control thread, waits for nothing of the plugin's.
    bool stop(std::function<void()> whenDone);

    /// Hands the plugin what its work has answered and ends the run; after each run(), within its
    /// `RenderCall`. Throws what the plugin does. Render thread, real-time safe where the plugin is.
    ORVANE_REALTIME void deliverResponses();

    /// While it lives, the calling thread is the one that renders: what it schedules goes to the worker. Work
    /// that another thread schedules, and responses to none, are refused. Real-time safe.
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

    /// While it lives, what the calling thread schedules comes from the control side, whose way to the
    /// worker is another one than the render thread's. No work is done meanwhile; it waits for the piece that
    /// is being done, and for no other, unless that takes too long.
    class ControlCall final {
      public:
        explicit ControlCall(Worker& called);
        ~ControlCall();
        ControlCall(const ControlCall&) = delete;
        ControlCall& operator=(const ControlCall&) = delete;

        /// Whether the piece was done in time. If not, the plugin must not be called.
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
    /// A response or the end of a run is handed over; offline, work that it schedules waits for its end.
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
    /// While it works.
    std::atomic<std::thread::id> workThread;
    /// Until it has been called.
    std::function<void()> failureReport;
    /// What the thread waits for a change of.
    std::atomic<std::uint32_t> wakeUps = 0;
    std::atomic<bool> isStopping = false;
    std::thread thread;

    /// Guards what follows, for moments only. Never taken by a render thread that a device waits for.
    std::mutex turns;
    std::condition_variable turnEnded;
    /// The plugin is at a piece of work.
    bool isAtWork = false;
    /// A `ControlCall` lives; no piece begins meanwhile.
    bool isControlCalling = false;
    /// How long a `ControlCall` waits: not at all after one has waited in vain, until the piece is done.
    std::chrono::milliseconds patience = usualPatience;
    /// Called after the piece that is being done.
    std::function<void()> afterwards;
};

} // namespace orvane::platform::lv2
