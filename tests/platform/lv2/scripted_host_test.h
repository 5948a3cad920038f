#pragma once

#include "platform/lv2/lv2_unit_host.h"
#include "support/hosted_unit.h"
#include "support/scripted_plugin.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace orvane::test {

/// A host with the scripted plugin: "plain" must be paused for a restore, "safe" need not.
class ScriptedHostTest : public testing::Test {
  protected:
    ScriptedHostTest() {
        bundles.add(
            "scripted.lv2",
            scripted("plain") + scripted("safe", "lv2:optionalFeature state:threadSafeRestore ;")
        );
    }

    std::shared_ptr<platform::AUAudioUnit> make(const char* name) { return instantiate(*host, name).unit; }

    /// A unit that is ready to render one channel.
    std::shared_ptr<platform::AUAudioUnit> makeReady(const char* name = "plain") {
        auto unit = make(name);
        EXPECT_EQ(setUp(*unit, 1), "");
        return unit;
    }

    Lv2Bundles bundles;
    std::vector<std::string> lines;
    platform::SystemLog log{[this](const platform::LogLine& line) { lines.emplace_back(line.text); }};
    std::unique_ptr<platform::lv2::Lv2UnitHost> host =
        std::make_unique<platform::lv2::Lv2UnitHost>(log, bundles.searchPath());
    const std::vector<float> ones = std::vector<float>(64, 1.0F);
};

} // namespace orvane::test
