#pragma once

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
    static inline thread_local int depth = 0;
};

} // namespace orvane::platform
