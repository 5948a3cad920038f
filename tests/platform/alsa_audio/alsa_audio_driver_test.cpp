#include "platform/alsa_audio/alsa_audio_driver.h"
#include "support/alsa_fixture.h"
#include "support/change_log.h"

#include <gmock/gmock.h>

namespace {

using namespace orvane::platform;
using orvane::test::AlsaClient;
using orvane::test::AlsaFixture;
using orvane::test::ChangeLog;
using testing::ElementsAre;

constexpr std::string_view uid = "alsa:device";

TEST(AlsaAudioDriver, ListsWhatIsConfiguredWithTheSoundServersLast) {
    AlsaFixture driver(
        R"(
        pcm.default { type null }
        pcm.mixer { type scripted channels 18 rate 44100 }
        pcm.speakers { type asym playback.pcm { type scripted channels 6 rate 96000 } }
        pcm.anything { type null }
        pcm.broken { type nothing }
        pcm.closed { type scripted openError 5 }
        pcm.busy { type scripted openError 16 }
        )",
        {"default", "mixer", "broken", "dmix", "closed", "speakers", "missing", "anything", "busy"}
    );
    const auto listed = driver->devices();
    EXPECT_THAT(
        listed, ElementsAre(
                    AudioDriverDevice{"alsa:mixer", "mixer", 18, 18, 44100.0},
                    AudioDriverDevice{"alsa:speakers", "speakers", 0, 6, 96000.0},
                    AudioDriverDevice{"alsa:anything", "anything", 2, 2, 48000.0},
                    AudioDriverDevice{"alsa:busy", "busy", 0, 0, 0.0},
                    AudioDriverDevice{"alsa:default", "default", 2, 2, 48000.0}
                )
    );
    EXPECT_EQ(driver->devices(), listed);
}

TEST(AlsaAudioDriver, SaysWhyADeviceCannotBeOpened) {
    AlsaFixture driver(R"(
        pcm.busy { type scripted openError 16 }
        pcm.forbidden { type scripted openError 13 }
        pcm.failing { type scripted openError 5 }
        pcm.compressed { type scripted format MU_LAW }
        pcm.unlike { type asym playback.pcm { type scripted rate 48000 } capture.pcm { type scripted rate 44100 } }
        pcm.uneven { type asym playback.pcm { type scripted period 64 } capture.pcm { type scripted period 48 } }
        pcm.half_busy { type asym playback.pcm { type scripted } capture.pcm { type scripted openError 16 } }
        pcm.microphones { type asym capture.pcm { type scripted } }
    )");
    const std::pair<std::string_view, OSStatus> statusByUid[] = {
        {"jack:system", kAudioHardwareBadDeviceError},
        {"alsa:missing", kAudioHardwareBadDeviceError},
        {"alsa:busy", kAudioDevicePermissionsError},
        {"alsa:forbidden", kAudioDevicePermissionsError},
        {"alsa:half_busy", kAudioDevicePermissionsError},
        {"alsa:failing", kAudioHardwareUnspecifiedError},
        {"alsa:compressed", kAudioDeviceUnsupportedFormatError},
        {"alsa:unlike", kAudioDeviceUnsupportedFormatError},
        {"alsa:uneven", kAudioDeviceUnsupportedFormatError}};
    AlsaClient client(1);
    for (const auto& [name, status] : statusByUid) {
        const auto stream = driver->open(name, true, client);
        ASSERT_FALSE(stream) << name;
        EXPECT_EQ(stream.error(), status) << name;
    }
    EXPECT_TRUE(driver->open("alsa:half_busy", false, client));
    EXPECT_FALSE(driver->open("alsa:microphones", false, client));
}

TEST(AlsaAudioDriver, GivesADeviceToOneStreamAtATime) {
    AlsaFixture driver("pcm.device { type scripted exclusive 1 channels 8 }");
    const auto listed = driver->devices();
    ASSERT_EQ(listed.size(), 1);
    AlsaClient client(1);
    for (int round = 0; round < 2; ++round) {
        const auto stream = driver->open(uid, true, client);
        ASSERT_TRUE(stream);
        EXPECT_EQ(driver->devices(), listed);
        const auto second = driver->open(uid, false, client);
        ASSERT_FALSE(second);
        EXPECT_EQ(second.error(), kAudioDevicePermissionsError);
        EXPECT_EQ(driver->bufferSize(uid).value(), 64);
    }
}

TEST(AlsaAudioDriver, NegotiatesTheBufferSizeWithTheDevice) {
    AlsaFixture driver("pcm.device { type null }\npcm.stubborn { type scripted period 48 }");
    ChangeLog log;
    const auto watch = driver->watch(uid, log.listener());
    EXPECT_EQ(driver->requestBufferSize("alsa:stubborn", 1024), noErr);
    EXPECT_EQ(driver->bufferSize("alsa:stubborn").value(), 48);
    EXPECT_EQ(driver->requestBufferSize("alsa:missing", 64), kAudioHardwareBadDeviceError);

    for (const std::uint32_t size : {128U, 96U}) {
        EXPECT_EQ(driver->requestBufferSize(uid, size), noErr);
        EXPECT_EQ(driver->bufferSize(uid).value(), size);
    }
    EXPECT_EQ(driver->requestBufferSize(uid, 96), noErr);
    AlsaClient client(1);
    {
        const auto stream = driver->open(uid, true, client);
        EXPECT_EQ(stream.value()->maximumFrames(), 96);
        EXPECT_EQ(driver->requestBufferSize(uid, 64), kAudioHardwareIllegalOperationError);
        EXPECT_EQ(driver->bufferSize(uid).value(), 96);
    }
    EXPECT_EQ(driver->requestBufferSize(uid, 64), noErr);
    using enum AudioDeviceChange;
    EXPECT_THAT(log.waitFor(3), ElementsAre(bufferSize, bufferSize, bufferSize));
}

} // namespace
