#include "platform/audio_hardware/system_audio_hardware.h"
#include "support/fake_audio_driver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace {

using namespace orvane::platform;

/// A machine with a card of 2 inputs and 3 outputs and a monitor without inputs.
struct SystemAudioHardwareTest : testing::Test, orvane::test::FakeAudioMachine {
    SystemAudioHardwareTest()
        : FakeAudioMachine({{"fake:card", "Card", 2, 3, 48000.0}, {"fake:monitor", "Monitor", 0, 2, 44100.0}}
        ) {}

    std::vector<AudioObjectID> devices() {
        return hardware.AudioObjectGetPropertyData(HardwareDevices{}).value();
    }
    template <class Property>
    auto get(const Property& property) {
        return hardware.AudioObjectGetPropertyData(property);
    }
};

TEST_F(SystemAudioHardwareTest, DescribesDevicesUnderIdsThatStayTheirs) {
    const std::vector<AudioObjectID> ids = devices();
    ASSERT_EQ(ids.size(), 2U);
    EXPECT_EQ(get(DeviceUID{ids[0]}).value(), "fake:card");
    EXPECT_EQ(get(DeviceName{ids[1]}).value(), "Monitor");
    EXPECT_EQ(get(NominalSampleRate{ids[1]}).value(), 44100.0);
    using Streams = std::vector<std::uint32_t>;
    EXPECT_EQ(get(StreamConfiguration{ids[0], AudioScope::input}).value(), Streams{2});
    EXPECT_EQ(get(StreamConfiguration{ids[0], AudioScope::output}).value(), Streams{3});
    EXPECT_EQ(get(StreamConfiguration{ids[1], AudioScope::input}).value(), Streams{});

    const AudioDriverDevice card = driver.present[0];
    driver.present.erase(driver.present.begin());
    EXPECT_EQ(devices(), std::vector{ids[1]});
    EXPECT_EQ(get(NominalSampleRate{ids[0]}).error(), kAudioHardwareBadDeviceError);
    EXPECT_FALSE(get(DeviceIsAlive{ids[0]}).value());
    driver.present.push_back(card);
    EXPECT_EQ(devices(), (std::vector{ids[1], ids[0]}));
    EXPECT_TRUE(get(DeviceIsAlive{ids[0]}).value());
}

TEST_F(SystemAudioHardwareTest, RefusesDevicesItNeverListed) {
    for (const AudioObjectID id : {0U, 1U, 99U}) {
        EXPECT_EQ(get(NominalSampleRate{id}).error(), kAudioHardwareBadObjectError);
        EXPECT_EQ(get(BufferFrameSize{id}).error(), kAudioHardwareBadObjectError);
        EXPECT_EQ(get(DeviceIsAlive{id}).error(), kAudioHardwareBadObjectError);
        EXPECT_EQ(hardware.AudioObjectSetPropertyData(BufferFrameSize{id}, 64), kAudioHardwareBadObjectError);
    }
}

TEST_F(SystemAudioHardwareTest, NotifiesListenersOfTheirChangeAlone) {
    const AudioObjectID card = devices()[0];
    int sizes = 0;
    int deaths = 0;
    const auto listen = [&](AudioDeviceChange change, int& count) {
        return hardware.AudioObjectAddPropertyListenerBlock(card, change, [&count] { ++count; });
    };
    auto toSize = listen(AudioDeviceChange::bufferSize, sizes);
    const auto toDeath = listen(AudioDeviceChange::died, deaths);
    driver.tell(AudioDeviceChange::bufferSize);
    driver.tell(AudioDeviceChange::lostChannels);
    driver.tell(AudioDeviceChange::died);
    toSize.value().reset();
    driver.tell(AudioDeviceChange::bufferSize);
    EXPECT_EQ(sizes, 1);
    EXPECT_EQ(deaths, 1);
}

/// A unit on the card with 3 inputs and 2 outputs, in slices of 64 frames, that plays what it captures.
struct AudioUnitInstanceTest : SystemAudioHardwareTest {
    AudioUnitInstanceTest() {
        const AudioComponentDescription outputUnit = {
            fourCharCode("auou"), fourCharCode("ahal"), fourCharCode("appl")};
        const AudioComponent component = hardware.AudioComponentFindNext(outputUnit);
        unit = hardware.AudioComponentInstanceNew(component).value();
        const AudioUnitProperty properties[] = {
            EnableIO{AudioScope::input, true},
            EnableIO{AudioScope::output, true},
            CurrentDevice{devices()[0]},
            StreamFormat{AudioScope::input, 48000.0, 3},
            StreamFormat{AudioScope::output, 48000.0, 2},
            MaximumFramesPerSlice{64},
            SetInputCallback{capture, this},
            SetRenderCallback{render, this}};
        for (const AudioUnitProperty& property : properties)
            EXPECT_EQ(unit->AudioUnitSetProperty(property), noErr);
    }

    static OSStatus capture(void* self, std::uint32_t frameCount) noexcept {
        auto& test = *static_cast<AudioUnitInstanceTest*>(self);
        const std::span<float> blocks[] = {test.captured[0], test.captured[1], test.captured[2]};
        return test.unit->AudioUnitRender(blocks, frameCount);
    }

    static OSStatus
    render(void* self, std::span<const std::span<float>> outputs, std::size_t frameCount) noexcept {
        auto& test = *static_cast<AudioUnitInstanceTest*>(self);
        for (std::size_t c = 0; c < outputs.size(); ++c)
            std::copy_n(test.captured[c], frameCount, outputs[c].data());
        return test.renderStatus;
    }

    std::unique_ptr<AudioUnit> unit;
    float captured[3][64] = {};
    OSStatus renderStatus = noErr;
};

TEST_F(AudioUnitInstanceTest, RunsTheInputAndThenTheRenderCallbackSliceBySlice) {
    EXPECT_EQ(unit->AudioOutputUnitStart(), kAudioUnitErr_Uninitialized);
    ASSERT_EQ(unit->AudioUnitInitialize(), noErr);
    ASSERT_EQ(unit->AudioOutputUnitStart(), noErr);
    EXPECT_TRUE(driver.isRunning);
    for (const std::size_t frameCount : {64U, 1U, 33U, 65U, 150U, 4096U}) {
        SCOPED_TRACE(frameCount);
        captured[2][0] = 7.0F;
        const std::vector<std::vector<float>> played = driver.cycle(frameCount);
        for (std::size_t i = 0; i < frameCount; ++i) {
            ASSERT_EQ(played[0][i], static_cast<float>(i) / 65536.0F);
            ASSERT_EQ(played[1][i], 1.0F + static_cast<float>(i) / 65536.0F);
            ASSERT_EQ(played[2][i], 0.0F) << "the unit has no third output";
        }
        EXPECT_EQ(captured[2][0], 0.0F) << "the device has no third input";
    }
    renderStatus = kAudioUnitErr_NoConnection;
    EXPECT_EQ(driver.cycle(64), std::vector(3, std::vector<float>(64, 0.0F)));
    EXPECT_EQ(unit->AudioUnitRender({}, 64), kAudioUnitErr_CannotDoInCurrentContext);
    EXPECT_EQ(unit->AudioUnitRender({}, 65), kAudioUnitErr_TooManyFramesToProcess);
    EXPECT_EQ(unit->AudioOutputUnitStop(), noErr);
    EXPECT_FALSE(driver.isRunning);
    EXPECT_EQ(unit->AudioUnitUninitialize(), noErr);
    EXPECT_EQ(driver.client, nullptr);
}

TEST_F(AudioUnitInstanceTest, RefusesPropertiesThatDoNotFit) {
    EXPECT_EQ(unit->AudioUnitSetProperty(CurrentDevice{99}), kAudioHardwareBadDeviceError);
    for (const StreamFormat format :
         {StreamFormat{AudioScope::output, 96000.0, 2}, StreamFormat{AudioScope::input, 48000.0, 0}})
        EXPECT_EQ(unit->AudioUnitSetProperty(format), kAudioUnitErr_FormatNotSupported);
    driver.openAnswer = kAudioDevicePermissionsError;
    EXPECT_EQ(unit->AudioUnitInitialize(), kAudioDevicePermissionsError);
    driver.openAnswer = noErr;
    EXPECT_EQ(unit->AudioUnitInitialize(), noErr);
    EXPECT_EQ(unit->AudioUnitSetProperty(EnableIO{}), kAudioUnitErr_Initialized);
    EXPECT_EQ(unit->xrunCount(), 3U);
    EXPECT_EQ(unit->realtimePriority(), 70);
}

} // namespace
