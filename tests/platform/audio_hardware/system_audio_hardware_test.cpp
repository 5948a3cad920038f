#include "platform/audio_hardware/system_audio_hardware.h"
#include "support/fake_audio_driver.h"

#include <gtest/gtest.h>

#include <cstdint>
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

} // namespace
