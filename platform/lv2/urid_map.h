#pragma once

#include "dsp/realtime.h"
#include "platform/base/unfair_lock.h"

#include <lv2/urid/urid.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace orvane::platform::lv2 {

/// Maps URIs to numbers for us and the plugins of one host. Entries are never removed, so look-ups need no
/// lock. Any thread.
class UridMap final {
  public:
    UridMap() = default;
    ~UridMap();
    UridMap(const UridMap&) = delete;
    UridMap& operator=(const UridMap&) = delete;

    /// Returns the number of a URI and assigns one on the first call; 0 if numbers or memory run out.
    /// Real-time safe for URIs that have a number.
    LV2_URID map(std::string_view uri) noexcept;

    /// Returns the URI for a number; null if it is not assigned. Real-time safe.
    ORVANE_REALTIME [[nodiscard]] const char* unmap(LV2_URID urid) const noexcept;

  private:
    struct Entry {
        std::string uri;
        LV2_URID urid = 0;
        Entry* next = nullptr;
    };
    using Bucket = std::atomic<Entry*>;

    static Entry* find(const Bucket& bucket, std::string_view uri) noexcept;

    static constexpr std::size_t capacity = 16384;

    std::array<Bucket, 1024> buckets{};
    /// By number, starting at 1.
    std::array<std::atomic<Entry*>, capacity + 1> entries{};
    UnfairLock adding;
    LV2_URID last = 0;
};

} // namespace orvane::platform::lv2
