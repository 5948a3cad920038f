#include "platform/lv2/lv2_unit_host.h"
#include "support/hosted_unit.h"
#include "support/lv2_bundles.h"
#include "support/wait_for.h"

#include "support/scripted_plugin.h"

#include <gtest/gtest.h>

#include <vector>

namespace orvane::platform::lv2 {
namespace {

TEST(Worker, DeliversAllPendingResponsesInOneRun) {
    const test::Lv2Bundles bundles;
    bundles.add("scripted.lv2", test::scripted("plain"));
    SystemLog log([](const LogLine&) {});
    Lv2UnitHost host(log, bundles.searchPath());
    const auto unit = test::instantiate(host, "plain").unit;
    ASSERT_EQ(test::setUp(*unit, 1), "");
    test::UnitRenderer renderer(*unit, 1);
    const auto renderWithGain = [&](float gain) {
        test::parameter(*unit, "gain").setValue(gain);
        EXPECT_EQ(renderer.renderBlock(std::vector<float>(64, 1.0F)), noErr);
    };
    test::ScriptedLv2Probe& probe = test::probe();
    const int doneBefore = probe.worksDone;
    probe.holdsWork = true;
    for (const float gain : {0.25F, 0.5F, 1.0F})
        renderWithGain(gain);
    probe.holdsWork = false;
    EXPECT_TRUE(test::waitFor([&] { return probe.worksDone == doneBefore + 3; }));
    // Responses arrive after the run; the next run shows the last of them.
    renderWithGain(1.0F);
    renderWithGain(1.0F);
    EXPECT_EQ(test::parameter(*unit, "answer").value(), 10.0F);
}

} // namespace
} // namespace orvane::platform::lv2
