#pragma once

#include "audio/published.h"
#include "platform/effects/audio_unit_host.h"

#include <QObject>

#include <functional>
#include <optional>
#include <thread>
#include <vector>

namespace orvane::ui {

/// The installed effects, looked up once on a thread of its own, since the first look may take seconds. The
/// destructor waits for the look-up. Main thread.
class InstalledComponents final {
  public:
    using List = std::vector<platform::AVAudioUnitComponent>;

    /// Calls `lookUp` once, on a thread of its own.
    explicit InstalledComponents(std::function<List()> lookUp);
    ~InstalledComponents();
    InstalledComponents(const InstalledComponents&) = delete;
    InstalledComponents& operator=(const InstalledComponents&) = delete;

    /// Absent while they are being looked up.
    [[nodiscard]] const audio::Published<std::optional<List>>& list() const { return found; }

    /// Calls `action` once they are known: at once, or else in a later turn of the main thread's loop.
    void whenFound(std::function<void()> action);

  private:
    void keep(List components);

    audio::Published<std::optional<List>> found;
    std::vector<std::function<void()>> waiting;
    /// Lives on the main thread, so that the answer arrives there.
    QObject receiver;
    std::thread worker;
};

} // namespace orvane::ui
