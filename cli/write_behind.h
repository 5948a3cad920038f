#pragma once

#include "cli/chunk_queue.h"
#include "cli/sound_blocks.h"
#include "cli/stem_files.h"
#include "platform/base/result.h"
#include "platform/files/sound_file_writer.h"

#include <cstddef>
#include <optional>
#include <thread>

namespace orvane::cli {

/// Writes what a mix gives, the outputs to one sound file and the strips to others, on a thread of its own.
class WriteBehind final {
  public:
    struct Chunk {
        SoundBlocks outputs;
        /// None where no stems are written.
        SoundBlocks stems;
        /// How many of the frames are to be written.
        std::size_t frameCount = 0;
    };

    /// Where it all goes.
    struct Files {
        platform::SoundFileWriter outputs;
        std::optional<StemFiles> stems;
    };

    /// Chunks are like `empty`.
    WriteBehind(Files files, const Chunk& empty);
    /// Stops; what was not committed never takes its name.
    ~WriteBehind();
    WriteBehind(const WriteBehind&) = delete;
    WriteBehind& operator=(const WriteBehind&) = delete;

    /// The chunk to fill next. Waits until there is one; fails where an earlier one could not be written.
    platform::Result<Chunk*> next();

    /// Writes the chunk that is filled.
    void write() { queue.endFilling(); }

    /// Waits until all chunks are written; fails where one could not be. No chunk follows.
    platform::Result<platform::Done> finish();

    /// Completes the files after `finish`.
    platform::Result<platform::Done> commit();

  private:
    void writeOn();
    platform::Result<platform::Done> writeChunk(const Chunk& chunk);

    Files destination;
    ChunkQueue<Chunk> queue;
    /// The thread's until it has ended.
    std::optional<platform::Error> failure;
    std::thread thread;
};

} // namespace orvane::cli
