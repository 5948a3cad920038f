#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"
#include "platform/base/system_log.h"
#include "platform/files/preferences.h"
#include "ui/windows/launch_options.h"

#include <string>
#include <string_view>
#include <vector>

namespace orvane::ui {

/// Keeps the chosen audio devices and MIDI source for the next session and the next launch. Main thread.
class RememberedDevices final {
  public:
    /// All three must outlive this object.
    RememberedDevices(
        engine::MixerEngine& mixerEngine, platform::Preferences& kept, platform::SystemLog& messages
    )
        : engine(mixerEngine), preferences(kept), log(messages) {}

    /// Adds the devices of last time to options that name none, as far as they exist and can run at the rate
    /// of the options.
    void addTo(LaunchOptions& options) const;
    /// Selects the MIDI source of last time if it exists.
    void selectMIDISource() const;
    /// Remembers every later choice.
    void follow();

  private:
    void remember(std::string_view key, const std::string& value);

    engine::MixerEngine& engine;
    platform::Preferences& preferences;
    platform::SystemLog& log;
    std::vector<platform::Subscription> subscriptions;
};

} // namespace orvane::ui
