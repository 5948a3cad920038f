#include "support/program.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace {

using orvane::test::contentOf;
using orvane::test::exitCodeOfShell;
using testing::HasSubstr;

TEST(PipeWire, IsACardWhosePortsHaveNamesForPeople) {
    const orvane::test::TemporaryFolder folder;
    const std::string command = fmt::format(
        "cd \"$(dirname {0})\"; mkfifo meters; export ORVANE_DRIVERS=jack; pw-jack {1} devices >devices; "
        "env --default-signal=INT pw-jack {1} run --meters json --device 'jack:Test Card' >meters & "
        "{{ read line; pw-metadata >names; pw-link -l >links; kill -INT $!; cat >/dev/null; }} <meters; "
        "wait $!",
        (folder / "command").string(), ORVANE_GUARDED_CLI
    );
    folder.add("command", command);
    const std::string run = ORVANE_WITH_PIPEWIRE " bash " + (folder / "command").string();
    EXPECT_EQ(exitCodeOfShell(folder, run), 0) << contentOf(folder / "stderr");
    EXPECT_THAT(contentOf(folder / "stderr"), HasSubstr("orvane-cli: Ran for"));
    EXPECT_THAT(contentOf(folder / "devices"), HasSubstr("jack:Test Card"));
    const std::string names = contentOf(folder / "names");
    const std::string links = contentOf(folder / "links");
    for (int channel = 0; channel < 8; ++channel) {
        EXPECT_THAT(names, HasSubstr(fmt::format("value:'Input {}' type", channel + 1)));
        EXPECT_THAT(names, HasSubstr(fmt::format("value:'Output {}' type", channel + 1)));
        EXPECT_THAT(
            links, HasSubstr(fmt::format("in:capture_AUX{}\n  |-> ORVANE:in_{}\n", channel, channel + 1))
        );
    }
}

} // namespace
