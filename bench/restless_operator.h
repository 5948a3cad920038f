#pragma once

#include "bench_mixer.h"

#include <cstddef>
#include <memory>
#include <random>
#include <string_view>
#include <vector>

namespace orvane::bench {

/// Edits a random control of a random strip every millisecond, recalls a scene ten times a second, and now
/// and then removes a plugin from its strip and restores it. Works while the mixer's loop runs. Main thread.
class RestlessOperator final {
  public:
    /// `plugin`: the plugin on every strip.
    RestlessOperator(BenchMixer& benchMixer, std::string_view plugin);

    [[nodiscard]] std::size_t edits() const { return editCount; }
    [[nodiscard]] std::size_t recalls() const { return recallCount; }
    [[nodiscard]] std::size_t pluginLoads() const { return loadCount; }

  private:
    void edit();
    void editStrip();
    void editMaster();
    void recall();
    void reload();
    double between(double low, double high);
    std::size_t below(std::size_t count);
    const platform::Uuid& anyStrip();

    BenchMixer& mixer;
    platform::AVAudioUnitComponent component;
    std::mt19937 random{1};
    std::size_t editCount = 0;
    std::size_t recallCount = 0;
    std::size_t loadCount = 0;
    std::vector<platform::Uuid> strips;
    std::vector<std::unique_ptr<platform::MainThreadTimer>> timers;
};

} // namespace orvane::bench
