// A sound file results in an error or is rendered, up to the number of frames it states.

#include "cli/render.h"
#include "fuzzer.h"
#include "platform/files/sound_file_reader.h"
#include "support/temporary_folder.h"

#include <string_view>

using namespace orvane;

namespace {

/// A few bytes of a compressed file can stand for hours of sound.
constexpr int mostBlocks = 64;

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const test::TemporaryFolder folder(test::memoryFolder());
    const auto input = folder.add("in", {reinterpret_cast<const char*>(data), size});
    const auto output = folder / "out.wav";
    int blocks = 0;
    const auto report = cli::render(
        {.input = input, .output = output, .channels = 2, .outputs = 2},
        {.warn = [](std::string_view) {},
         .progress =
             [&blocks](double share) {
                 ++blocks;
                 fuzz::require(share >= 0.0 && share <= 1.0);
             },
         .isCancelled = [&blocks] { return blocks >= mostBlocks; }}
    );
    if (!report) {
        fuzz::require(!report.error().description.empty() && !std::filesystem::exists(output));
        return 0;
    }
    const auto read = platform::SoundFileReader::open(input);
    const auto written = platform::SoundFileReader::open(output);
    fuzz::require(read && written && written.value().frameCount() == read.value().frameCount());
    std::filesystem::remove(output);
    return 0;
}
