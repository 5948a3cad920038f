#include "platform/virtual/virtual_devices.h"

#include "platform/virtual/looped_file.h"
#include "platform/virtual/output_recorder.h"
#include "support/sound_files.h"
#include "support/stream_clients.h"
#include "support/temporary_folder.h"
#include "support/virtual_driver_test.h"

#include <gmock/gmock.h>
#include <pthread.h>

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orvane::platform;
using namespace orvane::platform::virtual_devices;
using namespace orvane::test;
using testing::ElementsAre;

using VirtualDevicesTest = VirtualDriverTest;

TEST_F(VirtualDevicesTest, ThePanelLoopsItsRecordingSampleForSample) {
    const Channels recording = readSound(panelRecording());
    const std::size_t length = recording[0].size();
    KeepingClient client;
    ASSERT_EQ(driver.requestBufferSize(panel, 4000), noErr);
    const auto stream = startOn(panel, client);
    const std::size_t cycles = length / 4000 + 3;
    ASSERT_EQ(driver.clock().step(panel, cycles), cycles);
    ASSERT_EQ(client.captured.size(), 8U);
    for (std::size_t channel = 0; channel < 8; ++channel)
        for (std::size_t frame = 0; frame < cycles * 4000; ++frame)
            ASSERT_EQ(client.captured[channel][frame], recording[channel][frame % length])
                << "channel " << channel << ", frame " << frame;
}

TEST_F(VirtualDevicesTest, AFileIsPlayedByADeviceOfItsShapeAndOutputsAreRecorded) {
    for (const std::size_t channelCount : {1U, 5U}) {
        const TemporaryFolder folder;
        const std::string name = std::to_string(channelCount) + " microphones.wav";
        Channels samples(channelCount, std::vector<float>(1000));
        samples[0][999] = 0.5F;
        writeSound(folder / name, samples, 44100.0);

        auto device = fileDevice(folder / name, log).value();
        const std::size_t outputs = channelCount == 1 ? 2 : 5;
        const std::string uid = "virtual:file:" + name;
        EXPECT_EQ(
            device.description, (AudioDriverDevice{uid, "Virtual: " + name, channelCount, outputs, 44100.0})
        );
        device.output = std::make_shared<OutputRecorder>(folder / "mix.wav", outputs, 44100.0);
        VirtualAudioDriver files({device}, VirtualPacing::stepped, log);
        KeepingClient client;
        auto stream = std::move(files.open(uid, true, client)).value();
        ASSERT_EQ(stream->start(), noErr);
        files.clock().step(uid, 4);
        stream->stop();
        EXPECT_EQ(client.captured[0][1999], 0.5F);
        EXPECT_EQ(client.played[0].size(), 2048U);
        EXPECT_EQ(readSound(folder / "mix.wav"), client.played);
    }
    EXPECT_FALSE(fileDevice("/nowhere/missing.wav", log));
}

TEST_F(VirtualDevicesTest, DoesNotStartWithoutItsRecordingAndReportsWhy) {
    VirtualAudioDriver bare(builtInDevices("/nowhere/panel.flac", log), VirtualPacing::stepped, log);
    CountingClient client;
    const auto stream = std::move(bare.open(panel, true, client)).value();
    EXPECT_EQ(stream->start(), kAudioHardwareUnspecifiedError);
    EXPECT_EQ(bare.clock().step(panel, 1), 0U);
    EXPECT_THAT(logged(), ElementsAre(testing::HasSubstr("/nowhere/panel.flac")));
}

/// While it lives, the process cannot start threads, because there is no address space for their stacks.
class NoThreads final {
  public:
    NoThreads() {
        pthread_getattr_default_np(&before);
        pthread_attr_t endless;
        pthread_attr_init(&endless);
        pthread_attr_setstacksize(&endless, std::size_t{1} << 46U);
        pthread_setattr_default_np(&endless);
        pthread_attr_destroy(&endless);
    }
    ~NoThreads() {
        pthread_setattr_default_np(&before);
        pthread_attr_destroy(&before);
    }

  private:
    pthread_attr_t before{};
};

TEST_F(VirtualDevicesTest, DoNotStartIfNoThreadCanBeCreated) {
    const TemporaryFolder folder;
    for (const bool records : {false, true}) {
        VirtualDevice device = fileDevice(panelRecording(), log).value();
        device.input = records ? nullptr : std::make_shared<LoopedFile>(panelRecording(), 8, log);
        if (records) device.output = std::make_shared<OutputRecorder>(folder / "mix.wav", 8, 48000.0);
        VirtualAudioDriver live({device}, VirtualPacing::live, log);
        CountingClient client;
        const auto stream = std::move(live.open(device.description.uid, true, client)).value();
        {
            const NoThreads none;
            EXPECT_EQ(stream->start(), kAudioHardwareUnspecifiedError) << records;
        }
        EXPECT_EQ(stream->start(), noErr) << records;
        stream->stop();
    }
    EXPECT_THAT(folder.names(), testing::ElementsAre("mix.wav"));
    EXPECT_THAT(logged(), testing::Contains(testing::HasSubstr("no threads left")).Times(2));
}

} // namespace
