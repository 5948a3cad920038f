#pragma once

#include "platform/effects/audio_unit_host.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace orvane::test {

/// The behaviour of a scripted component's instances.
struct AudioUnitScript {
    std::set<std::uint32_t> inputChannels = {1, 2};
    std::set<std::uint32_t> outputChannels = {1, 2};
    /// In Hz.
    double lowestRate = 0.0;
    double lowestMonoRate = 0.0;
    bool allocates = true;
    bool hasState = true;
    /// Whether the state contains a text that a property list cannot hold.
    bool hasUnwritableState = false;
    bool hasEditor = true;
    bool hasBusses = true;
};

/// An effect that multiplies by its only setting, "gain", and records calls. Rendering without render
/// resources outputs silence and is counted.
class ScriptedAudioUnit final : public platform::AUAudioUnit {
  public:
    /// Shared by all instances; must outlive them.
    struct Report {
        std::atomic<int> living = 0;
        std::atomic<int> ready = 0;
        std::atomic<int> rendersWithoutResources = 0;
        /// Called once, in the next render.
        std::function<void()> onRender;
        /// How many of the next renders block: for 5 ms, and while `isHeld`.
        std::atomic<int> hangs = 0;
        std::atomic<bool> isHeld = false;
        std::atomic<bool> isHanging = false;
    };

    ScriptedAudioUnit(AudioUnitScript unitScript, Report& told)
        : script(std::move(unitScript)), report(told) {
        ++report.living;
    }
    ~ScriptedAudioUnit() override {
        deallocateRenderResources();
        --report.living;
    }

    std::span<platform::AUAudioUnitBus* const> inputBusses() override { return busses(inputs); }
    std::span<platform::AUAudioUnitBus* const> outputBusses() override { return busses(outputs); }
    void setMaximumFramesToRender(std::uint32_t frameCount) override {
        steps.push_back("frames " + std::to_string(frameCount));
    }
    platform::Result<platform::Done> allocateRenderResources() override {
        steps.emplace_back("allocate");
        if (!script.allocates) return platform::Error{"no memory"};
        report.ready += isReady.exchange(true) ? 0 : 1;
        return platform::Done{};
    }
    void deallocateRenderResources() override { report.ready -= isReady.exchange(false) ? 1 : 0; }

    platform::AURenderBlock renderBlock() override {
        return [this](auto& flags, const auto& now, auto frameCount, auto, auto& list, const auto& pull) {
            const bool wasReady = isReady;
            pull(flags, now, frameCount, 0, list);
            for (platform::AudioBuffer& buffer : list.mBuffers) {
                auto* const samples = static_cast<float*>(buffer.mData);
                std::transform(samples, samples + frameCount, samples, [this](float x) { return x * gain; });
            }
            if (report.onRender) std::exchange(report.onRender, nullptr)();
            if (report.hangs > 0) hang();
            report.rendersWithoutResources += wasReady && isReady ? 0 : 1;
            return platform::noErr;
        };
    }

    [[nodiscard]] std::optional<platform::PropertyList::Dictionary> fullState() const override {
        if (!script.hasState) return std::nullopt;
        if (script.hasUnwritableState) return {{{"gain", {std::string("\xFF")}}}};
        return {{{"gain", {static_cast<double>(gain)}}}};
    }
    /// A "file" stands for a file that the unit may not open.
    platform::Result<platform::Done> setFullState(const platform::PropertyList::Dictionary& state) override {
        if (const auto found = state.find("gain"); found != state.end())
            if (const auto* value = std::get_if<double>(&found->second.value))
                gain = static_cast<float>(*value);
        if (state.contains("file")) return platform::Error{"Its file cannot be found."};
        return platform::Done{};
    }
    [[nodiscard]] std::uint32_t latencyFrames() const noexcept override { return latency; }
    std::span<platform::AUParameter* const> parameters() override { return {}; }

    void requestViewController(std::function<void(std::shared_ptr<platform::AUViewController>)> completion
    ) override {
        ++editorRequests;
        editorCompletion = std::move(completion);
    }
    /// Answers the last request, if any, with an editor of `self` if the script has one.
    void giveEditor(const std::shared_ptr<AUAudioUnit>& self) const {
        if (!editorCompletion) return;
        editorCompletion(script.hasEditor ? std::make_shared<platform::AUViewController>(self) : nullptr);
    }

    std::unique_ptr<platform::NativeEditor> openNativeEditor(platform::NativeEditorParent& parent) override {
        return nativeEditor ? nativeEditor(parent) : nullptr;
    }

    std::atomic<float> gain = 1.0F;
    std::atomic<std::uint32_t> latency = 0;
    std::function<std::unique_ptr<platform::NativeEditor>(platform::NativeEditorParent&)> nativeEditor;
    std::vector<std::string> steps;
    int editorRequests = 0;

  private:
    struct Bus final : platform::AUAudioUnitBus {
        Bus(ScriptedAudioUnit& ownedBy, const char* busName, const std::set<std::uint32_t>& takes)
            : owner(ownedBy), name(busName), accepted(takes) {}
        platform::Result<platform::Done> setFormat(const platform::AVAudioFormat& format) override {
            owner.steps.push_back(
                name + " " + std::to_string(static_cast<int>(format.sampleRate)) + "x"
                + std::to_string(format.channelCount)
            );
            const AudioUnitScript& told = owner.script;
            const double lowest = format.channelCount == 1 ? told.lowestMonoRate : 0.0;
            if (owner.isReady) return platform::Error{"in use"};
            if (format.sampleRate < std::max(lowest, told.lowestRate)) return platform::Error{"too slow"};
            if (!accepted.contains(format.channelCount)) return platform::Error{"not this format"};
            return platform::Done{};
        }
        void setEnabled(bool) override { owner.steps.push_back("enable " + name); }

        ScriptedAudioUnit& owner;
        std::string name;
        const std::set<std::uint32_t>& accepted;
    };

    void hang() const {
        report.isHanging = true;
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(5);
        while (std::chrono::steady_clock::now() < end || report.isHeld) {
        }
        report.isHanging = false;
        --report.hangs;
    }

    std::span<platform::AUAudioUnitBus* const> busses(platform::AUAudioUnitBus* const& bus) const {
        return {&bus, script.hasBusses ? 1U : 0U};
    }

    AudioUnitScript script;
    Report& report;
    Bus input{*this, "in", script.inputChannels};
    Bus output{*this, "out", script.outputChannels};
    platform::AUAudioUnitBus* inputs = &input;
    platform::AUAudioUnitBus* outputs = &output;
    std::atomic<bool> isReady = false;
    std::function<void(std::shared_ptr<platform::AUViewController>)> editorCompletion;
};

/// Scripted effects. Completions are called from within `instantiate`, when the test delivers them, or from a
/// thread of the host.
class ScriptedAudioUnitHost final : public platform::AudioUnitHost {
  public:
    enum class Delivery { atOnce, byHand, fromAnotherThread };

    ~ScriptedAudioUnitHost() override { joinThreads(); }

    /// Adds a component whose subtype is its number, from 1.
    platform::AVAudioUnitComponent add(std::string name, AudioUnitScript script = {}) {
        const auto number = static_cast<std::uint32_t>(components.size() + 1);
        components.push_back({{platform::kAudioUnitType_Effect, number, 1}, std::move(name), "Maker"});
        scripts.push_back(std::move(script));
        return components.back();
    }

    std::vector<platform::AVAudioUnitComponent>
    componentsMatchingDescription(const platform::AudioComponentDescription& description) override {
        ++listings;
        std::vector<platform::AVAudioUnitComponent> found;
        for (const auto& component : components)
            if (component.audioComponentDescription.componentType == description.componentType)
                found.push_back(component);
        return found;
    }

    void expectSampleRate(double sampleRate) override { expectedSampleRate = sampleRate; }

    void instantiate(
        const platform::AudioComponentDescription& description, std::uint32_t,
        InstantiationCompletion completion
    ) override {
        ++instantiations;
        auto deliver = [this, description, completion = std::move(completion)] {
            if (failure) return completion(nullptr, failure->description.empty() ? std::nullopt : failure);
            const auto unit =
                std::make_shared<ScriptedAudioUnit>(scripts.at(description.componentSubType - 1), report);
            {
                const std::scoped_lock guard(mutex);
                last = unit;
            }
            completion(unit, std::nullopt);
        };
        complete(std::move(deliver));
    }

    std::vector<platform::AUAudioUnitPreset>
    factoryPresets(const platform::AudioComponentDescription&) override {
        return presets;
    }

    void readFactoryPreset(const platform::AUAudioUnitPreset&, const PresetCompletion& completion) override {
        complete([state = presetState, completion] { completion(state); });
    }

    /// Completes the oldest request, or the one after `index` others.
    void deliver(std::size_t index = 0) {
        const auto deliverOne = std::move(pending.at(index));
        pending.erase(pending.begin() + static_cast<std::ptrdiff_t>(index));
        deliverOne();
    }

    /// The number of undelivered requests.
    [[nodiscard]] std::size_t pendingCount() const { return pending.size(); }

    void deliverAll() {
        while (!pending.empty())
            deliver();
    }

    void joinThreads() {
        for (std::thread& thread : std::exchange(threads, {}))
            thread.join();
    }

    /// The newest instance; throws if it is gone.
    [[nodiscard]] std::shared_ptr<ScriptedAudioUnit> lastUnit() const {
        const std::scoped_lock guard(mutex);
        return std::shared_ptr(last);
    }
    /// The newest instance; null if it is gone.
    [[nodiscard]] std::shared_ptr<ScriptedAudioUnit> lastUnitIfThere() const {
        const std::scoped_lock guard(mutex);
        return last.lock();
    }

    Delivery delivery = Delivery::atOnce;
    /// The result of every instantiation; an empty text stands for a null error.
    std::optional<platform::Error> failure;
    int instantiations = 0;
    double expectedSampleRate = 0.0;
    std::atomic<int> listings = 0;
    ScriptedAudioUnit::Report report;
    std::vector<platform::AVAudioUnitComponent> components;

    /// The presets of every component.
    std::vector<platform::AUAudioUnitPreset> presets;
    /// The content of every preset.
    platform::Result<platform::PropertyList::Dictionary> presetState = platform::PropertyList::Dictionary{};

  private:
    void complete(std::function<void()> deliver) {
        if (delivery == Delivery::atOnce) deliver();
        if (delivery == Delivery::byHand) pending.emplace_back(std::move(deliver));
        if (delivery == Delivery::fromAnotherThread) threads.emplace_back(std::move(deliver));
    }

    std::vector<AudioUnitScript> scripts;
    std::deque<std::function<void()>> pending;
    std::vector<std::thread> threads;
    mutable std::mutex mutex;
    std::weak_ptr<ScriptedAudioUnit> last;
};

} // namespace orvane::test
