#pragma once

#include "platform/audio_driver.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform {

/// Audio hardware through alsa-lib: sound cards by their ids ("alsa:hw:CARD=X32,DEV=0"), the PCMs that the
/// user has configured ("alsa:NAME") and, last, what leads to a sound server. Made and owned by the
/// composition root; silences alsa-lib's own messages.
class AlsaAudioDriver final : public AudioDriver {
  public:
    /// What to use instead of the machine's own.
    struct Setup {
        /// The configuration that defines the PCMs; empty for the system's and the user's.
        std::filesystem::path configurationFile;
        /// The PCMs to list; empty for the machine's hardware and the configured ones.
        std::vector<std::string> pcmNames;
    };

    AlsaAudioDriver();
    explicit AlsaAudioDriver(Setup setup);
    ~AlsaAudioDriver() override;
    AlsaAudioDriver(const AlsaAudioDriver&) = delete;
    AlsaAudioDriver& operator=(const AlsaAudioDriver&) = delete;

    [[nodiscard]] std::string_view name() const override { return "alsa"; }

    /// A device that is busy is listed with what has been learnt of it before, with no channels where that is
    /// nothing.
    std::vector<AudioDriverDevice> devices() override;

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

} // namespace orvane::platform
