#include "cli/render.h"

#include "cli/await_plugins.h"
#include "cli/mix_setup.h"
#include "cli/offline_mixer.h"
#include "cli/stem_files.h"
#include "engine/routing_operations.h"
#include "engine/session_files.h"
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

/// The session to be rendered, if one is named.
Result<std::optional<session::MixerDocumentData>> readSession(const RenderOptions& options) {
    if (!options.session) return std::optional<session::MixerDocumentData>();
    auto document = engine::readSession(*options.session);
    if (!document) return document.error();
    return std::optional(std::move(document).value());
}

Result<std::size_t> chooseStrips(
    const RenderOptions& options, const std::optional<session::MixerDocumentData>& document,
    std::size_t inputCount
) {
    const std::size_t strips = options.channels.value_or(document ? document->channels.size() : inputCount);
    if (strips >= 1 && strips <= mostRenderChannels) return strips;
    return Error{fmt::format(
        "{} has {} channels; between 1 and {} can be rendered (--channels).",
        options.session.value_or(options.input).string(), strips, mostRenderChannels
    )};
}

/// One more than the highest output that something of the session goes to.
std::uint64_t
routedOutputs(const std::optional<session::MixerDocumentData>& document, std::size_t stripCount) {
    if (!document) return 0;
    std::uint64_t needed = engine::outputsNeeded(document->masterOutputRouting);
    for (const auto& channel :
         std::span(document->channels).first(std::min(stripCount, document->channels.size())))
        needed = std::max(needed, engine::outputsNeeded(channel.outputRouting));
    return needed;
}

Result<std::size_t> chooseOutputs(const RenderOptions& options, std::uint64_t routed) {
    if (options.outputs) return *options.outputs;
    const std::uint64_t needed = std::max<std::uint64_t>(routed, 2);
    if (needed <= mostRenderChannels) return static_cast<std::size_t>(needed);
    return Error{fmt::format(
        "The session goes to output {}, but a sound file holds at most {}; say how many it is to have "
        "(--outputs).",
        needed, mostRenderChannels
    )};
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
        const auto document = readSession(options);
        if (!document) return document.error();
        const auto strips = chooseStrips(options, document.value(), reader.value().channelCount());
        if (!strips) return strips.error();
        const std::uint64_t routed = routedOutputs(document.value(), strips.value());
        const auto outputs = chooseOutputs(options, routed);
        if (!outputs) return outputs.error();
        const OfflineMixer::Device device = {
            reader.value().channelCount(), outputs.value(), reader.value().sampleRate()};
        auto mixer = std::make_unique<OfflineMixer>(strips.value(), device);
        const auto toWarnings =
            mixer->engine().state().lastError.subscribe([&observer](const std::optional<std::string>& warning
                                                        ) {
                if (warning) observer.warn(*warning);
            });
        setUpMix(mixer->engine(), document.value());
        awaitPlugins(mixer->engine(), mixer->loop(), observer.isCancelled);
        if (options.bufferSize) mixer->engine().setBufferSize(*options.bufferSize);
        if (auto started = mixer->start(); !started) return started.error();
        if (routed > outputs.value())
            observer.warn(fmt::format(
                "The session goes to outputs up to {}, but there are only {}: what goes beyond is not heard.",
                routed, outputs.value()
            ));
        auto writer = SoundFileWriter::create(options.output, outputs.value(), reader.value().sampleRate());
        if (!writer) return writer.error();
        std::unique_ptr<Run> run(
            new Run(std::move(reader).value(), std::move(writer).value(), std::move(mixer), outputs.value())
        );
        if (options.stems) {
            auto stems = StemFiles::create(*options.stems, run->stripNames(), run->reader.sampleRate());
            if (!stems) return stems.error();
            run->stems = std::move(stems).value();
        }
        return run;
    }

    Result<RenderReport> mixToTheEnd(const RenderObserver& observer) {
        const auto start = std::chrono::steady_clock::now();
        const std::int64_t total = reader.frameCount();
        for (std::int64_t done = 0; done < total; done += static_cast<std::int64_t>(mixer->blockLength())) {
            if (observer.isCancelled()) return Error{"Stopped before the end; nothing was written."};
            if (auto mixed = mixBlock(total - done); !mixed) return mixed.error();
            observer.progress(static_cast<double>(done) / static_cast<double>(total));
        }
        if (auto committed = commit(); !committed) return committed.error();
        const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
        return report.finish(reader.sampleRate(), static_cast<double>(total), wall.count());
    }

  private:
    Run(SoundFileReader source, SoundFileWriter destination, std::unique_ptr<OfflineMixer> startedMixer,
        std::size_t outputs)
        : reader(std::move(source)),
          writer(std::move(destination)),
          mixer(std::move(startedMixer)),
          report(*mixer),
          captured(reader.channelCount(), mixer->blockLength()),
          played(outputs, mixer->blockLength()) {}

    [[nodiscard]] std::vector<std::string> stripNames() const {
        std::vector<std::string> names;
        for (const session::ChannelStrip& strip : mixer->engine().state().channelStrips.get())
            names.push_back(strip.name);
        return names;
    }

    /// The last block is padded with silence for the pass; only what the input covers is written.
    Result<Done> mixBlock(std::int64_t framesLeft) {
        const auto frames =
            static_cast<std::size_t>(std::min(framesLeft, static_cast<std::int64_t>(mixer->blockLength())));
        const auto read = reader.read(captured.beginning(frames));
        if (!read) return read.error();
        captured.silenceFrom(read.value());
        mixer->cycle(captured.readable(), played.writable());
        report.add(*mixer);
        const std::vector<std::span<float>> kept = played.beginning(frames);
        if (auto written = writer.write(std::vector<std::span<const float>>(kept.begin(), kept.end()));
            !written)
            return written;
        return stems ? stems->write(mixer->automix().channelOutputs(), frames) : Done{};
    }

    Result<Done> commit() {
        if (stems)
            if (auto committed = stems->commit(); !committed) return committed;
        return writer.commit();
    }

    SoundFileReader reader;
    SoundFileWriter writer;
    std::unique_ptr<OfflineMixer> mixer;
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
