#pragma once

#include <new>

namespace orvane::platform {

/// Reports on standard error that a task was given up because memory ran out. Any thread; allocates nothing.
void reportMemoryShortage() noexcept;

/// Runs a task of a thread that must survive a lack of memory: if the task runs out of memory, it is given up
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
