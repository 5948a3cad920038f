#include "platform/alsa/alsa_audio_driver.h"

#include "platform/alsa/alsa_library.h"
#include "platform/alsa/alsa_stream.h"
#include "platform/alsa/configuration.h"
#include "platform/alsa/device_list.h"
#include "platform/audio_hardware/device_watches.h"

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

namespace orvane::platform::alsa {

namespace {

constexpr std::uint32_t defaultBufferSize = 512;

std::optional<std::string> pcmNameOf(std::string_view uid) {
    if (!uid.starts_with(uidPrefix)) return std::nullopt;
    return std::string(uid.substr(uidPrefix.size()));
}

} // namespace

struct AlsaAudioDriver::State {
    explicit State(Setup setup)
        : lookup{Configuration(setup.configurationFile), CardStatus(std::move(setup.cardStatusFolder)), setup.sampleRate},
          list(lookup, std::move(setup.pcmNames), [this](const std::string& name) { return isLeased(name); }),
          reservations(setup.reservations),
          lender(setup.priorityLender) {}

    [[nodiscard]] bool isLeased(const std::string& pcmName) const {
        const auto lease = leases.find(pcmName);
        return lease != leases.end() && !lease->second.expired();
    }

    /// Reserves the card of a PCM; the lease is empty if no card is known to have it.
    [[nodiscard]] Result<CardReservations::Lease, ErrorNumber>
    reserve(const std::string& pcmName, std::function<void()> onRequest = {}) const {
        const auto card = lookup.cards.cardNumber(pcmName);
        if (!card || reservations == nullptr) return CardReservations::Lease();
        auto lease = reservations->reserve(*card, std::move(onRequest));
        if (!lease) return -EBUSY;
        return lease;
    }

    /// The size that the device would choose; it does not stay configured.
    [[nodiscard]] Result<std::uint32_t, ErrorNumber>
    negotiate(const std::string& pcmName, std::uint32_t wanted) const {
        return DeviceOffer::ask(lookup, pcmName).settle(wanted);
    }

    /// The remembered size; asks the device if there is none.
    Result<std::uint32_t, ErrorNumber> bufferSize(const std::string& pcmName) {
        if (const auto known = bufferSizes.find(pcmName); known != bufferSizes.end()) return known->second;
        const auto learnt = negotiate(pcmName, defaultBufferSize);
        if (learnt) bufferSizes[pcmName] = learnt.value();
        return learnt;
    }

    void setBufferSize(const std::string& pcmName, std::uint32_t frameCount) {
        if (std::exchange(bufferSizes[pcmName], frameCount) == frameCount) return;
        notifier.announce(std::string(uidPrefix) + pcmName, AudioDeviceChange::bufferSize);
    }

    /// Held during all queries of devices, which allow only one at a time.
    std::mutex mutex;
    PcmLookup lookup;
    DeviceList list;
    /// By PCM name, as are the leases.
    std::map<std::string, std::uint32_t> bufferSizes;
    /// Each is held by the stream that has the device.
    std::map<std::string, std::weak_ptr<const void>> leases;
    DeviceNotifier notifier;
    CardReservations* reservations;
    PriorityLender* lender;
};

AlsaAudioDriver::AlsaAudioDriver() : AlsaAudioDriver(Setup{}) {}

AlsaAudioDriver::AlsaAudioDriver(Setup setup) {
    silenceMessages();
    state = std::make_unique<State>(std::move(setup));
}

AlsaAudioDriver::~AlsaAudioDriver() = default;

std::vector<AudioDriverDevice> AlsaAudioDriver::devices() {
    const std::scoped_lock lock(state->mutex);
    return state->list.devices();
}

std::optional<AudioDriverDevice> AlsaAudioDriver::device(std::string_view uid) {
    const auto pcmName = pcmNameOf(uid);
    if (!pcmName) return std::nullopt;
    const std::scoped_lock lock(state->mutex);
    // A device whose card is refused is described as in use.
    const auto reservation = state->reserve(*pcmName);
    return state->list.device(*pcmName);
}

Result<std::uint32_t, OSStatus> AlsaAudioDriver::bufferSize(std::string_view uid) {
    const auto pcmName = pcmNameOf(uid);
    if (!pcmName) return kAudioHardwareBadDeviceError;
    const std::scoped_lock lock(state->mutex);
    const auto size = state->bufferSize(*pcmName);
    if (!size) return statusOf(size.error());
    return size.value();
}

OSStatus AlsaAudioDriver::requestBufferSize(std::string_view uid, std::uint32_t frameCount) {
    const auto pcmName = pcmNameOf(uid);
    if (!pcmName) return kAudioHardwareBadDeviceError;
    const std::scoped_lock lock(state->mutex);
    if (state->isLeased(*pcmName)) return kAudioHardwareIllegalOperationError;
    const auto reservation = state->reserve(*pcmName);
    if (!reservation) return statusOf(reservation.error());
    // Remembers the old size, so that watches are notified of a difference.
    if (const auto before = state->bufferSize(*pcmName); !before) return statusOf(before.error());
    const auto granted = state->negotiate(*pcmName, frameCount);
    if (!granted) return statusOf(granted.error());
    state->setBufferSize(*pcmName, granted.value());
    return noErr;
}

Result<std::unique_ptr<AudioStream>, OSStatus>
AlsaAudioDriver::open(std::string_view uid, bool enableInput, AudioStreamClient& client) {
    const auto pcmName = pcmNameOf(uid);
    if (!pcmName) return kAudioHardwareBadDeviceError;
    const std::scoped_lock lock(state->mutex);
    const auto reportLoss = [&notifier = state->notifier, uid = std::string(uid)] {
        notifier.announce(uid, AudioDeviceChange::died);
    };
    auto reservation = state->reserve(*pcmName, reportLoss);
    if (!reservation) return statusOf(reservation.error());
    const auto size = state->bufferSize(*pcmName);
    if (!size) return statusOf(size.error());
    auto device = Duplex::open(state->lookup, *pcmName, enableInput, size.value());
    if (!device) return statusOf(device.error());
    state->setBufferSize(*pcmName, static_cast<std::uint32_t>(device.value().periodFrames()));

    const auto lease = std::make_shared<const CardReservations::Lease>(std::move(reservation).value());
    state->leases[*pcmName] = lease;
    return std::unique_ptr<AudioStream>(
        std::make_unique<AlsaStream>(std::move(device).value(), client, reportLoss, lease, state->lender)
    );
}

std::unique_ptr<AudioDeviceWatch> AlsaAudioDriver::watch(std::string_view uid, Listener listener) {
    return state->notifier.watch(uid, std::move(listener));
}

} // namespace orvane::platform::alsa
