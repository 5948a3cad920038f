#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <vector>

namespace orvane::cli {

/// A few chunks that go round between a thread that fills them and one that uses them, in order: who is
/// faster waits for the other, and memory stays what it was at the start. Nothing for audio threads.
template <class Chunk>
class ChunkQueue final {
  public:
    /// `empty`: at least one chunk, all alike.
    explicit ChunkQueue(std::vector<Chunk> empty) : chunks(std::move(empty)) {}

    /// The next chunk to fill; waits until one has been used up. Null where the queue was abandoned. Filling
    /// thread, like the next two.
    [[nodiscard]] Chunk* beginFilling() {
        std::unique_lock guard(mutex);
        changed.wait(guard, [this] { return isAbandoned || filled - used < chunks.size(); });
        return isAbandoned ? nullptr : &chunks[filled % chunks.size()];
    }

    /// Hands over the chunk that was begun.
    void endFilling() {
        change([this] { ++filled; });
    }

    /// No chunk follows.
    void finish() {
        change([this] { isFinished = true; });
    }

    /// The next chunk to use; waits until one has been filled. Null after the last and where the queue was
    /// abandoned. Using thread, like the next one.
    [[nodiscard]] Chunk* beginUsing() {
        std::unique_lock guard(mutex);
        changed.wait(guard, [this] { return isAbandoned || isFinished || used < filled; });
        return isAbandoned || used == filled ? nullptr : &chunks[used % chunks.size()];
    }

    /// Gives the chunk that was begun back.
    void endUsing() {
        change([this] { ++used; });
    }

    /// Both sides are to stop, whatever is left. Any thread.
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
