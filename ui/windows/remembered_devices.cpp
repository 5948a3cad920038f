#include "ui/windows/remembered_devices.h"

#include "audio/find_device.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace orvane::ui {

namespace {

constexpr std::string_view deviceKey = "orvaneDevice";
constexpr std::string_view masterDeviceKey = "orvaneMasterDevice";
constexpr std::string_view midiSourceKey = "orvaneMIDISource";

} // namespace

void RememberedDevices::addTo(LaunchOptions& options) const {
    const auto usable = [&](std::string_view key) -> std::optional<std::string> {
        const auto& offered = engine.state().availableDevices.get();
        const auto found =
            std::ranges::find(offered, preferences.value(key).value_or(""), &audio::AudioDeviceInfo::uid);
        if (found == offered.end() || audio::rateProblem(*found, options.sampleRate)) return std::nullopt;
        return found->uid;
    };
    if (!options.device) options.device = usable(deviceKey);
    if (!options.masterDevice) options.masterDevice = usable(masterDeviceKey);
}

void RememberedDevices::selectMIDISource() const {
    for (const midi::MIDIDeviceInfo& source : engine.state().availableMIDIDevices.get())
        if (std::to_string(source.id) == preferences.value(midiSourceKey)) engine.selectMIDIDevice(source.id);
}

void RememberedDevices::follow() {
    const engine::EngineState& state = engine.state();
    const auto followDevice = [this](const auto& device, std::string_view key) {
        subscriptions.push_back(device.subscribe([this,
                                                  key](const std::optional<audio::AudioDeviceInfo>& chosen) {
            remember(key, chosen ? chosen->uid : "");
        }));
    };
    followDevice(state.selectedDevice, deviceKey);
    followDevice(state.masterOutputDevice, masterDeviceKey);
    subscriptions.push_back(state.selectedMIDIDeviceID.subscribe([this](const std::optional<std::int32_t>& id
                                                                 ) {
        remember(midiSourceKey, id ? std::to_string(*id) : "");
    }));
}

void RememberedDevices::remember(std::string_view key, const std::string& value) {
    if (preferences.value(key).value_or("") == value) return;
    const auto kept = preferences.setValue(key, value);
    if (!kept) log.post(platform::LogLevel::error, "preferences", {kept.error().description});
}

} // namespace orvane::ui
