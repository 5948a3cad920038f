#include "cli/write_behind.h"

#include <utility>
#include <vector>

namespace orvane::cli {

using platform::Done;
using platform::Result;

namespace {

constexpr std::size_t chunksBehind = 4;

} // namespace

WriteBehind::WriteBehind(Files files, const Chunk& empty)
    : destination(std::move(files)),
      queue(std::vector<Chunk>(chunksBehind, empty)),
      thread([this] { writeOn(); }) {}

WriteBehind::~WriteBehind() {
    queue.abandon();
    if (thread.joinable()) thread.join();
}

Result<WriteBehind::Chunk*> WriteBehind::next() {
    if (Chunk* const chunk = queue.beginFilling()) return chunk;
    // The thread abandons the queue only after a failure.
    return finish().error();
}

Result<Done> WriteBehind::finish() {
    queue.finish();
    if (thread.joinable()) thread.join();
    if (failure) return *failure;
    return Done{};
}

Result<Done> WriteBehind::commit() {
    if (destination.stems)
        if (auto committed = destination.stems->commit(); !committed) return committed;
    return destination.outputs.commit();
}

void WriteBehind::writeOn() {
    while (Chunk* const chunk = queue.beginUsing()) {
        if (const auto written = writeChunk(*chunk); !written) {
            failure = written.error();
            queue.abandon();
            return;
        }
        queue.endUsing();
    }
}

Result<Done> WriteBehind::writeChunk(Chunk& chunk) {
    if (auto written = destination.outputs.write(chunk.outputs.readable(chunk.frameCount)); !written)
        return written;
    return destination.stems ? destination.stems->write(chunk.stems.readable(chunk.frameCount))
                             : Result<Done>(Done{});
}

} // namespace orvane::cli
