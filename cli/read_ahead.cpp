#include "cli/read_ahead.h"

#include <utility>

namespace orvane::cli {

namespace {

constexpr std::size_t chunksAhead = 4;

} // namespace

ReadAhead::ReadAhead(platform::SoundFileReader& source, std::size_t chunkFrames)
    : reader(source),
      chunkLength(chunkFrames),
      queue(std::vector<Chunk>(chunksAhead, Chunk{SoundBlocks(source.channelCount(), chunkFrames)})),
      thread([this] { readOn(); }) {}

ReadAhead::~ReadAhead() {
    queue.abandon();
    thread.join();
}

platform::Result<const ReadAhead::Chunk*> ReadAhead::next() {
    if (std::exchange(isUsing, true)) queue.endUsing();
    const Chunk* const chunk = queue.beginUsing();
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
        const auto read = reader.read(chunk->blocks.part(0, chunkLength));
        if (read) {
            chunk->frameCount = read.value();
            chunk->blocks.silenceFrom(chunk->frameCount);
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
