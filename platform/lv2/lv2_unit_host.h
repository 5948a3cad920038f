#pragma once

#include "platform/base/system_log.h"
#include "platform/effects/audio_unit_host.h"
#include "platform/lv2/effect_scan.h"
#include "platform/lv2/render_mode.h"
#include "platform/lv2/search_path.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

namespace orvane::platform::lv2 {

struct HostServices;

/// Hosts the LV2 plugins of this computer. The host's loading thread loads plugins one after the other and
/// calls the completions. It also destroys units after their last reference is dropped, so that the owner
/// does not wait for a plugin that is being loaded. The destructor answers open requests with an error; it
/// waits for the plugin that is being loaded, and for at most five seconds for released plugins that are
/// still working. Units may outlive the host; one that is released later while its plugin is working is not
/// cleaned up.
class Lv2UnitHost final : public AudioUnitHost {
  public:
    /// `searchPath`: the folders of bundles, separated by colons. `systemLog` must outlive host and units.
    /// `effectCache`: the file that caches the results of a scan; not cached if absent.
    explicit Lv2UnitHost(
        SystemLog& systemLog, std::string searchPath = environmentSearchPath(),
        std::optional<std::filesystem::path> effectCache = std::nullopt,
        RenderMode renderMode = RenderMode::live
    );
    ~Lv2UnitHost() override;
    Lv2UnitHost(const Lv2UnitHost&) = delete;
    Lv2UnitHost& operator=(const Lv2UnitHost&) = delete;

    /// The first call, or the first instantiation, scans the search path; plugins that are installed later
    /// are not found. Any thread.
    std::vector<AVAudioUnitComponent>
    componentsMatchingDescription(const AudioComponentDescription& description) override;

    /// Ends the current scan and all later ones, so that the program can end at once. Any thread.
    void cancelScan() { scanStop.request_stop(); }

    void expectSampleRate(double sampleRate) override;
    void instantiate(
        const AudioComponentDescription& description, std::uint32_t options,
        InstantiationCompletion completion
    ) override;

    std::vector<AUAudioUnitPreset> factoryPresets(const AudioComponentDescription& description) override;
    /// A child process reads the preset; it has five seconds.
    void readFactoryPreset(const AUAudioUnitPreset& preset, const PresetCompletion& completion) override;

  private:
    /// A request that the loading thread serves or refuses.
    struct Request {
        std::function<void()> serve;
        std::function<void(Error)> refuse;
    };

    /// The queue of the loading thread. Units use it in their deleters.
    struct Work {
        std::mutex mutex;
        std::condition_variable changed;
        std::deque<Request> requests;
        std::vector<std::unique_ptr<AUAudioUnit>> discarded;
        bool isClosing = false;
    };

    void ask(Request request);
    const InstalledEffects& effects();
    Result<PropertyList::Dictionary> stateOf(const AUAudioUnitPreset& preset);
    Result<std::shared_ptr<AUAudioUnit>> makeUnit(const AudioComponentDescription& description);
    /// Catches all exceptions: the program continues without the effect.
    Result<std::shared_ptr<AUAudioUnit>> makeUnitSafely(const AudioComponentDescription& description);
    static void discard(std::unique_ptr<AUAudioUnit> unit, const std::weak_ptr<Work>& loader);
    void serveRequests();

    std::shared_ptr<HostServices> services;
    std::string path;
    std::optional<std::filesystem::path> cacheFile;
    std::stop_source scanStop;
    std::once_flag scanned;
    InstalledEffects installed;

    std::shared_ptr<Work> work = std::make_shared<Work>();
    std::thread loader;
};

} // namespace orvane::platform::lv2
