#pragma once

#include "platform/base/system_log.h"
#include "platform/effects/audio_unit_host.h"
#include "platform/lv2/effect_scan.h"
#include "platform/lv2/render_mode.h"
#include "platform/lv2/search_path.h"

#include <condition_variable>
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

/// Hosts the LV2 plugins of this machine. Plugins are loaded on a thread of the host's own, one after the
/// other; completions come from there, and there a unit is destroyed once nobody has it, so that who lets go
/// of it does not wait for a plugin that is being loaded. A request that is still open when the host is
/// destroyed is answered with an error by the destructor, which waits for the plugin that is being loaded,
/// and for at most five seconds for plugins that were let go of while they were at work. Its units may
/// outlive it; one that is let go of later while its plugin is at work is not cleaned up.
class Lv2UnitHost final : public AudioUnitHost {
  public:
    /// `searchPath`: the folders of bundles, separated by colons. `systemLog` outlives host and units.
    /// `effectCache`: the file that keeps what a scan found for the next start; none if absent.
    explicit Lv2UnitHost(
        SystemLog& systemLog, std::string searchPath = environmentSearchPath(),
        std::optional<std::filesystem::path> effectCache = std::nullopt,
        RenderMode renderMode = RenderMode::live
    );
    ~Lv2UnitHost() override;
    Lv2UnitHost(const Lv2UnitHost&) = delete;
    Lv2UnitHost& operator=(const Lv2UnitHost&) = delete;

    /// The first call, or the first instantiation, scans the search path; what is installed later is not
    /// seen. Any thread.
    std::vector<AVAudioUnitComponent>
    componentsMatchingDescription(const AudioComponentDescription& description) override;

    /// Ends a scan that is under way, and all later ones, so that the program can end at once. Any thread.
    void cancelScan() { scanStop.request_stop(); }

    void expectSampleRate(double sampleRate) override;
    void instantiate(
        const AudioComponentDescription& description, std::uint32_t options,
        InstantiationCompletion completion
    ) override;

    std::vector<AUAudioUnitPreset> factoryPresets(const AudioComponentDescription& description) override;
    /// A process of its own reads the preset, and has five seconds for it.
    void readFactoryPreset(const AUAudioUnitPreset& preset, const PresetCompletion& completion) override;

  private:
    /// Something that is asked for, to be given on the loading thread or refused.
    struct Request {
        std::function<void()> serve;
        std::function<void(Error)> refuse;
    };

    /// What the loading thread has to do. Units look for it when they go.
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
    /// Whatever it throws ends here: the program goes on without the effect.
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
