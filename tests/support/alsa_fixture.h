#pragma once

#include "platform/alsa/alsa_audio_driver.h"
#include "support/build_files.h"
#include "support/temporary_folder.h"

#include <pthread.h>
#include <sched.h>

#include <condition_variable>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::test {

/// The device that most tests define.
inline constexpr std::string_view scriptedUID = "alsa:device";

/// A driver over PCMs that a test defines, in a folder of its own. "scripted" is a PCM type, see
/// scripted_pcm.cpp.
class AlsaFixture final {
  public:
    /// `definitions` is an alsa-lib configuration, with FOLDER for the folder's path.
    explicit AlsaFixture(
        std::string definitions, std::vector<std::string> pcmNames = {"device"},
        std::optional<unsigned> sampleRate = {}, platform::PriorityLender* lender = nullptr,
        platform::CardReservations* reservations = nullptr
    ) {
        constexpr std::string_view placeholder = "FOLDER";
        for (auto at = definitions.find(placeholder); at != std::string::npos;
             at = definitions.find(placeholder))
            definitions.replace(at, placeholder.size(), (folder / "").parent_path().string());
        definitions += "pcm_type.scripted.lib \"" + builtModule("liborvane_scripted_pcm") + "\"\n";
        driver = std::make_unique<platform::alsa::AlsaAudioDriver>(platform::alsa::AlsaAudioDriver::Setup{
            .configurationFile = folder.add("asound.conf", definitions),
            .pcmNames = std::move(pcmNames),
            .cardStatusFolder = folder / "cards",
            .sampleRate = sampleRate,
            .reservations = reservations,
            .priorityLender = lender});
    }

    /// Creates a kernel file of the card with this number, such as "pcm0p/sub0/hw_params".
    void showCard(int number, const std::string& id, const std::string& file, const std::string& content) {
        const std::string card = "card" + std::to_string(number);
        const std::filesystem::path shown = folder / "cards" / card / file;
        std::filesystem::create_directories(shown.parent_path());
        std::ofstream(shown) << content;
        const std::filesystem::path link = folder / "cards" / id;
        if (!std::filesystem::is_symlink(link)) std::filesystem::create_directory_symlink(card, link);
    }

    platform::alsa::AlsaAudioDriver* operator->() { return driver.get(); }
    /// Transfers ownership of the driver.
    std::unique_ptr<platform::alsa::AlsaAudioDriver> take() { return std::move(driver); }

    const TemporaryFolder folder;

  private:
    std::unique_ptr<platform::alsa::AlsaAudioDriver> driver;
};

/// Runs a test's function in each cycle and counts cycles. Devices without a clock run free, so the thread
/// drops its real-time priority when the awaited cycles have run.
class AlsaClient final : public platform::AudioStreamClient {
  public:
    using Inputs = std::span<const std::span<const float>>;
    using Outputs = std::span<const std::span<float>>;
    using Work = std::function<void(Inputs, Outputs, std::size_t)>;

    explicit AlsaClient(std::size_t awaitedCycles, Work cycleWork = {})
        : awaited(awaitedCycles), work(std::move(cycleWork)) {}

    void cycle(Inputs inputs, Outputs outputs, std::size_t frameCount) noexcept override {
        if (work) work(inputs, outputs, frameCount);
        const std::scoped_lock lock(mutex);
        if (++count < awaited) return;
        const sched_param ordinary{};
        pthread_setschedparam(pthread_self(), SCHED_OTHER, &ordinary);
        reached.notify_all();
    }

    void waitForCycles() {
        std::unique_lock lock(mutex);
        reached.wait(lock, [this] { return count >= awaited; });
    }

    std::size_t cycleCount() {
        const std::scoped_lock lock(mutex);
        return count;
    }

  private:
    const std::size_t awaited;
    const Work work;
    std::mutex mutex;
    std::condition_variable reached;
    std::size_t count = 0;
};

} // namespace orvane::test
