#pragma once

#if defined(__x86_64__)
#include <xmmintrin.h>
#endif

#include <cstdint>

namespace orvane::platform {

/// Treats denormal numbers as zero on the calling thread while it lives, so that a filter or a plugin that
/// fades into silence does not slow down. The destructor restores the thread's mode. Real-time safe.
class FlushDenormals final {
  public:
    FlushDenormals() noexcept : before(mode()) { setMode(before | flushBits); }
    ~FlushDenormals() { setMode(before); }
    FlushDenormals(const FlushDenormals&) = delete;
    FlushDenormals& operator=(const FlushDenormals&) = delete;

  private:
#if defined(__x86_64__)
    using Mode = unsigned;
    /// Flush to zero (results) and denormals are zero (operands).
    static constexpr Mode flushBits = 0x8040;
    static Mode mode() noexcept {
        return _mm_getcsr();
    }
    static void setMode(Mode mode) noexcept {
        _mm_setcsr(mode);
    }
#elif defined(__aarch64__)
    using Mode = std::uint64_t;
    static constexpr Mode flushBits = std::uint64_t{1} << 24;
    static Mode mode() noexcept {
        Mode mode;
        asm volatile("mrs %0, fpcr" : "=r"(mode));
        return mode;
    }
    static void setMode(Mode mode) noexcept {
        asm volatile("msr fpcr, %0" : : "r"(mode));
    }
#else
#error "Say here how this processor flushes denormal numbers."
#endif

    Mode before;
};

} // namespace orvane::platform
