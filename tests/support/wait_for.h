#pragma once

#include <chrono>
#include <thread>

namespace orvane::test {

/// Waits until `condition` holds and returns true, or false if it never did for as long as even a busy
/// machine under a sanitizer may take.
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
