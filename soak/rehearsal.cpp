#include "soak/rehearsal.h"

#include <algorithm>

namespace orvane::soak {

using namespace std::chrono_literals;

namespace {

/// Long enough for at least one tick of the meters.
constexpr auto longerThanATick = 34ms;

} // namespace

Rehearsal::Rehearsal(const Stage::Shape& shape, Choices& decisions, std::size_t fullCheckInterval)
    : stage(shape),
      choices(decisions),
      blockInvariants(stage, firstFault, fullCheckInterval),
      person(stage, decisions) {
    stage.engine.start();
}

void Rehearsal::step(std::chrono::nanoseconds longestPause) {
    last = person.act();
    const std::chrono::nanoseconds pause(
        static_cast<std::int64_t>(choices.between(0.0, static_cast<double>(longestPause.count())))
    );
    pass(pause);
}

void Rehearsal::clearDesk() {
    last = "clear the desk";
    person.clearDesk();
    pass(longerThanATick);
}

void Rehearsal::pass(std::chrono::nanoseconds duration) {
    publishedInvariants.check();
    stage.driver->clock().advance(duration);
    stage.mainThread.advance(std::max<std::chrono::nanoseconds>(duration, longerThanATick));
    blockInvariants.checkMeters();
    now += duration;
}

} // namespace orvane::soak
