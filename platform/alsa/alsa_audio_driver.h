#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "platform/audio_hardware/card_reservations.h"
#include "platform/base/realtime_priority.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform::alsa {

/// Audio hardware through alsa-lib: sound cards by their ids ("alsa:hw:CARD=X32,DEV=0"), the PCMs that the
/// user has configured ("alsa:NAME") and, last, what leads to a sound server. Made and owned by the
/// composition root; silences alsa-lib's own messages.
class AlsaAudioDriver final : public AudioDriver {
  public:
    /// What to use instead of the machine's own.
    struct Setup {
        /// The configuration that defines the PCMs; empty for the system's and the user's.
        std::filesystem::path configurationFile = {};
        /// The PCMs to list; empty for the machine's hardware and the configured ones.
        std::vector<std::string> pcmNames = {};
        /// Where the kernel publishes the state of sound cards.
        std::filesystem::path cardStatusFolder = "/proc/asound";
        /// The rate for all devices that offer it, in Hz; the one that the card runs at, or else 48000, if
        /// absent.
        std::optional<unsigned> sampleRate = {};
        /// Agrees with other programs on who has a card; outlives the driver. May be null.
        CardReservations* reservations = nullptr;
        /// Helps I/O threads that may not take real-time priority themselves; outlives the driver. May be
        /// null.
        PriorityLender* priorityLender = nullptr;
    };

    AlsaAudioDriver();
    explicit AlsaAudioDriver(Setup setup);
    ~AlsaAudioDriver() override;
    AlsaAudioDriver(const AlsaAudioDriver&) = delete;
    AlsaAudioDriver& operator=(const AlsaAudioDriver&) = delete;

    [[nodiscard]] std::string_view name() const override { return "alsa"; }

    /// A device in use by another program comes last, and its name says so. It is described by what is known
    /// from before or what the kernel shows of it.
    std::vector<AudioDriverDevice> devices() override;

    /// Opens no other device. Another program that has the card is asked to let go of it, as it is where a
    /// device is set up and opened.
    std::optional<AudioDriverDevice> device(std::string_view uid) override;

    /// The size that the device chose for the one asked for; asks the device once and remembers the answer.
    Result<std::uint32_t, OSStatus> bufferSize(std::string_view uid) override;

    /// Refused with `kAudioHardwareIllegalOperationError` while a stream has the device: its size is fixed.
    OSStatus requestBufferSize(std::string_view uid, std::uint32_t frameCount) override;

    Result<std::unique_ptr<AudioStream>, OSStatus>
    open(std::string_view uid, bool enableInput, AudioStreamClient& client) override;

    std::unique_ptr<AudioDeviceWatch> watch(std::string_view uid, Listener listener) override;

  private:
    struct State;

    std::unique_ptr<State> state;
};

} // namespace orvane::platform::alsa
