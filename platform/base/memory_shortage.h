#pragma once

#include <new>

namespace orvane::platform {

/// Says in a line on standard error that a task found no memory and was given up. Any thread; needs no memory
/// itself.
void reportMemoryShortage() noexcept;

/// Runs a task of a thread that is to go on where the task finds no memory: what was to be done is left out
/// and reported. Any thread.
template <class Task>
void runUnlessOutOfMemory(const Task& task) {
    try {
        task();
    } catch (const std::bad_alloc&) {
        reportMemoryShortage();
    }
}

} // namespace orvane::platform
