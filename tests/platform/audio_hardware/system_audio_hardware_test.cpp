#include "platform/audio_hardware/property_bytes.h"
#include "platform/audio_hardware/system_audio_hardware.h"
#include "support/allocation_guard.h"
#include "support/fake_audio_driver.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace {

using namespace orvane::platform;
using orvane::test::AllocationGuard;
using orvane::test::FakeAudioDriver;

constexpr std::uint32_t global = kAudioObjectPropertyScopeGlobal;

/// A machine with a card of 2 inputs and 3 outputs and a monitor without inputs.
struct Machine {
    FakeAudioDriver* driver;
    SystemAudioHardware hardware;

    Machine()
        : Machine(std::make_unique<FakeAudioDriver>(std::vector<AudioDriverDevice>{
            {"fake:card", "Card", 2, 3, 48000.0}, {"fake:monitor", "Monitor", 0, 2, 44100.0}})) {}

    std::vector<AudioObjectID> devices(std::size_t most = 8) {
        std::vector<AudioObjectID> ids(most);
        const AudioObjectPropertyAddress address = {kAudioHardwarePropertyDevices, global, 0};
        const PropertySize read = hardware.AudioObjectGetPropertyData(
            kAudioObjectSystemObject, address, std::as_writable_bytes(std::span(ids))
        );
        EXPECT_EQ(read.status, noErr);
        ids.resize(read.size / sizeof(AudioObjectID));
        return ids;
    }

    template <class Value>
    Value
    get(AudioObjectID object, std::uint32_t selector, std::uint32_t scope = global,
        OSStatus expected = noErr) {
        Value value{};
        EXPECT_EQ(
            hardware.AudioObjectGetPropertyData(object, {selector, scope, 0}, writableBytesOf(value)).status,
            expected
        );
        return value;
    }

  private:
    explicit Machine(std::unique_ptr<FakeAudioDriver> fake)
        : driver(fake.get()), hardware(oneOf(std::move(fake))) {}

    static std::vector<std::unique_ptr<AudioDriver>> oneOf(std::unique_ptr<AudioDriver> fake) {
        std::vector<std::unique_ptr<AudioDriver>> drivers;
        drivers.push_back(std::move(fake));
        return drivers;
    }
};

TEST(SystemAudioHardware, DescribesDevicesUnderIdsThatStayTheirs) {
    Machine machine;
    const std::vector<AudioObjectID> ids = machine.devices();
    ASSERT_EQ(ids.size(), 2U);
    EXPECT_EQ(machine.devices(1), std::vector(1, ids[0])) << "as many as fit";
    EXPECT_EQ(*machine.get<StringRef>(ids[0], kAudioDevicePropertyDeviceUID), "fake:card");
    EXPECT_EQ(machine.get<double>(ids[1], kAudioDevicePropertyNominalSampleRate), 44100.0);
    const AudioObjectPropertyAddress inputs = {
        kAudioDevicePropertyStreamConfiguration, kAudioObjectPropertyScopeInput, 0};
    struct {
        StreamConfigurationHeader header;
        AudioBuffer buffer;
    } streams;
    EXPECT_EQ(
        machine.hardware.AudioObjectGetPropertyData(ids[0], inputs, writableBytesOf(streams)).status, noErr
    );
    EXPECT_EQ(streams.header.mNumberBuffers, 1U);
    EXPECT_EQ(streams.buffer.mNumberChannels, 2U);

    const AudioDriverDevice card = machine.driver->present[0];
    machine.driver->present.erase(machine.driver->present.begin());
    EXPECT_EQ(machine.devices(), std::vector{ids[1]});
    EXPECT_EQ(machine.get<std::uint32_t>(ids[0], kAudioDevicePropertyDeviceIsAlive), 0U);
    machine.get<double>(ids[0], kAudioDevicePropertyNominalSampleRate, global, kAudioHardwareBadDeviceError);
    machine.driver->present.push_back(card);
    EXPECT_EQ(machine.devices(), (std::vector{ids[1], ids[0]}));
    EXPECT_EQ(machine.get<std::uint32_t>(ids[0], kAudioDevicePropertyDeviceIsAlive), 1U);
}

TEST(SystemAudioHardware, ListsDevicesOnceForTheirSizeAndTheListThatFollows) {
    Machine machine;
    for (const std::size_t count : {2U, 1U}) {
        machine.driver->listings = 0;
        const AudioObjectPropertyAddress address = {kAudioHardwarePropertyDevices, global, 0};
        EXPECT_EQ(
            machine.hardware.AudioObjectGetPropertyDataSize(kAudioObjectSystemObject, address).size,
            count * sizeof(AudioObjectID)
        );
        EXPECT_EQ(machine.devices().size(), count);
        EXPECT_EQ(machine.driver->listings, 1);
        machine.driver->present.pop_back();
    }
}

TEST(SystemAudioHardware, AnswersWrongPropertyCallsWithAStatus) {
    Machine machine;
    const AudioObjectID card = machine.devices()[0];
    machine.get<double>(99, kAudioDevicePropertyNominalSampleRate, global, kAudioHardwareBadObjectError);
    machine.get<double>(card, fourCharCode("none"), global, kAudioHardwareUnknownPropertyError);
    machine.get<char>(
        card, kAudioDevicePropertyNominalSampleRate, global, kAudioHardwareBadPropertySizeError
    );
    const AudioObjectPropertyAddress size = {kAudioDevicePropertyBufferFrameSize, global, 0};
    EXPECT_EQ(
        machine.hardware.AudioObjectSetPropertyData(card, size, bytesOf('x')),
        kAudioHardwareBadPropertySizeError
    );
    EXPECT_EQ(machine.hardware.AudioObjectSetPropertyData(card, size, bytesOf(std::uint32_t{64})), noErr);
}

TEST(SystemAudioHardware, TellsListenersOfTheirPropertyAlone) {
    Machine machine;
    const AudioObjectID card = machine.devices()[0];
    int sizes = 0;
    int losses = 0;
    int deaths = 0;
    const auto listen = [&](std::uint32_t selector, int& count) {
        return machine.hardware
            .AudioObjectAddPropertyListenerBlock(card, {selector, global, 0}, [&count](auto) { ++count; })
            .listener;
    };
    const auto toSize = listen(kAudioDevicePropertyBufferFrameSize, sizes);
    listen(kAudioDevicePropertyStreamConfiguration, losses);
    listen(kAudioDevicePropertyDeviceIsAlive, deaths);
    machine.driver->tell(AudioDeviceChange::bufferSize);
    machine.driver->tell(AudioDeviceChange::lostChannels);
    machine.driver->tell(AudioDeviceChange::died);
    EXPECT_EQ(machine.hardware.AudioObjectRemovePropertyListenerBlock(toSize), noErr);
    machine.driver->tell(AudioDeviceChange::bufferSize);
    EXPECT_EQ(sizes, 1);
    EXPECT_EQ(losses, 1);
    EXPECT_EQ(deaths, 1);
}

/// A unit on the card that copies what it captures to its outputs, and counts.
struct Unit {
    explicit Unit(Machine& on) : machine(on) {
        unit = machine.hardware.AudioComponentInstanceNew(machine.hardware.AudioComponentFindNext({})).unit;
        EXPECT_EQ(set(kAudioOutputUnitProperty_EnableIO, 1, 1, std::uint32_t{1}), noErr);
        EXPECT_EQ(set(kAudioOutputUnitProperty_CurrentDevice, 0, 0, machine.devices()[0]), noErr);
        EXPECT_EQ(set(kAudioUnitProperty_StreamFormat, 2, 1, format(3)), noErr);
        EXPECT_EQ(set(kAudioUnitProperty_StreamFormat, 1, 0, format(2)), noErr);
        EXPECT_EQ(set(kAudioUnitProperty_MaximumFramesPerSlice, 0, 0, std::uint32_t{64}), noErr);
        EXPECT_EQ(
            set(kAudioOutputUnitProperty_SetInputCallback, 0, 0, AURenderCallbackStruct{onInput, this}), noErr
        );
        EXPECT_EQ(
            set(kAudioUnitProperty_SetRenderCallback, 1, 0, AURenderCallbackStruct{onRender, this}), noErr
        );
    }
    ~Unit() { EXPECT_EQ(machine.hardware.AudioComponentInstanceDispose(unit), noErr); }
    Unit(const Unit&) = delete;
    Unit& operator=(const Unit&) = delete;

    template <class Value>
    OSStatus set(std::uint32_t property, std::uint32_t scope, std::uint32_t element, const Value& value) {
        return machine.hardware.AudioUnitSetProperty(unit, property, scope, element, bytesOf(value));
    }

    static AudioStreamBasicDescription format(std::uint32_t channels, double rate = 48000.0) {
        return {rate, kAudioFormatLinearPCM, nonInterleavedFloatFlags, 4, 1, 4, channels, 32, 0};
    }

    static OSStatus
    onInput(void* self, AudioUnitRenderActionFlags& flags, const AudioTimeStamp& time, std::uint32_t bus, std::uint32_t frameCount, AudioBufferList*) noexcept {
        auto& unit = *static_cast<Unit*>(self);
        AudioBuffer buffers[3];
        for (std::size_t c = 0; c < 3; ++c)
            buffers[c] = {1, frameCount * 4, unit.captured[c]};
        AudioBufferList list{buffers};
        unit.captureStatus =
            unit.machine.hardware.AudioUnitRender(unit.unit, flags, time, bus, frameCount, list);
        return unit.captureStatus;
    }

    static OSStatus onRender(
        void* self, AudioUnitRenderActionFlags&, const AudioTimeStamp& time, std::uint32_t,
        std::uint32_t frameCount, AudioBufferList* list
    ) noexcept {
        auto& unit = *static_cast<Unit*>(self);
        EXPECT_EQ(time.mSampleTime, unit.renderedTime);
        unit.renderedTime += frameCount;
        for (std::size_t c = 0; c < list->mBuffers.size(); ++c)
            std::copy_n(unit.captured[c], frameCount, static_cast<float*>(list->mBuffers[c].mData));
        return unit.renderStatus;
    }

    /// One cycle of the card: 0.5 and 0.25 come in; the first sample of each output.
    std::vector<float> cycle(std::size_t frameCount) {
        const std::vector<float> left(frameCount, 0.5F);
        const std::vector<float> right(frameCount, 0.25F);
        std::vector<std::vector<float>> played(3, std::vector<float>(frameCount, 9.0F));
        const std::span<const float> inputs[] = {left, right};
        const std::span<float> outputs[] = {played[0], played[1], played[2]};
        {
            const AllocationGuard guard;
            machine.driver->client->cycle(inputs, outputs, frameCount);
        }
        return {played[0][frameCount - 1], played[1][frameCount - 1], played[2][frameCount - 1]};
    }

    Machine& machine;
    AudioUnit unit;
    float captured[3][64] = {};
    double renderedTime = 0.0;
    OSStatus captureStatus = noErr;
    OSStatus renderStatus = noErr;
};

TEST(SystemAudioHardware, RunsTheInputAndThenTheRenderCallbackOfEveryCycle) {
    Machine machine;
    Unit unit(machine);
    EXPECT_EQ(machine.hardware.AudioOutputUnitStart(unit.unit), kAudioUnitErr_Uninitialized);
    ASSERT_EQ(machine.hardware.AudioUnitInitialize(unit.unit), noErr);
    ASSERT_EQ(machine.hardware.AudioOutputUnitStart(unit.unit), noErr);
    EXPECT_TRUE(machine.driver->isRunning);

    // The device's third output is none of the unit's, the unit's third input none of the device's.
    unit.captured[2][63] = 7.0F;
    for (const std::size_t frameCount : {64, 1, 33}) {
        EXPECT_EQ(unit.cycle(frameCount), (std::vector<float>{0.5F, 0.25F, 0.0F})) << frameCount;
        EXPECT_EQ(unit.captured[2][frameCount - 1], 0.0F) << frameCount;
    }
    unit.renderStatus = kAudioUnitErr_NoConnection;
    EXPECT_EQ(unit.cycle(64), (std::vector<float>{0.0F, 0.0F, 0.0F}));

    AudioUnitRenderActionFlags flags = 0;
    AudioBufferList none;
    EXPECT_EQ(
        machine.hardware.AudioUnitRender(unit.unit, flags, {}, 1, 64, none),
        kAudioUnitErr_CannotDoInCurrentContext
    );
    EXPECT_EQ(machine.hardware.AudioOutputUnitStop(unit.unit), noErr);
    EXPECT_FALSE(machine.driver->isRunning);
    EXPECT_EQ(machine.hardware.AudioUnitUninitialize(unit.unit), noErr);
    EXPECT_EQ(machine.driver->client, nullptr);
}

TEST(SystemAudioHardware, RendersACycleBeyondTheMaximumSliceInSlices) {
    Machine machine;
    Unit unit(machine);
    ASSERT_EQ(machine.hardware.AudioUnitInitialize(unit.unit), noErr);
    for (const std::size_t frameCount : {65U, 128U, 150U, 4096U}) {
        std::vector<float> ramp(frameCount);
        std::iota(ramp.begin(), ramp.end(), 1.0F);
        std::vector<std::vector<float>> played(3, std::vector<float>(frameCount, 9.0F));
        const std::span<const float> inputs[] = {ramp, ramp};
        const std::span<float> outputs[] = {played[0], played[1], played[2]};
        const double before = unit.renderedTime;
        {
            const AllocationGuard guard;
            machine.driver->client->cycle(inputs, outputs, frameCount);
        }
        EXPECT_EQ(played[0], ramp);
        EXPECT_EQ(played[1], ramp);
        EXPECT_EQ(played[2], std::vector<float>(frameCount, 0.0F)) << "the unit has no third output";
        EXPECT_EQ(unit.captureStatus, noErr);
        EXPECT_EQ(unit.renderedTime, before + static_cast<double>(frameCount));
    }
}

TEST(SystemAudioHardware, RefusesUnitPropertiesThatDoNotFit) {
    Machine machine;
    Unit unit(machine);
    const std::uint32_t one = 1;
    EXPECT_EQ(unit.set(kAudioOutputUnitProperty_EnableIO, 2, 1, one), kAudioUnitErr_InvalidScope);
    EXPECT_EQ(
        unit.set(kAudioOutputUnitProperty_CurrentDevice, 0, 0, AudioObjectID{99}),
        kAudioHardwareBadDeviceError
    );
    EXPECT_EQ(
        unit.set(kAudioUnitProperty_StreamFormat, 1, 0, Unit::format(2, 96000.0)),
        kAudioUnitErr_FormatNotSupported
    );
    machine.driver->openAnswer = kAudioDevicePermissionsError;
    EXPECT_EQ(machine.hardware.AudioUnitInitialize(unit.unit), kAudioDevicePermissionsError);
    machine.driver->openAnswer = noErr;
    EXPECT_EQ(machine.hardware.AudioUnitInitialize(unit.unit), noErr);
    EXPECT_EQ(unit.set(kAudioOutputUnitProperty_EnableIO, 2, 0, one), kAudioUnitErr_Initialized);

    std::uint32_t xruns = 0;
    machine.hardware.AudioUnitGetProperty(
        unit.unit, kAudioOutputUnitProperty_XRunCount, 0, 0, writableBytesOf(xruns)
    );
    EXPECT_EQ(xruns, 3U);
}

} // namespace
