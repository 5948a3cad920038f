#include "cli/render.h"

#include "cli/mixer_setup.h"
#include "cli/offline_mixer.h"
#include "cli/stem_files.h"
#include "engine/session/mixer_json_document.h"
#include "platform/atomic_file.h"
#include "platform/sound_file_reader.h"
#include "platform/sound_file_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <system_error>
#include <utility>

namespace orvane::cli {

namespace {

using platform::Done;
using platform::Error;
using platform::Result;
using platform::SoundFileReader;
using platform::SoundFileWriter;

/// Planar blocks of one length, and views of their beginnings.
class Blocks final {
  public:
    Blocks(std::size_t channelCount, std::size_t frameCount)
        : samples(channelCount, std::vector<float>(frameCount)) {
        for (std::vector<float>& channel : samples)
            views.emplace_back(channel);
        constViews.assign(views.begin(), views.end());
    }

    [[nodiscard]] std::span<const std::span<float>> writable() const { return views; }
    [[nodiscard]] std::span<const std::span<const float>> readable() const { return constViews; }

    /// The first `frameCount` frames of every channel.
    [[nodiscard]] std::vector<std::span<float>> beginning(std::size_t frameCount) const {
        std::vector<std::span<float>> parts;
        for (const std::span<float>& view : views)
            parts.push_back(view.first(frameCount));
        return parts;
    }

    void silenceFrom(std::size_t frame) {
        for (std::vector<float>& channel : samples)
            std::fill(channel.begin() + static_cast<std::ptrdiff_t>(frame), channel.end(), 0.0F);
    }

  private:
    std::vector<std::vector<float>> samples;
    std::vector<std::span<float>> views;
    std::vector<std::span<const float>> constViews;
};

Result<MixerSetup> setUp(const RenderOptions& options, std::size_t inputCount) {
    if (!options.session) return MixerSetup::oneToOne(options.channels.value_or(inputCount), inputCount);
    const auto document = session::MixerJSONDocument::read(*options.session);
    if (!document) return Error{"Couldn't read that settings file: " + document.error().description};
    const session::MixerDocumentData& data = document.value().data;
    const std::size_t strips = options.channels.value_or(data.channels.size());
    if (strips < 1 || strips > mostRenderChannels)
        return Error{fmt::format(
            "{} has {} channels; between 1 and {} can be rendered (--channels).", options.session->string(),
            strips, mostRenderChannels
        )};
    return MixerSetup::loaded(data, strips);
}

Result<std::size_t> chooseOutputs(const RenderOptions& options, const MixerSetup& setup) {
    if (options.outputs) return *options.outputs;
    const std::uint64_t needed = std::max<std::uint64_t>(setup.routedOutputs(), 2);
    if (needed > mostRenderChannels)
        return Error{fmt::format(
            "The session goes to output {}, but a sound file holds at most {}; say how many it is to have "
            "(--outputs).",
            needed, mostRenderChannels
        )};
    return static_cast<std::size_t>(needed);
}

void warnOfMissingOutputs(MixerSetup& setup, std::size_t outputCount, const RenderObserver& observer) {
    if (setup.resetMissingMasterOutput(outputCount))
        observer.warn(
            "Master Out was reset to \"None\" because its previously-selected channel(s) don't exist on the "
            "current device — pick a new Master Out channel pair in the mixer if you want the master bus "
            "routed somewhere."
        );
    if (setup.routedOutputs() > outputCount)
        observer.warn(fmt::format(
            "Some strips go to outputs up to {}, but there are only {}: what goes beyond is not heard.",
            setup.routedOutputs(), outputCount
        ));
}

/// One run: the files it reads and writes, and the mixer between them.
class Run final {
  public:
    static Result<std::unique_ptr<Run>>
    prepare(const RenderOptions& options, const RenderObserver& observer) {
        std::error_code ignored;
        if (std::filesystem::equivalent(options.input, options.output, ignored))
            return Error{fmt::format("{} cannot be both input and output.", options.input.string())};
        auto reader = SoundFileReader::open(options.input);
        if (!reader) return reader.error();
        auto setup = setUp(options, reader.value().channelCount());
        if (!setup) return setup.error();
        if (options.bufferSize) setup.value().bufferSize = *options.bufferSize;
        const auto outputs = chooseOutputs(options, setup.value());
        if (!outputs) return outputs.error();
        warnOfMissingOutputs(setup.value(), outputs.value(), observer);

        auto writer = SoundFileWriter::create(options.output, outputs.value(), reader.value().sampleRate());
        if (!writer) return writer.error();
        auto run = std::unique_ptr<Run>(
            new Run(std::move(reader).value(), std::move(writer).value(), setup.value(), outputs.value())
        );
        if (options.stems) {
            auto stems = StemFiles::create(*options.stems, namesOf(setup.value()), run->reader.sampleRate());
            if (!stems) return stems.error();
            run->stems = std::move(stems).value();
        }
        return run;
    }

    Result<RenderReport> mixToTheEnd(const RenderObserver& observer) {
        const auto start = std::chrono::steady_clock::now();
        const std::int64_t total = reader.frameCount();
        for (std::int64_t done = 0; done < total; done += static_cast<std::int64_t>(mixer.blockLength())) {
            if (observer.isCancelled()) return Error{"Stopped before the end; nothing was written."};
            if (auto mixed = mixBlock(total - done); !mixed) return mixed.error();
            observer.progress(static_cast<double>(done) / static_cast<double>(total));
        }
        if (auto committed = commit(); !committed) return committed.error();
        const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
        return report.finish(reader.sampleRate(), static_cast<double>(total), wall.count());
    }

  private:
    Run(SoundFileReader source, SoundFileWriter destination, const MixerSetup& setup, std::size_t outputs)
        : reader(std::move(source)),
          writer(std::move(destination)),
          mixer(setup, reader.sampleRate(), outputs),
          report(setup),
          captured(reader.channelCount(), mixer.blockLength()),
          played(outputs, mixer.blockLength()) {}

    static std::vector<std::string> namesOf(const MixerSetup& setup) {
        std::vector<std::string> names;
        for (const session::ChannelStrip& strip : setup.strips)
            names.push_back(strip.name);
        return names;
    }

    /// The last block is padded with silence for the pass; only what the input covers is written.
    Result<Done> mixBlock(std::int64_t framesLeft) {
        const auto frames =
            static_cast<std::size_t>(std::min(framesLeft, static_cast<std::int64_t>(mixer.blockLength())));
        const auto read = reader.read(captured.beginning(frames));
        if (!read) return read.error();
        captured.silenceFrom(read.value());
        mixer.cycle(captured.readable(), played.writable());
        report.add(mixer);
        const std::vector<std::span<float>> kept = played.beginning(frames);
        if (auto written = writer.write(std::vector<std::span<const float>>(kept.begin(), kept.end()));
            !written)
            return written;
        return stems ? stems->write(mixer.automix().channelOutputs(), frames) : Done{};
    }

    Result<Done> commit() {
        if (stems)
            if (auto committed = stems->commit(); !committed) return committed;
        return writer.commit();
    }

    SoundFileReader reader;
    SoundFileWriter writer;
    OfflineMixer mixer;
    RenderReportBuilder report;
    Blocks captured;
    Blocks played;
    std::optional<StemFiles> stems;
};

} // namespace

Result<RenderReport> render(const RenderOptions& options, const RenderObserver& observer) {
    auto run = Run::prepare(options, observer);
    if (!run) return run.error();
    auto report = run.value()->mixToTheEnd(observer);
    if (report && options.report) {
        const std::string json = report.value().json();
        auto written = platform::writeFileAtomically(*options.report, std::as_bytes(std::span(json)));
        if (!written) return written.error();
    }
    return report;
}

} // namespace orvane::cli
