#pragma once

#include <utility>

namespace orvane::platform {

/// Marks the calling thread as an audio thread while it lives. It does not change the thread; programs with
/// the allocation guard refuse allocations there. Real-time safe.
class AudioThreadScope final {
  public:
    AudioThreadScope() noexcept { ++depth; }
    ~AudioThreadScope() { --depth; }
    AudioThreadScope(const AudioThreadScope&) = delete;
    AudioThreadScope& operator=(const AudioThreadScope&) = delete;

    /// Whether a scope is open on the calling thread. Real-time safe.
    [[nodiscard]] static bool isOpen() noexcept { return depth > 0; }

  private:
    friend class AudioThreadPause;
    static inline thread_local int depth = 0;
};

/// Suspends all open scopes of the calling thread: for work within a cycle that no device waits for.
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
