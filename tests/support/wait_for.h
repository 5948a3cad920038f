#pragma once

#include <chrono>
#include <thread>

namespace orvane::test {

/// Waits until `condition` holds. Returns false if it does not within a time that suffices for a busy
/// computer and a sanitizer.
template <class Condition>
bool waitFor(Condition condition) {
    using namespace std::chrono_literals;
    const auto deadline = std::chrono::steady_clock::now() + 60s;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(1ms);
    }
    return true;
}

} // namespace orvane::test
