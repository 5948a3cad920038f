#include "soak/choices.h"
#include "soak/random_operator.h"
#include "soak/stage.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>

namespace {

using namespace orvane;

// What goes wrong here, the allocation guard and the sanitizers see.
TEST(EngineChurn, SurvivesRandomOperationsWhileItRuns) {
    soak::Choices choices{std::uint64_t{1}};
    soak::Stage stage({.pacing = platform::virtual_devices::VirtualPacing::live});
    soak::RandomOperator person(stage, choices);
    int starts = 0;
    const auto counting =
        stage.engine.state().isRunning.subscribe([&starts](bool runs) { starts += runs ? 1 : 0; });
    for (int round = 0; round < 5000; ++round) {
        person.act();
        stage.mainThread.advance(std::chrono::milliseconds(5));
    }
    EXPECT_GT(starts, 100);
    stage.engine.stop();
    EXPECT_FALSE(stage.engine.state().isRunning.get());
}

} // namespace
