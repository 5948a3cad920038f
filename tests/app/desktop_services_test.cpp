#include "app/desktop_services.h"

#include "engine/mixer_engine.h"
#include "platform/audio_hardware/system_audio_hardware.h"
#include "platform/midi_services/system_midi_services.h"
#include "platform/virtual/virtual_audio_driver.h"
#include "support/desktop_peer.h"
#include "support/manual_main_thread.h"
#include "support/scripted_audio_unit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orvane;
using namespace std::chrono_literals;
using testing::Contains;
using testing::StartsWith;

class DesktopServicesTest : public testing::Test {
  protected:
    static constexpr const char* interface = "virtual:interface";

    std::vector<std::unique_ptr<platform::AudioDriver>> makeDrivers() {
        std::vector<platform::virtual_devices::VirtualDevice> devices(1);
        devices[0].description = {interface, "Interface", 2, 2, 48000.0};
        devices[0].answerBufferSize = [](std::uint32_t /*requested*/) { return 512U; };
        auto stepped = std::make_unique<platform::virtual_devices::VirtualAudioDriver>(
            std::move(devices), platform::virtual_devices::VirtualPacing::stepped, log
        );
        driver = stepped.get();
        std::vector<std::unique_ptr<platform::AudioDriver>> drivers;
        drivers.push_back(std::move(stepped));
        return drivers;
    }

    void start() {
        engine.refreshDevices();
        engine.selectDevice(engine.state().availableDevices.get().at(0));
        engine.start();
        EXPECT_TRUE(engine.state().isRunning.get()) << engine.state().lastError.get().value_or("");
    }

    bool comesTo(std::size_t locks, std::size_t calls) {
        return test::waitFor([&] {
            mainThread.runPosted();
            mainThread.advance(20ms);
            desktop.serve();
            return desktop.locks() == locks && desktop.calls.size() == calls;
        });
    }

    test::DesktopPeer desktop;
    platform::SystemLog log{[](const platform::LogLine&) {}};
    test::ManualMainThread mainThread;
    platform::virtual_devices::VirtualAudioDriver* driver = nullptr;
    platform::SystemAudioHardware hardware{makeDrivers()};
    platform::SystemMIDIServices midi{{}};
    test::ScriptedAudioUnitHost units;
    app::DesktopServices services{mainThread, log};
    engine::MixerEngine engine{2, {hardware, midi, mainThread, units, log}};
};

TEST_F(DesktopServicesTest, KeepTheComputerAwakeAndNotifyIfAudioStopsByItself) {
    services.follow(&engine.state());
    // A failed start and a stop by the operator cause no notification.
    engine.start();
    ASSERT_TRUE(engine.state().lastError.get());
    start();
    EXPECT_TRUE(comesTo(1, 1));
    engine.setBufferSize(256);
    ASSERT_TRUE(engine.state().lastError.get()) << "it warns of another size";
    EXPECT_TRUE(comesTo(1, 2));
    engine.stop();
    EXPECT_TRUE(comesTo(0, 2));
    start();
    EXPECT_TRUE(comesTo(1, 3));

    driver->control(interface)->die();
    EXPECT_TRUE(comesTo(0, 4));
    EXPECT_EQ(
        desktop.calls.back(), "Notify ORVANE 0 app.orvane.mixer | The mixer has stopped | "
                                  + engine.state().lastError.get().value() + " | 2"
    );

    driver->control(interface)->reappear();
    start();
    EXPECT_TRUE(comesTo(1, 5));
    services.follow(nullptr);
    EXPECT_TRUE(comesTo(0, 5));
    engine.stop();
    EXPECT_TRUE(comesTo(0, 5));
}

} // namespace
