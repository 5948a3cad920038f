#pragma once

#include <utility>

namespace orvane::platform {

/// While it lives, the calling thread is an audio thread. It changes nothing about the thread; programs that
/// watch their allocations refuse them there. Real-time safe.
class AudioThreadScope final {
  public:
    AudioThreadScope() noexcept { ++depth; }
    ~AudioThreadScope() { --depth; }
    AudioThreadScope(const AudioThreadScope&) = delete;
    AudioThreadScope& operator=(const AudioThreadScope&) = delete;

    /// Whether one lives on the calling thread. Real-time safe.
    [[nodiscard]] static bool isOpen() noexcept { return depth > 0; }

  private:
    friend class AudioThreadPause;
    static inline thread_local int depth = 0;
};

/// While it lives, the calling thread is not an audio thread, whatever scopes are open: for what a cycle does
/// that no device waits for.
class AudioThreadPause final {
  public:
    AudioThreadPause() noexcept : kept(std::exchange(AudioThreadScope::depth, 0)) {}
    ~AudioThreadPause() { AudioThreadScope::depth = kept; }
    AudioThreadPause(const AudioThreadPause&) = delete;
    AudioThreadPause& operator=(const AudioThreadPause&) = delete;

  private:
    int kept;
};

} // namespace orvane::platform
