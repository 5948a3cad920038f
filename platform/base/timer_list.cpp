#include "platform/base/timer_list.h"

#include "platform/base/memory_shortage.h"

#include <utility>

namespace orvane::platform {

class TimerList::Handle final : public MainThreadTimer {
  public:
    explicit Handle(std::shared_ptr<Entry> kept) : entry(std::move(kept)) {}

  private:
    std::shared_ptr<Entry> entry;
};

std::unique_ptr<MainThreadTimer>
TimerList::add(Time now, std::chrono::nanoseconds interval, std::function<void()> task) {
    std::erase_if(entries, [](const auto& ended) { return ended.expired(); });
    auto entry = std::make_shared<Entry>(Entry{now + interval, interval, std::move(task)});
    entries.push_back(entry);
    return std::make_unique<Handle>(std::move(entry));
}

std::shared_ptr<TimerList::Entry> TimerList::earliest() const {
    std::shared_ptr<Entry> found;
    for (const std::weak_ptr<Entry>& weakEntry : entries) {
        std::shared_ptr<Entry> entry = weakEntry.lock();
        if (entry && (!found || entry->due < found->due)) found = std::move(entry);
    }
    return found;
}

std::optional<TimerList::Time> TimerList::nextDue() const {
    const auto entry = earliest();
    return entry ? std::optional(entry->due) : std::nullopt;
}

bool TimerList::runNextDue(Time now) {
    // Keeps the task alive while it runs, although it may end its own timer.
    const auto entry = earliest();
    if (!entry || entry->due > now) return false;
    entry->due += entry->interval * ((now - entry->due) / entry->interval + 1);
    runUnlessOutOfMemory(entry->task);
    return true;
}

} // namespace orvane::platform
