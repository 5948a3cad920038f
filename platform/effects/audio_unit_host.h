#pragma once

#include "platform/base/audio_component_description.h"
#include "platform/base/audio_unit_rendering.h"
#include "platform/base/result.h"
#include "platform/effects/native_editor.h"
#include "platform/files/property_list.h"

#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace orvane::platform {

// The hosting of effects.

inline constexpr std::uint32_t kAudioUnitType_Effect = fourCharCode("aufx");
inline constexpr std::uint32_t kAudioUnitType_MusicEffect = fourCharCode("aumf");

/// An installed effect. A plain value.
struct AVAudioUnitComponent {
    AudioComponentDescription audioComponentDescription;
    std::string name;
    std::string manufacturerName;

    bool operator==(const AVAudioUnitComponent&) const = default;
};

/// A preset that comes with an effect. A plain value.
struct AUAudioUnitPreset {
    /// Identifies it within its host.
    std::int64_t number = 0;
    std::string name;
    /// The bank it belongs to; empty if none.
    std::string bank = {};

    bool operator==(const AUAudioUnitPreset&) const = default;
};

/// 32-bit float samples, one buffer per channel. A plain value.
struct AVAudioFormat {
    /// In Hz.
    double sampleRate = 0.0;
    std::uint32_t channelCount = 0;

    bool operator==(const AVAudioFormat&) const = default;

    /// Absent if the rate or the channel count is not possible.
    static std::optional<AVAudioFormat> initStandardFormat(double rate, std::uint32_t channels) {
        if (!(rate > 0.0) || !std::isfinite(rate) || channels == 0) return std::nullopt;
        return AVAudioFormat{rate, channels};
    }
};

/// One audio input or output of a unit. Owned by its unit. Main thread.
class AUAudioUnitBus {
  public:
    virtual ~AUAudioUnitBus() = default;

    /// Fails if the unit does not support the format or holds render resources.
    virtual Result<Done> setFormat(const AVAudioFormat& format) = 0;
    virtual void setEnabled(bool enabled) = 0;
};

/// The description of a parameter for editors. A plain value.
struct AUParameterInfo {
    /// A short name, unique within the plugin.
    std::string identifier;
    std::string displayName;
    /// The symbol of the unit, such as "dB"; empty if none.
    std::string unitName;
    /// The plugin's name for a group of parameters; empty if none.
    std::string group;
    float minValue = 0.0F;
    float maxValue = 1.0F;
    float defaultValue = 0.0F;

    /// How editors let the user set a value.
    enum class Kind { continuous, integer, toggle, choice };
    Kind kind = Kind::continuous;
    /// Equal steps of a slider multiply the value; the range does not contain 0.
    bool isLogarithmic = false;
    /// The number of steps of a slider; 0 = as many as possible.
    std::int64_t stepCount = 0;
    /// A value that the plugin displays, such as a meter; it cannot be set.
    bool isReadOnly = false;
    /// Editors should not show it.
    bool isHidden = false;

    /// A named value. The values of a choice, all in ascending order.
    struct NamedValue {
        float value = 0.0F;
        std::string label;

        bool operator==(const NamedValue&) const = default;
    };
    std::vector<NamedValue> namedValues;

    bool operator==(const AUParameterInfo&) const = default;
};

/// A parameter of a unit, which owns it. `value` and `setValue` access one atomic word: any thread, real-time
/// safe.
class AUParameter {
  public:
    virtual ~AUParameter() = default;

    [[nodiscard]] virtual const AUParameterInfo& info() const = 0;

    /// The current value, set by an editor or the plugin.
    [[nodiscard]] virtual float value() const noexcept = 0;
    /// Takes effect with the next block; rounds to the nearest value that range and kind allow. Does nothing
    /// if the parameter is read-only or the value is not finite.
    virtual void setValue(float value) noexcept = 0;
};

class AUViewController;

/// An instance of an effect. Main thread, except the render block. Render resources are held until they are
/// deallocated or the unit is destroyed; no render block may run during either.
class AUAudioUnit {
  public:
    virtual ~AUAudioUnit() = default;

    /// The audio inputs and outputs; empty if the effect has none.
    [[nodiscard]] virtual std::span<AUAudioUnitBus* const> inputBusses() = 0;
    [[nodiscard]] virtual std::span<AUAudioUnitBus* const> outputBusses() = 0;

    /// The longest block that will be rendered, in frames. Must be called before allocating render resources.
    virtual void setMaximumFramesToRender(std::uint32_t frameCount) = 0;

    /// Prepares for rendering with the current formats; fails if the unit does not support them.
    virtual Result<Done> allocateRenderResources() = 0;
    virtual void deallocateRenderResources() = 0;

    /// The render function, valid as long as the unit; returns an error without render resources. Called on
    /// one thread at a time.
    [[nodiscard]] virtual AURenderBlock renderBlock() = 0;

    /// The latency of the last rendered block in frames; 0 before the first one. Any thread, real-time safe.
    [[nodiscard]] virtual std::uint32_t latencyFrames() const noexcept { return 0; }

    /// The unit's complete state, for `setFullState`; absent if it has none.
    [[nodiscard]] virtual std::optional<PropertyList::Dictionary> fullState() const = 0;
    /// Ignores state of another effect and values it cannot read. Fails if the effect may not open a file
    /// that the state names; the rest is restored then. May be called while rendering.
    virtual Result<Done> setFullState(const PropertyList::Dictionary& state) = 0;

    /// Valid as long as the unit; in the plugin's order.
    [[nodiscard]] virtual std::span<AUParameter* const> parameters() = 0;

    /// Calls `completion`, on any thread, with the unit's editor, or with null if it has none.
    virtual void requestViewController(std::function<void(std::shared_ptr<AUViewController>)> completion) = 0;

    /// Opens the plugin's own editor, another one on each call. Returns null if there is none or it cannot be
    /// opened, and logs why. May be slow: it calls the plugin.
    virtual std::unique_ptr<NativeEditor> openNativeEditor(NativeEditorParent& /*parent*/) { return nullptr; }
};

/// The editor of a unit, to be shown in a window: the plugin's own, or a panel of its parameters. Keeps the
/// unit alive.
class AUViewController final {
  public:
    explicit AUViewController(std::shared_ptr<AUAudioUnit> audioUnit) : edited(std::move(audioUnit)) {}

    [[nodiscard]] AUAudioUnit& unit() const { return *edited; }

  private:
    std::shared_ptr<AUAudioUnit> edited;
};

/// The effects of this computer: the installed components, and instances of them. Must outlive its units.
class AudioUnitHost {
  public:
    virtual ~AudioUnitHost() = default;

    /// The installed components that match; zero fields match any. The order is the same on every call. Reads
    /// only descriptions of plugins; the first call may take seconds. Any thread except audio threads.
    [[nodiscard]] virtual std::vector<AVAudioUnitComponent>
    componentsMatchingDescription(const AudioComponentDescription& description) = 0;

    /// Sets the rate, in Hz, at which instances are expected to run: instances for this rate are set up
    /// faster; other rates can still be set. Main thread.
    virtual void expectSampleRate(double /*sampleRate*/) {}

    /// Receives the instance, or why there is none.
    using InstantiationCompletion = std::function<void(std::shared_ptr<AUAudioUnit>, std::optional<Error>)>;

    /// Makes an instance of a component and calls `completion` once, on any thread, possibly before
    /// returning. Main thread.
    virtual void instantiate(
        const AudioComponentDescription& description, std::uint32_t options,
        InstantiationCompletion completion
    ) = 0;

    /// The presets that come with the matching components, sorted by bank and name. Otherwise like
    /// `componentsMatchingDescription`.
    [[nodiscard]] virtual std::vector<AUAudioUnitPreset>
    factoryPresets(const AudioComponentDescription& /*description*/) {
        return {};
    }

    /// Receives a state for `setFullState`, or why it cannot be read.
    using PresetCompletion = std::function<void(Result<PropertyList::Dictionary>)>;

    /// Reads one of the `factoryPresets` and calls `completion` once, on any thread, possibly before
    /// returning. Never called on a host without presets. Main thread.
    virtual void
    readFactoryPreset(const AUAudioUnitPreset& /*preset*/, const PresetCompletion& /*completion*/) {}
};

} // namespace orvane::platform
