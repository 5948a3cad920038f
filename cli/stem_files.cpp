#include "cli/stem_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>
#include <utility>

namespace orvane::cli {

namespace {

using platform::Done;
using platform::Error;
using platform::Result;

/// In bytes. File systems allow 255; the number and the extension need some of them.
constexpr std::size_t longestName = 200;

bool isContinuationByte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

} // namespace

std::string stemFileName(std::size_t number, std::string_view stripName) {
    std::size_t length = std::min(stripName.size(), longestName);
    while (length > 0 && length < stripName.size() && isContinuationByte(stripName[length]))
        --length;
    std::string name(stripName.substr(0, length));
    std::ranges::replace_if(
        name, [](char byte) { return byte == '/' || (byte >= 0 && byte < ' ') || byte == '\x7F'; }, '_'
    );
    return fmt::format("{:02}{}{}.wav", number, name.empty() ? "" : " ", name);
}

Result<StemFiles> StemFiles::create(
    const std::filesystem::path& folder, std::span<const std::string> stripNames, double sampleRate
) {
    std::error_code problem;
    std::filesystem::create_directories(folder, problem);
    if (problem)
        return Error{fmt::format("The folder {} cannot be made: {}.", folder.string(), problem.message())};
    StemFiles stems;
    for (std::size_t i = 0; i < stripNames.size(); ++i) {
        auto file =
            platform::SoundFileWriter::create(folder / stemFileName(i + 1, stripNames[i]), 1, sampleRate);
        if (!file) return file.error();
        stems.files.push_back(std::move(file).value());
    }
    return stems;
}

Result<Done> StemFiles::write(std::span<const std::span<const float>> stripBlocks) {
    for (std::size_t i = 0; i < files.size(); ++i)
        if (auto written = files[i].write(stripBlocks.subspan(i, 1)); !written) return written;
    return Done{};
}

Result<Done> StemFiles::commit() {
    for (platform::SoundFileWriter& file : files)
        if (auto done = file.commit(); !done) return done;
    return Done{};
}

} // namespace orvane::cli
