#include "audio/render_pass.h"

#include "dsp/sound_bounds.h"
#include "platform/base/flush_denormals.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace orvane::audio {

namespace {

/// Scales the reference noise on top of its gain.
constexpr double referenceNoiseScale = 0.6;
/// The smallest gain that the reduction meters show, -120 dB.
constexpr double smallestShownGain = 1e-6;

/// The steps of one pass, in the order they run.
class Pass final {
  public:
    Pass(
        std::span<const std::span<const float>> capturedBlocks, std::size_t blockLength,
        dsp::AutomixProcessor& processor, MixerRealtimeState& shared
    ) noexcept
        : captured(capturedBlocks),
          frameCount(blockLength),
          automix(processor),
          state(shared),
          kernels(processor.laneKernels()),
          scratch(shared.scratch),
          routing(shared.routing.hold()),
          strips(shared.channelCount()) {}

    void capture() noexcept {
        for (std::size_t strip = 0; strip < strips; ++strip) {
            const std::optional<std::size_t>& input = routing->routingInputs[strip];
            const bool isRouted = input && *input < captured.size();
            scratch.routedMaskScratch()[strip] = isRouted;
            if (!isRouted) continue;
            const float* const samples = captured[*input].data();
            double* const block = scratch.inputBlocksScratch[strip].data();
            if (kernels.widen(block, samples, frameCount, state.inputPeaks.threshold(strip)))
                state.inputPeaks.add(strip, {samples, frameCount});
        }
    }

    void addReferenceNoise() noexcept {
        const double gain =
            dsp::orSilence<double>(state.noiseGain() * referenceNoiseScale, dsp::largestSample);
        for (double& sample : scratch.inputBlocksScratch[strips])
            sample = gain * state.pinkNoise.next();
        scratch.routedMaskScratch()[strips] = true;
    }

    void runInserts() noexcept {
        const auto inserts = state.inserts.hold();
        const std::span<const bool> routed = scratch.routedMaskScratch();
        const bool canShare = frameCount > 0 && frameCount <= plugins::InsertRenderContext::maximumFrames;
        if (state.insertWorkers && canShare) {
            const double blockSeconds = static_cast<double>(frameCount) / state.sampleRate;
            state.insertWorkers->run(*inserts, scratch.inputBlocksScratch, routed, blockSeconds);
            return;
        }
        for (std::size_t strip = 0; strip < strips; ++strip)
            if (routed[strip]) inserts->render(strip, scratch.inputBlocksScratch[strip]);
    }

    void mix() noexcept {
        const auto [channels, master] =
            automix.process(scratch.inputBlocksScratch, scratch.routedMaskScratch());
        narrow(scratch.masterFloatScratch[0], master, state.masterPeak, 0);
        const bool masterIsHere = state.masterOutputRingBuffers.empty();
        const auto& active = masterIsHere ? routing->activeChannelsWithMaster : routing->activeOutputChannels;

        clear(scratch.outputSumsScratch, active);
        for (std::size_t strip = 0; strip < strips; ++strip) {
            if (automix.rampsGains())
                rampStrip(strip, channels[strip]);
            else
                send(channels[strip], routing->routingOutputs[strip], scratch.outputSumsScratch);
        }
        scratch.hasRamped = automix.rampsGains();
        if (masterIsHere) {
            send(master, routing->masterSends, scratch.outputSumsScratch);
            limit(scratch.outputSumsScratch);
        }
        deliver(
            scratch.outputSumsScratch, scratch.outputFloatScratch, active, state.outputRingBuffers,
            state.outputPeaks
        );
        if (!masterIsHere) deliverMasterDevice(master);
    }

    void publish(std::uint64_t startTicks) noexcept {
        const std::span<const double> gains = automix.currentGains();
        for (std::size_t strip = 0; strip < strips; ++strip) {
            const double gain = std::max(gains[strip], smallestShownGain);
            scratch.gainReductionScratch[strip] = gain < 1.0 ? -20.0 * std::log10(gain) : 0.0;
        }
        state.publishMeters(automix);
        state.publishLoad(startTicks, frameCount);
        state.countBlock();
    }

  private:
    using Sums = dsp::ChannelBlocks<double>;

    static void clear(Sums& sums, std::span<const std::size_t> active) noexcept {
        for (const std::size_t channel : active)
            if (channel < sums.channelCount()) std::ranges::fill(sums[channel], 0.0);
    }

    void send(std::span<const double> block, const Sends& sends, Sums& sums) noexcept {
        for (const Send& send : sends)
            if (send.channel < sums.channelCount())
                kernels.addScaled(sums[send.channel].data(), block.data(), send.gain, frameCount);
    }

    /// A send whose gain has changed runs there in a line; a new one begins at silence.
    void rampStrip(std::size_t strip, std::span<const double> block) noexcept {
        const Sends& sends = routing->routingOutputs[strip];
        Sums& sums = scratch.outputSumsScratch;
        Sends& last = scratch.lastSends[strip];
        if (!scratch.hasRamped) last = sends;
        for (const Send& send : sends) {
            if (send.channel >= sums.channelCount() || frameCount == 0) continue;
            const double from = last.gainTo(send.channel);
            const double step = (send.gain - from) / static_cast<double>(frameCount);
            kernels.addRamped(sums[send.channel].data(), block.data(), from, step, frameCount);
        }
        last = sends;
    }

    /// Limits the outputs that the master bus is sent to.
    void limit(Sums& sums) noexcept {
        if (!state.limiter) return;
        std::array<double*, dsp::TruePeakLimiter::mostChannels> limited{};
        std::size_t count = 0;
        for (const Send& send : routing->masterSends) {
            if (send.channel >= sums.channelCount()) continue;
            double* const output = sums[send.channel].data();
            if (std::find(limited.begin(), limited.begin() + count, output) == limited.begin() + count)
                limited[count++] = output;
        }
        if (count == 0) return;
        state.limiter->process(std::span(limited).first(count), frameCount);
        state.publishLimiterGain(state.limiter->lowestGain());
    }

    void narrow(
        std::span<float> samples, std::span<const double> block, SignalPeaks& peaks, std::size_t signal
    ) noexcept {
        if (kernels.narrow(samples.data(), block.data(), frameCount, peaks.threshold(signal)))
            peaks.add(signal, samples);
    }

    /// The master bus alone, copied rather than added: both sides of a pair may name the same output.
    void deliverMasterDevice(std::span<const double> master) noexcept {
        Sums& sums = scratch.masterOutputSumsScratch;
        for (const Send& send : routing->masterSends)
            if (send.channel < sums.channelCount()) std::ranges::copy(master, sums[send.channel].begin());
        limit(sums);
        deliver(
            sums, scratch.masterOutputFloatScratch, routing->activeMasterOutputChannels,
            state.masterOutputRingBuffers, state.masterOutputPeaks
        );
    }

    void deliver(
        const Sums& sums, dsp::ChannelBlocks<float>& floats, std::span<const std::size_t> active,
        const RingBuffers& rings, SignalPeaks& peaks
    ) noexcept {
        for (const std::size_t channel : active) {
            if (channel >= rings.size()) continue;
            narrow(floats[channel], sums[channel], peaks, channel);
            rings[channel]->write(floats[channel]);
        }
    }

    std::span<const std::span<const float>> captured;
    std::size_t frameCount;
    dsp::AutomixProcessor& automix;
    MixerRealtimeState& state;
    const dsp::LaneKernels& kernels;
    RenderScratch& scratch;
    RenderTable<RoutingTable>::Hold routing;
    std::size_t strips;
};

} // namespace

void renderPass(
    std::span<const std::span<const float>> captured, std::size_t frameCount, dsp::AutomixProcessor& automix,
    MixerRealtimeState& state
) noexcept {
    const std::uint64_t startTicks = state.clock.absoluteTime();
    const platform::FlushDenormals flushDenormals;
    state.ensureScratch(frameCount);
    Pass pass(captured, frameCount, automix, state);
    pass.capture();
    pass.addReferenceNoise();
    pass.runInserts();
    pass.mix();
    pass.publish(startTicks);
}

void outputPull(
    const RingBuffers& rings, std::span<const std::span<float>> outputs, std::size_t frameCount
) noexcept {
    for (std::size_t channel = 0; channel < outputs.size(); ++channel) {
        if (channel < rings.size())
            rings[channel]->read(outputs[channel].first(frameCount));
        else
            std::ranges::fill(outputs[channel], 0.0F);
    }
}

} // namespace orvane::audio
