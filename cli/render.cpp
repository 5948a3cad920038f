#include "cli/render.h"

#include "audio/routing_table.h"
#include "cli/await_plugins.h"
#include "cli/latency_compensation.h"
#include "cli/mix_setup.h"
#include "cli/offline_mixer.h"
#include "cli/read_ahead.h"
#include "cli/standard_input.h"
#include "cli/stem_files.h"
#include "cli/write_behind.h"
#include "dsp/true_peak_limiter.h"
#include "engine/routing_operations.h"
#include "engine/session_files.h"
#include "platform/base/planar_blocks.h"
#include "platform/files/atomic_file.h"
#include "platform/files/sound_file_reader.h"
#include "platform/files/sound_file_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <memory>
#include <system_error>
#include <utility>

namespace orvane::cli {

namespace {

using platform::Done;
using platform::Error;
using platform::PlanarBlocks;
using platform::Result;
using platform::SoundFileReader;
using platform::SoundFileWriter;

/// Frames that reader, mixer and writer exchange at a time: few enough to stay in the processor's caches.
constexpr std::size_t framesPerChunk = 2048;
constexpr const char* stopped = "Stopped before the end; nothing was written.";

/// Reads the session; empty if none is named.
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

/// The number of outputs that the session's routings need.
std::uint64_t
routedOutputs(const std::optional<session::MixerDocumentData>& document, std::size_t stripCount) {
    if (!document) return 0;
    std::uint64_t needed = engine::outputsNeeded(document->master.masterOutputRouting);
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
        "The session uses output {}, but a sound file holds at most {}; set the number with --outputs.",
        needed, mostRenderChannels
    )};
}

std::vector<std::string> stripNames(const engine::MixerEngine& engine) {
    std::vector<std::string> names;
    for (const session::ChannelStrip& strip : engine.state().channelStrips.get())
        names.push_back(strip.name);
    return names;
}

/// Whether both paths lead to the same file, even if it does not exist yet.
bool areSame(const std::filesystem::path& left, const std::filesystem::path& right) {
    std::error_code problem;
    if (std::filesystem::equivalent(left, right, problem)) return true;
    const auto place = [&problem](const std::filesystem::path& path) {
        return std::filesystem::weakly_canonical(std::filesystem::absolute(path, problem), problem);
    };
    const std::filesystem::path ofLeft = place(left);
    return !ofLeft.empty() && ofLeft == place(right);
}

/// Fails if a file to write is also read, or written twice.
Result<Done> checkDestinations(const RenderOptions& options, std::span<const std::string> stripNames) {
    std::vector<std::filesystem::path> taken;
    if (options.input != standardStream) taken.push_back(options.input);
    if (options.session) taken.push_back(*options.session);
    const auto check = [&taken](const std::filesystem::path& destination) -> Result<Done> {
        const auto isTaken = [&](const std::filesystem::path& other) { return areSame(destination, other); };
        if (std::ranges::none_of(taken, isTaken)) return Done{};
        return Error{fmt::format(
            "{} cannot be written, because it is also read, or would be written twice.", destination.string()
        )};
    };
    if (options.output != standardStream) {
        if (auto checked = check(options.output); !checked) return checked;
        taken.push_back(options.output);
    }
    if (options.report) {
        if (auto checked = check(*options.report); !checked) return checked;
        taken.push_back(*options.report);
    }
    if (!options.stems) return Done{};
    for (std::size_t i = 0; i < stripNames.size(); ++i)
        if (auto checked = check(*options.stems / stemFileName(i + 1, stripNames[i])); !checked)
            return checked;
    return Done{};
}

/// The files that a run writes.
struct Files {
    WriteBehind::Files sound;
    std::optional<platform::AtomicFile> report;
};

Result<Files> createFiles(
    const RenderOptions& options, std::size_t outputs, std::span<const std::string> stripNames,
    double sampleRate, const std::function<bool()>& isCancelled
) {
    auto output = options.output == standardStream
                      ? SoundFileWriter::toStandardOutput(outputs, sampleRate, isCancelled)
                      : SoundFileWriter::create(options.output, outputs, sampleRate);
    if (!output) return output.error();
    Files files{{std::move(output).value(), std::nullopt}, std::nullopt};
    if (options.stems) {
        auto stems = StemFiles::create(*options.stems, stripNames, sampleRate);
        if (!stems) return stems.error();
        files.sound.stems = std::move(stems).value();
    }
    if (options.report) {
        auto report = platform::AtomicFile::open(*options.report);
        if (!report) return report.error();
        files.report.emplace(std::move(report).value());
    }
    return files;
}

/// One run: the files that it reads and writes, and the mixer between them.
class Run final {
  public:
    static Result<std::unique_ptr<Run>>
    prepare(const RenderOptions& options, const RenderObserver& observer) {
        auto reader = openSound(options.input, observer.isCancelled);
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
        if (auto problem = setUpMix(mixer->engine(), document.value(), options.outputOverrides))
            return *std::move(problem);
        const std::vector<std::string> names = stripNames(mixer->engine());
        if (auto distinct = checkDestinations(options, names); !distinct) return distinct.error();
        awaitPlugins(mixer->engine(), mixer->loop(), IfStuck::wait, observer.isCancelled);
        if (options.bufferSize) mixer->engine().setBufferSize(*options.bufferSize);
        if (auto started = mixer->start(); !started) return started.error();
        if (routed > outputs.value())
            observer.warn(fmt::format(
                "The session uses outputs up to {}, but there are only {}; the others are not heard.", routed,
                outputs.value()
            ));
        auto files =
            createFiles(options, outputs.value(), names, reader.value().sampleRate(), observer.isCancelled);
        if (!files) return files.error();
        try {
            return std::unique_ptr<Run>(new Run(
                std::move(reader).value(), std::move(files).value(), std::move(mixer), outputs.value()
            ));
        } catch (const std::system_error&) {
            return Error{"The system has no threads left for reading and writing the sound."};
        }
    }

    Result<RenderReport> mixToTheEnd(const RenderObserver& observer) {
        const auto start = std::chrono::steady_clock::now();
        if (auto mixed = mixAll(observer); !mixed) return mixed.error();
        if (auto written = writer.finish(); !written) return written.error();
        const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
        RenderReport figures = report.finish(static_cast<double>(source.frameCount()), wall.count());
        if (auto written = writeReport(figures); !written) return written.error();
        if (auto committed = writer.commit(); !committed) return committed.error();
        if (reportFile)
            if (auto committed = reportFile->commit(); !committed) return committed.error();
        return figures;
    }

  private:
    /// What the limiter, if it is on, makes late.
    [[nodiscard]] LatencyCompensation compensation(std::size_t outputCount) const {
        const session::MasterSettings& master = mixer->engine().state().master.get();
        std::vector<std::size_t> late;
        for (const audio::Send& send : audio::sendsOf(master.masterOutputRouting))
            late.push_back(send.channel);
        const bool isLimited = master.outputOptions.limiterCeilingDBTP && !late.empty();
        const std::size_t frames = isLimited ? dsp::TruePeakLimiter::latencyFrames(source.sampleRate()) : 0;
        return {frames, std::move(late), outputCount, stemCount};
    }

    Run(SoundFileReader input, Files files, std::unique_ptr<OfflineMixer> startedMixer, std::size_t outputs)
        : source(std::move(input)),
          mixer(std::move(startedMixer)),
          report(*mixer, source.sampleRate()),
          chunkLength(std::max(framesPerChunk / mixer->blockLength(), std::size_t{1}) * mixer->blockLength()),
          stemCount(files.sound.stems ? mixer->engine().state().channelStrips.get().size() : 0),
          reportFile(std::move(files.report)),
          silence(source.channelCount(), chunkLength),
          latency(compensation(outputs)),
          reader(source, chunkLength),
          writer(
              std::move(files.sound),
              {PlanarBlocks(outputs, chunkLength), PlanarBlocks(stemCount, chunkLength)}
          ) {}

    Result<Done> writeReport(const RenderReport& figures) {
        if (!reportFile) return Done{};
        const std::string json = figures.json();
        return reportFile->write(std::as_bytes(std::span(json)));
    }

    Result<Done> mixAll(const RenderObserver& observer) {
        while (true) {
            const auto read = reader.next();
            if (!read) {
                // An error of the writer comes first.
                const auto written = writer.finish();
                return written ? read.error() : written.error();
            }
            if (read.value() == nullptr) return mixDelayed(observer);
            framesRead += read.value()->frameCount;
            const auto mixed = mixChunk(read.value()->blocks, read.value()->frameCount, observer);
            if (!mixed) return mixed;
        }
    }

    /// Mixes silence until all that the limiter delays has been written.
    Result<Done> mixDelayed(const RenderObserver& observer) {
        while (framesWritten < framesRead) {
            const std::size_t frames = std::min(framesRead - framesWritten, chunkLength);
            if (auto mixed = mixChunk(silence, frames, observer); !mixed) return mixed;
        }
        return Done{};
    }

    /// The last block is padded with silence; no more frames are written than the input has.
    Result<Done> mixChunk(PlanarBlocks& captured, std::size_t frameCount, const RenderObserver& observer) {
        auto next = writer.next();
        if (!next) return next.error();
        WriteBehind::Chunk& mixed = *next.value();
        mixed.frameCount = 0;
        for (; mixed.frameCount < frameCount; mixed.frameCount += mixer->blockLength()) {
            if (observer.isCancelled()) return Error{stopped};
            const std::size_t at = mixed.frameCount;
            mixer->cycle(
                captured.readable(mixer->blockLength(), at), mixed.outputs.writable(mixer->blockLength(), at)
            );
            if (&captured != &silence) report.add(*mixer);
            takeStems(mixed.stems.writable(mixer->blockLength(), at));
            observer.progress(
                static_cast<double>(framesWritten + at) / static_cast<double>(source.frameCount())
            );
        }
        latency.align(mixed);
        mixed.frameCount = std::min(mixed.frameCount, framesRead - framesWritten);
        framesWritten += mixed.frameCount;
        writer.write();
        return Done{};
    }

    void takeStems(std::span<const std::span<float>> stems) {
        for (std::size_t i = 0; i < stems.size(); ++i)
            mixer->automix().laneKernels().narrow(
                stems[i].data(), mixer->automix().channelOutputs()[i].data(), stems[i].size(),
                std::numeric_limits<float>::infinity()
            );
    }

    SoundFileReader source;
    std::unique_ptr<OfflineMixer> mixer;
    RenderReportBuilder report;
    std::size_t framesRead = 0;
    std::size_t framesWritten = 0;
    std::size_t chunkLength;
    std::size_t stemCount;
    std::optional<platform::AtomicFile> reportFile;
    PlanarBlocks silence;
    LatencyCompensation latency;
    ReadAhead reader;
    WriteBehind writer;
};

} // namespace

Result<RenderReport> render(const RenderOptions& options, const RenderObserver& observer) {
    auto run = Run::prepare(options, observer);
    if (!run) return run.error();
    auto report = run.value()->mixToTheEnd(observer);
    if (report) observer.written();
    if (!report && observer.isCancelled()) return Error{stopped};
    return report;
}

} // namespace orvane::cli
