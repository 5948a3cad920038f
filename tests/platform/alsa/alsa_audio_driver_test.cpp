#include "platform/alsa/alsa_audio_driver.h"
#include "support/alsa_fixture.h"
#include "support/change_log.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orvane::platform;
using namespace orvane::platform::alsa;
using namespace orvane::test;
using testing::ElementsAre;

TEST(AlsaAudioDriver, ListsConfiguredDevicesWithSoundServersLast) {
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
                    AudioDriverDevice{"alsa:default", "default", 2, 2, 48000.0},
                    AudioDriverDevice{"alsa:busy", "busy (in use by another program)", 2, 2, 48000.0}
                )
    );
    EXPECT_EQ(driver->devices(), listed);
}

/// A card with the same name as the computer's.
std::string cardDefinition(const std::string& playback, const std::string& capture) {
    return "pcm.hw { @args [ CARD DEV ] @args.CARD.type string @args.DEV.type string "
           "type asym playback.pcm { "
           + playback + " } capture.pcm { " + capture + " } }\n";
}

constexpr const char* cardName = "hw:CARD=X32,DEV=1";
constexpr std::string_view cardUID = "alsa:hw:CARD=X32,DEV=1";

TEST(AlsaAudioDriver, DescribesACardInUseFromItsKernelFiles) {
    std::string parentName;
    std::getline(std::ifstream("/proc/" + std::to_string(getppid()) + "/comm"), parentName);
    AlsaFixture driver(cardDefinition("type scripted openError 16", "type scripted channels 6"), {cardName});
    driver.showCard(3, "X32", "pcm1p/sub0/hw_params", "closed\n");
    EXPECT_THAT(
        driver->devices(),
        ElementsAre(AudioDriverDevice{
            std::string(cardUID), std::string(cardName) + " (in use by another program)", 6, 2, 48000.0})
    );
    driver.showCard(3, "X32", "pcm1p/sub0/hw_params", "channels: 32\nrate: 44100 (44100/1)\n");
    driver.showCard(
        3, "X32", "pcm1p/sub0/status", "state: RUNNING\nowner_pid   : " + std::to_string(getppid()) + "\n"
    );
    driver.showCard(3, "X32", "pcm1p/sub1/status", "owner_pid   : " + std::to_string(getpid()) + "\n");
    const AudioDriverDevice inUse{
        std::string(cardUID), std::string(cardName) + " (in use by " + parentName + ")", 6, 32, 44100.0};
    EXPECT_THAT(driver->devices(), ElementsAre(inUse));
    EXPECT_EQ(driver->device(cardUID), inUse);
}

TEST(AlsaAudioDriver, DescribesOneDeviceWithoutOpeningOthers) {
    AlsaFixture driver(
        "pcm.device { type scripted channels 8 }\n"
        "pcm.other { type scripted opened FOLDER/opened }\n",
        {"other", "device"}
    );
    EXPECT_EQ(
        driver->device(scriptedUID), (AudioDriverDevice{std::string(scriptedUID), "device", 8, 8, 48000.0})
    );
    EXPECT_FALSE(std::filesystem::exists(driver.folder / "opened"));
    EXPECT_EQ(driver->device("alsa:missing"), std::nullopt);
    EXPECT_EQ(driver->device("jack:system"), std::nullopt);
    EXPECT_EQ(driver->devices().size(), 2);
    EXPECT_TRUE(std::filesystem::exists(driver.folder / "opened")) << "so the file shows what was opened";
}

TEST(AlsaAudioDriver, PrefersTheRequestedRateThenTheCardsThenTheDefault) {
    const std::tuple<const char*, std::optional<unsigned>, const char*, double> cases[] = {
        {"idle", {}, "closed\n", 48000.0},
        {"running", {}, "rate: 96000 (96000/1)\nchannels: 2\n", 96000.0},
        {"asked for", 96000U, "closed\n", 96000.0},
        {"asked for while running otherwise", 48000U, "rate: 96000 (96000/1)\nchannels: 2\n", 48000.0},
        {"not offered", 44100U, "closed\n", 48000.0}};
    for (const auto& [what, wanted, running, rate] : cases) {
        const std::string side = "type scripted rate 48000 secondRate 96000";
        AlsaFixture driver(cardDefinition(side, side), {cardName}, wanted);
        driver.showCard(0, "X32", "pcm0c/sub0/hw_params", running);
        EXPECT_EQ(driver->device(cardUID)->sampleRate, rate) << what;
    }
}

struct Reservations final : CardReservations {
    Lease reserve(int card, std::function<void()> onRequest) override {
        if (refuses) return nullptr;
        request = std::move(onRequest);
        held.push_back(card);
        return {&held, [this](const void*) { held.pop_back(); }};
    }
    bool refuses = false;
    std::vector<int> held;
    std::function<void()> request;
};

TEST(AlsaAudioDriver, ReservesACardWhileItIsOpenButNotForListing) {
    Reservations reservations;
    const std::string side = "type scripted";
    AlsaFixture driver(cardDefinition(side, side), {cardName}, {}, nullptr, &reservations);
    driver.showCard(7, "X32", "id", "X32");
    ChangeLog log;
    const auto watch = driver->watch(cardUID, log.listener());
    AlsaClient client(1);
    reservations.refuses = true;
    EXPECT_EQ(driver->devices().size(), 1);
    EXPECT_EQ(driver->requestBufferSize(cardUID, 64), kAudioDevicePermissionsError);
    EXPECT_EQ(driver->open(cardUID, true, client).error(), kAudioDevicePermissionsError);
    reservations.refuses = false;
    {
        const auto stream = driver->open(cardUID, true, client);
        ASSERT_TRUE(stream);
        EXPECT_THAT(reservations.held, ElementsAre(7));
        reservations.request();
        EXPECT_THAT(log.waitFor(1), ElementsAre(AudioDeviceChange::died));
    }
    EXPECT_THAT(reservations.held, ElementsAre());
}

TEST(AlsaAudioDriver, ReportsWhyADeviceCannotBeOpened) {
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

TEST(AlsaAudioDriver, OpensADeviceForOneStreamAtATime) {
    AlsaFixture driver("pcm.device { type scripted exclusive 1 channels 8 }");
    const auto listed = driver->devices();
    ASSERT_EQ(listed.size(), 1);
    AlsaClient client(1);
    for (int round = 0; round < 2; ++round) {
        const auto stream = driver->open(scriptedUID, true, client);
        ASSERT_TRUE(stream);
        EXPECT_EQ(driver->devices(), listed);
        const auto second = driver->open(scriptedUID, false, client);
        ASSERT_FALSE(second);
        EXPECT_EQ(second.error(), kAudioDevicePermissionsError);
        EXPECT_EQ(driver->bufferSize(scriptedUID).value(), 64);
    }
}

TEST(AlsaAudioDriver, NegotiatesTheBufferSizeWithTheDevice) {
    AlsaFixture driver("pcm.device { type null }\npcm.stubborn { type scripted period 48 }");
    ChangeLog log;
    const auto watch = driver->watch(scriptedUID, log.listener());
    EXPECT_EQ(driver->requestBufferSize("alsa:stubborn", 1024), noErr);
    EXPECT_EQ(driver->bufferSize("alsa:stubborn").value(), 48);
    EXPECT_EQ(driver->requestBufferSize("alsa:missing", 64), kAudioHardwareBadDeviceError);

    for (const std::uint32_t size : {128U, 96U}) {
        EXPECT_EQ(driver->requestBufferSize(scriptedUID, size), noErr);
        EXPECT_EQ(driver->bufferSize(scriptedUID).value(), size);
    }
    EXPECT_EQ(driver->requestBufferSize(scriptedUID, 96), noErr);
    AlsaClient client(1);
    {
        const auto stream = driver->open(scriptedUID, true, client);
        EXPECT_EQ(stream.value()->maximumFrames(), 96);
        EXPECT_EQ(driver->requestBufferSize(scriptedUID, 64), kAudioHardwareIllegalOperationError);
        EXPECT_EQ(driver->bufferSize(scriptedUID).value(), 96);
    }
    EXPECT_EQ(driver->requestBufferSize(scriptedUID, 64), noErr);
    using enum AudioDeviceChange;
    EXPECT_THAT(log.waitFor(3), ElementsAre(bufferSize, bufferSize, bufferSize));
}

} // namespace
