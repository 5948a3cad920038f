#pragma once

#include "cli/chunk_queue.h"
#include "platform/base/planar_blocks.h"
#include "platform/base/result.h"
#include "platform/files/sound_file_reader.h"

#include <cstddef>
#include <optional>
#include <thread>

namespace orvane::cli {

/// Reads a sound file on a thread of its own, a few chunks ahead of the user.
class ReadAhead final {
  public:
    struct Chunk {
        /// Silent after `frameCount` frames.
        platform::PlanarBlocks blocks;
        std::size_t frameCount = 0;
        /// The reason why reading failed; the chunk is then the last one.
        std::optional<platform::Error> failure = {};
    };

    /// Starts reading in chunks of `chunkFrames` frames. `source` must outlive the reader.
    ReadAhead(platform::SoundFileReader& source, std::size_t chunkFrames);
    /// Stops reading.
    ~ReadAhead();
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    /// Returns the next chunk, valid until the next call; null after the last one. Waits for it.
    platform::Result<Chunk*> next();

  private:
    void readOn();

    platform::SoundFileReader& reader;
    std::size_t chunkLength;
    ChunkQueue<Chunk> queue;
    bool isUsing = false;
    std::thread thread;
};

} // namespace orvane::cli
