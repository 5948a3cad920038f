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

/// A setting that comes with an effect. A plain value.
struct AUAudioUnitPreset {
    /// Names it to its host.
    std::int64_t number = 0;
    std::string name;
    /// Names the presets that it belongs with; empty for none.
    std::string bank = {};

    bool operator==(const AUAudioUnitPreset&) const = default;
};

/// 32-bit float samples, one buffer per channel. A plain value.
struct AVAudioFormat {
    /// In Hz.
    double sampleRate = 0.0;
    std::uint32_t channelCount = 0;

    bool operator==(const AVAudioFormat&) const = default;

    /// Nothing where no audio can have that format.
    static std::optional<AVAudioFormat> initStandardFormat(double rate, std::uint32_t channels) {
        if (!(rate > 0.0) || !std::isfinite(rate) || channels == 0) return std::nullopt;
        return AVAudioFormat{rate, channels};
    }
};

/// One audio input or output of a unit. Owned by its unit. Main thread.
class AUAudioUnitBus {
  public:
    virtual ~AUAudioUnitBus() = default;

    /// Fails where the unit cannot work with the format, or holds render resources.
    virtual Result<Done> setFormat(const AVAudioFormat& format) = 0;
    virtual void setEnabled(bool enabled) = 0;
};

/// What a parameter is to an editor: how it is named, what it takes. A plain value.
struct AUParameterInfo {
    /// The plugin's own short name, unique within it.
    std::string identifier;
    std::string displayName;
    /// How the unit of the value is written, such as "dB"; empty for none.
    std::string unitName;
    /// A group that belongs together, as the plugin names it; empty for none.
    std::string group;
    float minValue = 0.0F;
    float maxValue = 1.0F;
    float defaultValue = 0.0F;

    /// How a value is chosen.
    enum class Kind { continuous, integer, toggle, choice };
    Kind kind = Kind::continuous;
    /// Equal steps of a slider multiply the value; the range is above 0 or below 0 then.
    bool isLogarithmic = false;
    /// How many values a slider offers; 0 = as many as it can.
    std::int64_t stepCount = 0;
    /// A value that the plugin shows, such as a meter; it cannot be set.
    bool isReadOnly = false;
    /// Not meant for editors.
    bool isHidden = false;

    /// A value with a name. For a choice they are all it takes, in ascending order.
    struct NamedValue {
        float value = 0.0F;
        std::string label;

        bool operator==(const NamedValue&) const = default;
    };
    std::vector<NamedValue> namedValues;

    bool operator==(const AUParameterInfo&) const = default;
};

/// One parameter of a unit, which owns it. Both values are single atomic words: any thread, real-time safe.
class AUParameter {
  public:
    virtual ~AUParameter() = default;

    [[nodiscard]] virtual const AUParameterInfo& info() const = 0;

    /// As it is now, whoever set it.
    [[nodiscard]] virtual float value() const noexcept = 0;
    /// Takes effect with the next block; becomes the nearest value that the parameter's range and kind allow.
    /// Nothing where it is read-only or the value is not finite.
    virtual void setValue(float value) noexcept = 0;
};

class AUViewController;

/// One instance of an effect. Main thread, but for what the render block does. Keeps its render resources
/// until they are deallocated or it is destroyed; neither while a render block of it can run.
class AUAudioUnit {
  public:
    virtual ~AUAudioUnit() = default;

    /// The audio inputs and outputs; none where the effect has none.
    [[nodiscard]] virtual std::span<AUAudioUnitBus* const> inputBusses() = 0;
    [[nodiscard]] virtual std::span<AUAudioUnitBus* const> outputBusses() = 0;

    /// The longest block that will be rendered, in frames. Before the render resources are allocated.
    virtual void setMaximumFramesToRender(std::uint32_t frameCount) = 0;

    /// Makes the unit ready for rendering with the formats that were set; fails where it cannot work with
    /// them.
    virtual Result<Done> allocateRenderResources() = 0;
    virtual void deallocateRenderResources() = 0;

    /// The render entry, valid as long as the unit; gives an error without render resources. Called on one
    /// thread at a time.
    [[nodiscard]] virtual AURenderBlock renderBlock() = 0;

    /// By how many frames the last rendered block lags behind its input; 0 before the first one. Any thread,
    /// real-time safe.
    [[nodiscard]] virtual std::uint32_t latencyFrames() const noexcept { return 0; }

    /// All that makes up the unit's sound, to be restored with `setFullState`; nothing where it has none.
    [[nodiscard]] virtual std::optional<PropertyList::Dictionary> fullState() const = 0;
    /// What does not belong to this effect, or cannot be understood, changes nothing. Fails if the effect was
    /// not given a file that the state names; the rest is restored then. Also while it renders.
    virtual Result<Done> setFullState(const PropertyList::Dictionary& state) = 0;

    /// For as long as the unit lives, in the plugin's order.
    [[nodiscard]] virtual std::span<AUParameter* const> parameters() = 0;

    /// Calls `completion`, on any thread, with the unit's editor, or with nothing where it has none.
    virtual void requestViewController(std::function<void(std::shared_ptr<AUViewController>)> completion) = 0;

    /// Opens the editor that the plugin brings along, one more each time; null where it brings none, or where
    /// that cannot be opened, and the log says why then. The plugin's code may take its time.
    virtual std::unique_ptr<NativeEditor> openNativeEditor(NativeEditorParent& /*parent*/) { return nullptr; }
};

/// What can be shown of a unit in a window: the editor that the plugin brings along, or the panel that its
/// parameters make up. Keeps the unit alive.
class AUViewController final {
  public:
    explicit AUViewController(std::shared_ptr<AUAudioUnit> audioUnit) : edited(std::move(audioUnit)) {}

    [[nodiscard]] AUAudioUnit& unit() const { return *edited; }

  private:
    std::shared_ptr<AUAudioUnit> edited;
};

/// The effects of this machine: which are installed, and instances of them. Outlives its units.
class AudioUnitHost {
  public:
    virtual ~AudioUnitHost() = default;

    /// The installed components that match, zero fields matching any, in an order that is the same on every
    /// call. Reads no more than descriptions of plugins; the first call may take seconds. Any thread but the
    /// audio ones.
    [[nodiscard]] virtual std::vector<AVAudioUnitComponent>
    componentsMatchingDescription(const AudioComponentDescription& description) = 0;

    /// At which rate, in Hz, instances are to run from now on: those that are made for it are set up sooner,
    /// and every other one can still be set. Main thread.
    virtual void expectSampleRate(double /*sampleRate*/) {}

    /// The instance, or why there is none.
    using InstantiationCompletion = std::function<void(std::shared_ptr<AUAudioUnit>, std::optional<Error>)>;

    /// Makes an instance of a component and calls `completion` once with it, on any thread, also from within
    /// this call. Main thread.
    virtual void instantiate(
        const AudioComponentDescription& description, std::uint32_t options,
        InstantiationCompletion completion
    ) = 0;

    /// The settings that come with the components that match, by bank and name. Like
    /// `componentsMatchingDescription`.
    [[nodiscard]] virtual std::vector<AUAudioUnitPreset>
    factoryPresets(const AudioComponentDescription& /*description*/) {
        return {};
    }

    /// What a unit takes with `setFullState`, or why it cannot be had.
    using PresetCompletion = std::function<void(Result<PropertyList::Dictionary>)>;

    /// Reads one of the `factoryPresets` and calls `completion` once with it, on any thread, also from within
    /// this call. A host without presets is never asked. Main thread.
    virtual void
    readFactoryPreset(const AUAudioUnitPreset& /*preset*/, const PresetCompletion& /*completion*/) {}
};

} // namespace orvane::platform
