#include "platform/alsa_audio/pcm_names.h"

#include <gtest/gtest.h>

namespace {

using orvane::platform::alsa_audio::kindOf;
using orvane::platform::alsa_audio::PcmKind;

TEST(PcmNames, TellDevicesFromConverters) {
    for (const auto* name : {"hw:CARD=X32,DEV=0", "stage", "my_card:1"})
        EXPECT_EQ(kindOf(name), PcmKind::device) << name;
    for (const auto* name : {"default", "sysdefault", "pulse", "pipewire"})
        EXPECT_EQ(kindOf(name), PcmKind::soundServer) << name;
    for (const auto* name :
         {"front:CARD=X32,DEV=0", "surround51:CARD=X32,DEV=0", "dmix:CARD=X32", "dsnoop", "iec958:CARD=X32",
          "hdmi:CARD=HDMI,DEV=0", "plughw:CARD=X32", "sysdefault:CARD=X32", "hw", "null", "jack", "upmix"})
        EXPECT_EQ(kindOf(name), PcmKind::notADevice) << name;
}

} // namespace
