#pragma once

#include "platform/base/published.h"
#include "platform/effects/audio_unit_host.h"

#include <QObject>

#include <functional>
#include <optional>
#include <thread>
#include <vector>

namespace orvane::ui {

/// The installed effects. Looks them up once on a thread of its own, because the first search can take
/// seconds. The destructor waits for the search. Main thread.
class InstalledComponents final {
  public:
    using List = std::vector<platform::AVAudioUnitComponent>;

    /// Calls `lookUp` once, on a thread of its own.
    explicit InstalledComponents(std::function<List()> lookUp);
    ~InstalledComponents();
    InstalledComponents(const InstalledComponents&) = delete;
    InstalledComponents& operator=(const InstalledComponents&) = delete;

    /// Absent until the search has ended.
    [[nodiscard]] const platform::Published<std::optional<List>>& list() const { return found; }

    /// Calls `action` once the effects are known: at once, or from the main thread's loop.
    void whenFound(std::function<void()> action);

  private:
    void keep(List components);

    platform::Published<std::optional<List>> found;
    std::vector<std::function<void()>> waiting;
    /// Lives on the main thread, so that the result arrives there.
    QObject receiver;
    std::thread worker;
};

} // namespace orvane::ui
