#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <vector>

namespace orvane::cli {

/// A few chunks that circulate, in order, between a thread that fills them and a thread that uses them. The
/// faster thread waits for the other; memory use is constant. Not for audio threads.
template <class Chunk>
class ChunkQueue final {
  public:
    /// `empty`: at least one chunk, all of the same size.
    explicit ChunkQueue(std::vector<Chunk> empty) : chunks(std::move(empty)) {}

    /// Returns the next chunk to fill; waits until one is free. Null if the queue was abandoned. Filling
    /// thread, like the next two functions.
    [[nodiscard]] Chunk* beginFilling() {
        std::unique_lock guard(mutex);
        changed.wait(guard, [this] { return isAbandoned || filled - used < chunks.size(); });
        return isAbandoned ? nullptr : &chunks[filled % chunks.size()];
    }

    /// Passes on the chunk returned by `beginFilling`.
    void endFilling() {
        change([this] { ++filled; });
    }

    /// Marks the end: no chunk follows.
    void finish() {
        change([this] { isFinished = true; });
    }

    /// Returns the next chunk to use; waits until one is filled. Null after the last one, or if the queue was
    /// abandoned. Using thread, like the next function.
    [[nodiscard]] Chunk* beginUsing() {
        std::unique_lock guard(mutex);
        changed.wait(guard, [this] { return isAbandoned || isFinished || used < filled; });
        return isAbandoned || used == filled ? nullptr : &chunks[used % chunks.size()];
    }

    /// Returns the chunk to the queue.
    void endUsing() {
        change([this] { ++used; });
    }

    /// Makes both sides stop, whatever is left. Any thread.
    void abandon() {
        change([this] { isAbandoned = true; });
    }

  private:
    template <class Change>
    void change(Change make) {
        {
            const std::scoped_lock guard(mutex);
            make();
        }
        changed.notify_all();
    }

    std::vector<Chunk> chunks;
    std::mutex mutex;
    std::condition_variable changed;
    std::size_t filled = 0;
    std::size_t used = 0;
    bool isFinished = false;
    bool isAbandoned = false;
};

} // namespace orvane::cli
