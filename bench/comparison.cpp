#include "comparison.h"

#include "block_times.h"

#include <fmt/format.h>

#include <chrono>
#include <stdexcept>

namespace orvane::bench {

namespace {

using namespace std::chrono_literals;

constexpr auto duration = 400ms;
constexpr int blocksPerTurn = 8;

/// Runs fast and plain blocks alternately, so that disturbances affect both.
template <class Fast, class Plain>
Comparison compare(ReferenceConditions& show, Fast fast, Plain plain) {
    BlockTimes fastTimes;
    BlockTimes plainTimes;
    BlockTimes copyTimes;
    const auto end = std::chrono::steady_clock::now() + duration;
    while (std::chrono::steady_clock::now() < end) {
        for (int i = 0; i < blocksPerTurn; ++i)
            fastTimes.measure(fast);
        for (int i = 0; i < blocksPerTurn; ++i)
            plainTimes.measure(plain);
        for (int i = 0; i < blocksPerTurn; ++i)
            copyTimes.measure([&show] { show.copyBlock(); });
    }
    return {
        .median = fastTimes.within(0.5),
        .undisturbed = fastTimes.within(0.1),
        .within999 = fastTimes.within(0.999),
        .worst = fastTimes.within(1.0),
        .plain = plainTimes.within(0.5),
        .copy = copyTimes.within(0.5)};
}

} // namespace

Comparison compareProcessor(const ReferenceConditions::Shape& shape) {
    ReferenceConditions show(shape);
    return compare(
        show, [&show] { show.processFast(); }, [&show] { show.processPlain(); }
    );
}

Comparison compareRenderPass(const ReferenceConditions::Shape& shape) {
    ReferenceConditions show(shape);
    for (int i = 0; i < 100; ++i) {
        show.runFast();
        show.runPlain();
        if (!show.playedTheSame())
            throw std::runtime_error(fmt::format(
                "The mixer of {} strips on {} kernels did not give the bits of the plain one.", shape.strips,
                shape.kernels->name
            ));
    }
    return compare(
        show, [&show] { show.runFast(); }, [&show] { show.runPlain(); }
    );
}

} // namespace orvane::bench
