#include "platform/lv2/lv2_unit_host.h"
#include "support/hosted_unit.h"

#include <gmock/gmock.h>

#include <cmath>
#include <numbers>
#include <random>
#include <string>
#include <vector>

// Tests with the distribution's own plugins, as users have them.

namespace orvane::platform::lv2 {
namespace {

using namespace test;
using testing::HasSubstr;

class InstalledPlugins : public testing::Test {
  protected:
    SystemLog log{[](const LogLine&) {}};
    Lv2UnitHost host{log};

    std::shared_ptr<AUAudioUnit> make(const char* name) {
        auto made = instantiate(host, name);
        EXPECT_TRUE(made.unit) << name;
        return made.unit;
    }
};

std::vector<float> noise(std::size_t frames) {
    std::mt19937 random(static_cast<unsigned>(frames));
    std::vector<float> samples(frames);
    for (float& sample : samples)
        sample = std::uniform_real_distribution(-0.5F, 0.5F)(random);
    return samples;
}

std::vector<float> sine(double frequency, double sampleRate, std::size_t frames) {
    std::vector<float> samples(frames);
    for (std::size_t i = 0; i < frames; ++i)
        samples[i] = static_cast<float>(
            0.25 * std::sin(2.0 * std::numbers::pi * frequency * static_cast<double>(i) / sampleRate)
        );
    return samples;
}

/// The gain at a frequency in dB, measured once the unit has settled.
double gainDB(AUAudioUnit& unit, std::size_t channels, double frequency, double sampleRate) {
    UnitRenderer renderer(unit, channels);
    // One second, in blocks of a whole number of periods, which join seamlessly.
    const auto wave = sine(frequency, sampleRate, static_cast<std::size_t>(sampleRate) / 50);
    for (int block = 0; block < 50; ++block)
        EXPECT_EQ(renderer.renderBlock(wave), noErr);
    const auto power = [](const std::vector<float>& samples) {
        double sum = 0.0;
        for (const float x : samples)
            sum += static_cast<double>(x) * x;
        return sum;
    };
    return 10.0 * std::log10(power(renderer.outputs.back()) / power(wave));
}

/// Plugins that a sanitizer ends the program for: they read outside their memory.
bool isLeftToItself(const std::string& name) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return name.starts_with("Phaserotate");
#else
    static_cast<void>(name);
    return false;
#endif
}

/// Checks that blocks of noise of all lengths give finite outputs.
void renderNoise(AUAudioUnit& unit, std::size_t channels, const std::string& name) {
    // Its first blocks set up a transform on the audio thread.
    const bool isGuarded = !name.starts_with("x42 Instrument Tuner");
    UnitRenderer renderer(unit, channels);
    for (const std::size_t frames : {1, 64, 4096, 37, 4095, 1024, 1}) {
        ASSERT_EQ(renderer.renderBlock(noise(frames), isGuarded), noErr) << name << ", " << frames;
        for (const auto& output : renderer.outputs)
            for (const float sample : output)
                ASSERT_TRUE(std::isfinite(sample)) << name << ", " << frames;
    }
}

TEST_F(InstalledPlugins, EveryEffectRendersBlocksOfAnyLengthAtAnyRate) {
    int rendered = 0;
    for (const auto& component : host.componentsMatchingDescription({})) {
        if (component.manufacturerName != "Robin Gareus" && !component.name.starts_with("MDA ")) continue;
        if (isLeftToItself(component.name)) continue;
        const auto made = instantiate(host, component.audioComponentDescription);
        ASSERT_TRUE(made.unit) << component.name << ": " << made.error->description;
        for (const double sampleRate : {44100.0, 48000.0, 96000.0}) {
            const bool isMono = setUp(*made.unit, 1, sampleRate).empty();
            const std::string problem = isMono ? "" : setUp(*made.unit, 2, sampleRate);
            ASSERT_EQ(problem, "") << component.name;
            renderNoise(*made.unit, isMono ? 1 : 2, component.name);
            ++rendered;
            made.unit->deallocateRenderResources();
        }
    }
    EXPECT_GE(rendered, 3 * 85);
}

TEST_F(InstalledPlugins, AcceptOnlyTheChannelsTheyHavePortsFor) {
    const auto stereo = make("Stereo Balance Control");
    EXPECT_EQ(setUp(*stereo, 1), "The input of \"Stereo Balance Control\" is for 2 channels, not 1.");
    EXPECT_EQ(setUp(*stereo, 2), "");
    EXPECT_THAT(setUp(*stereo, 2), HasSubstr("in use"));

    const auto mono = make("x42-eq - Parametric Equalizer Mono");
    EXPECT_THAT(setUp(*mono, 2), HasSubstr("is for 1 channel, not 2."));
    EXPECT_EQ(setUp(*mono, 1), "");
}

TEST_F(InstalledPlugins, AnEqualizerBandLiftsItsFrequencyAndKeepsItsSettingsAtAnotherRate) {
    const auto unit = make("x42-eq - Parametric Equalizer Mono");
    parameter(*unit, "freq1").setValue(1000.0F);
    parameter(*unit, "gain1").setValue(9.0F);
    for (const double sampleRate : {48000.0, 96000.0, 44100.0}) {
        ASSERT_EQ(setUp(*unit, 1, sampleRate), "");
        EXPECT_NEAR(gainDB(*unit, 1, 1000.0, sampleRate), 9.0, 0.05) << sampleRate;
        EXPECT_NEAR(gainDB(*unit, 1, 100.0, sampleRate), 0.0, 0.2) << sampleRate;
        EXPECT_NEAR(gainDB(*unit, 1, 10000.0, sampleRate), 0.0, 0.2) << sampleRate;
        unit->deallocateRenderResources();
    }
}

TEST_F(InstalledPlugins, AStateGivesASecondInstanceTheSameSound) {
    for (const char* name :
         {"x42-eq - Parametric Equalizer Stereo", "MDA Dynamics", "Stereo Balance Control"}) {
        const auto first = make(name);
        ASSERT_EQ(setUp(*first, 2), "");
        std::mt19937 random(7);
        for (AUParameter* const each : first->parameters())
            each->setValue(std::uniform_real_distribution(each->info().minValue, each->info().maxValue)(random
            ));

        Lv2UnitHost otherHost(log);
        const auto second = instantiate(otherHost, name).unit;
        ASSERT_EQ(setUp(*second, 2), "");
        EXPECT_TRUE(second->setFullState(*first->fullState()));
        EXPECT_EQ(second->fullState(), first->fullState()) << name;

        UnitRenderer firstRenderer(*first, 2);
        UnitRenderer secondRenderer(*second, 2);
        for (const std::size_t frames : {4096, 100, 4096}) {
            EXPECT_EQ(firstRenderer.renderBlock(noise(frames)), noErr);
            EXPECT_EQ(secondRenderer.renderBlock(noise(frames)), noErr);
            EXPECT_EQ(secondRenderer.outputs, firstRenderer.outputs) << name;
        }
    }
}

TEST_F(InstalledPlugins, HaveAnEditorIfTheyHaveParameters) {
    const auto editorOf = [&](const char* name) {
        std::shared_ptr<AUViewController> editor;
        make(name)->requestViewController([&](auto made) { editor = std::move(made); });
        return editor;
    };
    // The editor alone keeps the unit alive here.
    const auto editor = editorOf("Stereo Balance Control");
    ASSERT_TRUE(editor);
    EXPECT_EQ(parameter(editor->unit(), "trim").info().unitName, "dB");
    EXPECT_FALSE(editorOf("x42 - Preset Convolver Stereo"));
}

} // namespace
} // namespace orvane::platform::lv2
