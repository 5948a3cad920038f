#include "platform/lv2_units/worker.h"

#include "support/wait_for.h"

#include <gmock/gmock.h>

#include <atomic>
#include <vector>

namespace orvane::platform::lv2_units {
namespace {

/// A plugin whose work answers twice: what it was given, and that negated.
struct Plugin {
    std::atomic<int> worksDone = 0;
    std::vector<int> answers;
    int runsEnded = 0;
};

constexpr LV2_Worker_Interface twice{
    [](LV2_Handle handle, LV2_Worker_Respond_Function respond, LV2_Worker_Respond_Handle target,
       std::uint32_t size, const void* data) {
        const int negated = -*static_cast<const int*>(data);
        respond(target, size, data);
        respond(target, size, &negated);
        ++static_cast<Plugin*>(handle)->worksDone;
        return LV2_WORKER_SUCCESS;
    },
    [](LV2_Handle handle, std::uint32_t, const void* data) {
        static_cast<Plugin*>(handle)->answers.push_back(*static_cast<const int*>(data));
        return LV2_WORKER_SUCCESS;
    },
    [](LV2_Handle handle) {
        ++static_cast<Plugin*>(handle)->runsEnded;
        return LV2_WORKER_SUCCESS;
    }};

TEST(Worker, HandsAllAnswersThatAreThereToOneRun) {
    Plugin plugin;
    Worker worker;
    worker.start(&plugin, twice, [] {});
    {
        const Worker::RenderCall call(worker);
        for (const int request : {1, 2, 3})
            worker.schedule()->schedule_work(worker.schedule()->handle, sizeof request, &request);
    }
    EXPECT_TRUE(test::waitFor([&] { return plugin.worksDone == 3; }));
    const Worker::RenderCall call(worker);
    worker.deliverResponses();
    EXPECT_THAT(plugin.answers, testing::ElementsAre(1, -1, 2, -2, 3, -3));
    EXPECT_EQ(plugin.runsEnded, 1);
}

} // namespace
} // namespace orvane::platform::lv2_units
