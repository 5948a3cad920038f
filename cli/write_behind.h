#pragma once

#include "cli/chunk_queue.h"
#include "cli/stem_files.h"
#include "platform/base/planar_blocks.h"
#include "platform/base/result.h"
#include "platform/files/sound_file_writer.h"

#include <cstddef>
#include <optional>
#include <thread>

namespace orvane::cli {

/// Writes a mix on a thread of its own: the outputs to one sound file, the strips to others.
class WriteBehind final {
  public:
    struct Chunk {
        platform::PlanarBlocks outputs;
        /// Empty if no stems are written.
        platform::PlanarBlocks stems;
        /// The number of frames to write.
        std::size_t frameCount = 0;
    };

    /// The files to write to.
    struct Files {
        platform::SoundFileWriter outputs;
        std::optional<StemFiles> stems;
    };

    /// Every chunk has the size of `empty`.
    WriteBehind(Files files, const Chunk& empty);
    /// Stops. Files that were not committed never get their final names.
    ~WriteBehind();
    WriteBehind(const WriteBehind&) = delete;
    WriteBehind& operator=(const WriteBehind&) = delete;

    /// Returns the chunk to fill next; waits until one is free. Fails if an earlier one could not be written.
    platform::Result<Chunk*> next();

    /// Queues the filled chunk for writing.
    void write() { queue.endFilling(); }

    /// Waits until all chunks are written. Fails if one could not be written. No chunk follows.
    platform::Result<platform::Done> finish();

    /// Completes the files. Called after `finish`.
    platform::Result<platform::Done> commit();

  private:
    void writeOn();
    platform::Result<platform::Done> writeChunk(Chunk& chunk);

    Files destination;
    ChunkQueue<Chunk> queue;
    /// Owned by the thread until it has ended.
    std::optional<platform::Error> failure;
    std::thread thread;
};

} // namespace orvane::cli
