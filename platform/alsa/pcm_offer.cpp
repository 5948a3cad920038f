#include "platform/alsa/pcm_offer.h"

#include "platform/alsa/pcm_names.h"

#include <algorithm>
#include <array>
#include <utility>

namespace orvane::platform::alsa {

namespace {

/// More than any device has: a PCM that offers this many converts to what is behind it.
constexpr std::size_t beyondAnyDevice = 512;
/// Supported by every output, with conversion if necessary.
constexpr std::size_t stereo = 2;

constexpr std::array accessesByPreference{
    SND_PCM_ACCESS_RW_INTERLEAVED, SND_PCM_ACCESS_RW_NONINTERLEAVED, SND_PCM_ACCESS_MMAP_INTERLEAVED,
    SND_PCM_ACCESS_MMAP_NONINTERLEAVED};

snd_pcm_format_t libraryFormat(SampleFormat format) {
    switch (format) {
    case SampleFormat::float32LE:
        return SND_PCM_FORMAT_FLOAT_LE;
    case SampleFormat::float32BE:
        return SND_PCM_FORMAT_FLOAT_BE;
    case SampleFormat::int32LE:
        return SND_PCM_FORMAT_S32_LE;
    case SampleFormat::int32BE:
        return SND_PCM_FORMAT_S32_BE;
    case SampleFormat::int24LE:
        return SND_PCM_FORMAT_S24_LE;
    case SampleFormat::int24BE:
        return SND_PCM_FORMAT_S24_BE;
    case SampleFormat::int24PackedLE:
        return SND_PCM_FORMAT_S24_3LE;
    case SampleFormat::int24PackedBE:
        return SND_PCM_FORMAT_S24_3BE;
    case SampleFormat::int16LE:
        return SND_PCM_FORMAT_S16_LE;
    case SampleFormat::int16BE:
        break;
    }
    return SND_PCM_FORMAT_S16_BE;
}

HardwareParameters makeHardwareParameters() {
    return makeRecord<snd_pcm_hw_params_malloc, snd_pcm_hw_params_free, snd_pcm_hw_params_t>();
}

/// The device must wake us for whole periods, and start on command instead of when its buffer is full.
ErrorNumber setSoftwareParameters(snd_pcm_t* pcm, snd_pcm_uframes_t periodFrames) {
    const auto parameters =
        makeRecord<snd_pcm_sw_params_malloc, snd_pcm_sw_params_free, snd_pcm_sw_params_t>();
    snd_pcm_uframes_t never = 0;
    if (const ErrorNumber error = snd_pcm_sw_params_current(pcm, parameters.get())) return error;
    if (const ErrorNumber error = snd_pcm_sw_params_get_boundary(parameters.get(), &never)) return error;
    if (const ErrorNumber error = snd_pcm_sw_params_set_start_threshold(pcm, parameters.get(), never))
        return error;
    if (const ErrorNumber error = snd_pcm_sw_params_set_avail_min(pcm, parameters.get(), periodFrames))
        return error;
    return snd_pcm_sw_params(pcm, parameters.get());
}

} // namespace

Result<PcmOffer, ErrorNumber>
PcmOffer::ask(const Configuration& configuration, const std::string& pcmName, Direction direction) {
    auto opened = configuration.open(pcmName, direction);
    if (!opened) return opened.error();
    const std::size_t most = kindOf(pcmName) == PcmKind::soundServer ? stereo : beyondAnyDevice;
    PcmOffer offer(std::move(opened).value(), direction, most);
    const ErrorNumber error = snd_pcm_hw_params_any(offer.pcm.get(), offer.parameters.get());
    if (error < 0) return error;
    snd_pcm_hw_params_set_rate_resample(offer.pcm.get(), offer.parameters.get(), 0);
    if (!offer.settleAccess()) return -ENOTSUP;
    return offer;
}

PcmOffer::PcmOffer(PcmHandle opened, Direction streamDirection, std::size_t mostChannels)
    : pcm(std::move(opened)),
      direction(streamDirection),
      channelLimit(mostChannels),
      parameters(makeHardwareParameters()) {}

bool PcmOffer::settleAccess() {
    return std::ranges::any_of(accessesByPreference, [this](snd_pcm_access_t access) {
        layout.access = access;
        return snd_pcm_hw_params_set_access(pcm.get(), parameters.get(), access) == 0;
    });
}

bool PcmOffer::takesRate(unsigned rate) const {
    return snd_pcm_hw_params_test_rate(pcm.get(), parameters.get(), rate, 0) == 0;
}

unsigned PcmOffer::rateNear(unsigned rate) const {
    snd_pcm_hw_params_set_rate_near(pcm.get(), copyOfParameters().get(), &rate, nullptr);
    return rate;
}

void PcmOffer::settleRate(unsigned rate) {
    layout.rate = rate;
    snd_pcm_hw_params_set_rate(pcm.get(), parameters.get(), rate, 0);
}

std::size_t PcmOffer::channelCount() const {
    unsigned most = 0;
    snd_pcm_hw_params_get_channels_max(parameters.get(), &most);
    if (most >= beyondAnyDevice) most = stereo;
    unsigned fewest = 0;
    snd_pcm_hw_params_get_channels_min(parameters.get(), &fewest);
    return std::max<std::size_t>(fewest, std::min<std::size_t>(most, channelLimit));
}

bool PcmOffer::settleLayout() {
    layout.channelCount = channelCount();
    if (snd_pcm_hw_params_set_channels(
            pcm.get(), parameters.get(), static_cast<unsigned>(layout.channelCount)
        )
        < 0)
        return false;
    return std::ranges::any_of(allSampleFormats, [this](SampleFormat format) {
        layout.format = format;
        return snd_pcm_hw_params_set_format(pcm.get(), parameters.get(), libraryFormat(format)) == 0;
    });
}

std::uint32_t PcmOffer::periodNear(std::uint32_t frameCount) const {
    snd_pcm_uframes_t frames = frameCount;
    snd_pcm_hw_params_set_period_size_near(pcm.get(), copyOfParameters().get(), &frames, nullptr);
    return static_cast<std::uint32_t>(frames);
}

bool PcmOffer::settlePeriod(std::uint32_t frameCount, unsigned periodCount) {
    if (snd_pcm_hw_params_set_period_size(pcm.get(), parameters.get(), frameCount, 0) < 0) return false;
    for (const unsigned count : {periodCount, periodCount + 1})
        if (snd_pcm_hw_params_set_periods(pcm.get(), parameters.get(), count, 0) == 0) return true;
    unsigned nearest = periodCount + 1;
    return snd_pcm_hw_params_set_periods_near(pcm.get(), parameters.get(), &nearest, nullptr) == 0;
}

Result<Pcm, ErrorNumber> PcmOffer::settle() && {
    if (const ErrorNumber error = snd_pcm_hw_params(pcm.get(), parameters.get()); error < 0) return error;
    snd_pcm_uframes_t bufferFrames = 0;
    snd_pcm_uframes_t periodFrames = 0;
    if (const ErrorNumber error = snd_pcm_get_params(pcm.get(), &bufferFrames, &periodFrames); error < 0)
        return error;
    layout.periodFrames = periodFrames;
    layout.periodCount = bufferFrames / periodFrames;
    if (const ErrorNumber error = setSoftwareParameters(pcm.get(), periodFrames); error < 0) return error;
    return Pcm(std::move(pcm), direction, layout);
}

HardwareParameters PcmOffer::copyOfParameters() const {
    HardwareParameters copy = makeHardwareParameters();
    snd_pcm_hw_params_copy(copy.get(), parameters.get());
    return copy;
}

} // namespace orvane::platform::alsa
