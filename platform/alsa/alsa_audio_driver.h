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

/// Audio hardware through alsa-lib: sound cards by their ids ("alsa:hw:CARD=X32,DEV=0"), the PCMs in the
/// user's configuration ("alsa:NAME") and, last, PCMs of sound servers. Made and owned by the composition
/// root; silences alsa-lib's own messages.
class AlsaAudioDriver final : public AudioDriver {
  public:
    /// Replacements for the computer's defaults.
    struct Setup {
        /// The configuration that defines the PCMs; empty for the system's and the user's.
        std::filesystem::path configurationFile = {};
        /// The PCMs to list; empty for the computer's hardware and the configured ones.
        std::vector<std::string> pcmNames = {};
        /// The folder in which the kernel publishes the state of sound cards.
        std::filesystem::path cardStatusFolder = "/proc/asound";
        /// The rate for all devices that offer it, in Hz; if absent, the one that the card runs at, or else
        /// 48000.
        std::optional<unsigned> sampleRate = {};
        /// Negotiates the use of cards with other programs; must outlive the driver. May be null.
        CardReservations* reservations = nullptr;
        /// Helps I/O threads that may not take real-time priority themselves; must outlive the driver. May be
        /// null.
        PriorityLender* priorityLender = nullptr;
    };

    AlsaAudioDriver();
    explicit AlsaAudioDriver(Setup setup);
    ~AlsaAudioDriver() override;
    AlsaAudioDriver(const AlsaAudioDriver&) = delete;
    AlsaAudioDriver& operator=(const AlsaAudioDriver&) = delete;

    [[nodiscard]] std::string_view name() const override { return "alsa"; }

    /// Devices in use by other programs come last, and their names say so. They are described by what is
    /// remembered or what the kernel publishes.
    std::vector<AudioDriverDevice> devices() override;

    /// Opens no other device. Asks another program that has the card to release it, as do setting up and
    /// opening a device.
    std::optional<AudioDriverDevice> device(std::string_view uid) override;

    /// The size that the device chose for the requested one; asks the device once and remembers the answer.
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
