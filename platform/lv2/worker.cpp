#include "platform/lv2/worker.h"

#include "platform/base/audio_thread_scope.h"
#include "platform/lv2/shared_library.h"

#include <utility>

namespace orvane::platform::lv2 {

namespace {

std::span<const std::byte> message(std::uint32_t size, const void* data) noexcept {
    return {static_cast<const std::byte*>(data), data == nullptr ? 0 : size};
}

LV2_Worker_Status statusOf(bool isWritten) noexcept {
    return isWritten ? LV2_WORKER_SUCCESS : LV2_WORKER_ERR_NO_SPACE;
}

} // namespace

Worker::Worker(RenderMode renderMode)
    : isOffline(renderMode == RenderMode::offline), feature{this, scheduleWork} {}

Worker::ControlCall::ControlCall(Worker& called) : worker(called) {
    std::unique_lock lock(worker.turns);
    worker.isControlCalling = true;
    isInTime = worker.turnEnded.wait_for(lock, worker.patience, [this] { return !worker.isAtWork; });
    if (!isInTime) worker.patience = {};
    worker.controlThread.store(std::this_thread::get_id());
}

Worker::ControlCall::~ControlCall() {
    worker.controlThread.store(std::thread::id());
    const std::scoped_lock lock(worker.turns);
    worker.isControlCalling = false;
    worker.turnEnded.notify_all();
}

void Worker::start(
    LV2_Handle pluginHandle, const LV2_Worker_Interface& pluginInterface, std::function<void()> reportFailure
) {
    handle = pluginHandle;
    failureReport = std::move(reportFailure);
    interface = &pluginInterface;
    if (isOffline)
        workOff(controlRequests);
    else
        thread = std::thread([this] { run(); });
}

bool Worker::stop(std::function<void()> whenDone) {
    if (!thread.joinable()) return true;
    isStopping.store(true);
    {
        const std::scoped_lock lock(turns);
        if (isAtWork) {
            afterwards = std::move(whenDone);
            thread.detach();
            return false;
        }
    }
    wakeUps.fetch_add(1);
    wakeUps.notify_one();
    thread.join();
    return true;
}

void Worker::deliverResponses() {
    if (interface == nullptr) return;
    isDelivering = true;
    while (const auto size = responses.take(response))
        if (interface->work_response != nullptr)
            interface->work_response(handle, static_cast<std::uint32_t>(*size), response.bytes.data());
    if (interface->end_run != nullptr) interface->end_run(handle);
    isDelivering = false;
    if (isOffline) workOff(renderRequests);
}

LV2_Worker_Status
Worker::scheduleWork(LV2_Worker_Schedule_Handle worker, std::uint32_t size, const void* data) {
    auto& self = *static_cast<Worker*>(worker);
    // Each ring has a single producer thread.
    const bool isControl = self.controlThread.load() == std::this_thread::get_id();
    if (!isControl && self.renderThread.load() != std::this_thread::get_id()) return LV2_WORKER_ERR_UNKNOWN;
    if (self.isOffline && self.interface != nullptr && !self.isDelivering)
        return self.workAtOnce(message(size, data));
    MessageRing& requests = isControl ? self.controlRequests : self.renderRequests;
    if (!requests.write(message(size, data))) return statusOf(false);
    self.wakeUps.fetch_add(1);
    self.wakeUps.notify_one();
    return statusOf(true);
}

LV2_Worker_Status Worker::respond(LV2_Worker_Respond_Handle worker, std::uint32_t size, const void* data) {
    auto& self = *static_cast<Worker*>(worker);
    if (self.workThread.load() != std::this_thread::get_id()) return LV2_WORKER_ERR_UNKNOWN;
    return statusOf(self.responses.write(message(size, data)));
}

void Worker::run() {
    while (!isStopping.load()) {
        const std::uint32_t seen = wakeUps.load();
        workOff(controlRequests);
        workOff(renderRequests);
        if (!isStopping.load()) wakeUps.wait(seen);
    }
    // The worker may be destroyed by this call.
    if (const auto end = std::move(afterwards)) end();
}

void Worker::workOff(MessageRing& requests) {
    bool isAnyLeft = true;
    while (isAnyLeft) {
        if (!beginPiece()) return;
        const auto size = requests.take(request);
        if (size) work(std::span(request.bytes).first(*size));
        isAnyLeft = size.has_value();
        endPiece();
    }
}

bool Worker::beginPiece() {
    std::unique_lock lock(turns);
    turnEnded.wait(lock, [this] { return !isControlCalling; });
    isAtWork = !isStopping.load();
    return isAtWork;
}

void Worker::endPiece() {
    const std::scoped_lock lock(turns);
    isAtWork = false;
    patience = usualPatience;
    turnEnded.notify_all();
}

/// Refuses work that is scheduled from within work, as the worker thread does.
LV2_Worker_Status Worker::workAtOnce(std::span<const std::byte> data) {
    if (workThread.load() == std::this_thread::get_id()) return LV2_WORKER_ERR_UNKNOWN;
    work(data);
    return LV2_WORKER_SUCCESS;
}

void Worker::work(std::span<const std::byte> data) {
    const AudioThreadPause pause;
    workThread.store(std::this_thread::get_id());
    const bool isDone = callPlugin([&] {
        interface->work(handle, respond, this, static_cast<std::uint32_t>(data.size()), data.data());
    });
    workThread.store(std::thread::id());
    if (!isDone && failureReport) std::exchange(failureReport, nullptr)();
}

} // namespace orvane::platform::lv2
