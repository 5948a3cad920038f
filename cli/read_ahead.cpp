#include "cli/read_ahead.h"

#include <algorithm>
#include <utility>

namespace orvane::cli {

namespace {

constexpr std::size_t chunksAhead = 4;

} // namespace

ReadAhead::ReadAhead(platform::SoundFileReader& source, std::size_t chunkFrames)
    : reader(source),
      chunkLength(chunkFrames),
      queue(std::vector<Chunk>(chunksAhead, Chunk{platform::PlanarBlocks(source.channelCount(), chunkFrames)})
      ),
      thread([this] { readOn(); }) {}

ReadAhead::~ReadAhead() {
    queue.abandon();
    thread.join();
}

platform::Result<ReadAhead::Chunk*> ReadAhead::next() {
    if (std::exchange(isUsing, true)) queue.endUsing();
    Chunk* const chunk = queue.beginUsing();
    if (chunk == nullptr) {
        isUsing = false;
        return nullptr;
    }
    if (chunk->failure) return *chunk->failure;
    return chunk;
}

void ReadAhead::readOn() {
    bool isLast = false;
    while (!isLast) {
        Chunk* const chunk = queue.beginFilling();
        if (chunk == nullptr) return;
        const auto read = reader.read(chunk->blocks.writable(chunkLength));
        if (read) {
            chunk->frameCount = read.value();
            for (const auto rest : chunk->blocks.writable(chunkLength - chunk->frameCount, chunk->frameCount))
                std::ranges::fill(rest, 0.0F);
            if (chunk->frameCount == 0) break;
        } else {
            chunk->failure = read.error();
        }
        isLast = !read || chunk->frameCount < chunkLength;
        queue.endFilling();
    }
    queue.finish();
}

} // namespace orvane::cli
