#include "ui/bridge/meter_bridge.h"

#include "mixer_machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTest>

#include <cmath>
#include <vector>

namespace {

using namespace orvane;
using namespace orvane::test;
using namespace orvane::ui;
using testing::ElementsAre;

class Bridge : public MixerViewTest {
  protected:
    Bridge() {
        engine.selectDevice(device(0));
        engine.start();
        bridge.resize(300, 32);
        bridge.show();
        QApplication::processEvents();
    }
    platform::Uuid strip(std::size_t index) { return state().channelStrips.get()[index].id; }
    /// A tick of the meters.
    void tick(const std::vector<double>& levelsDB, std::vector<double> reductionsDB) {
        std::vector<double> levels;
        for (const double level : levelsDB)
            levels.push_back(std::pow(10.0, level / 20.0));
        engine.meterModel().channelMeters.set(levels);
        engine.meterModel().channelGainReductionDB.set(std::move(reductionsDB));
    }
    const std::vector<bool>& open() { return openChannels.channels().get(); }

    OpenChannels openChannels{state(), engine.meterModel()};
    std::vector<std::size_t> picked;
    MeterBridge bridge{state(), engine.meterModel(), openChannels, [this](std::size_t channel) {
                           picked.push_back(channel);
                       }};
};

TEST_F(Bridge, CountsAChannelAsOpenIfItIsHeard) {
    tick({-20, -20, -60}, {0, 6.1, 0});
    EXPECT_THAT(open(), ElementsAre(true, false, false)) << "turned down; silent at unity";
    tick({-60, -20, -39}, {0, 6, 26});
    EXPECT_THAT(open(), ElementsAre(true, true, false)) << "a gap between syllables";
    tick({-20, -20, -20}, {9, 9, 16});
    EXPECT_THAT(open(), ElementsAre(true, true, false)) << "as many as the limit of open microphones allows";
    engine.setBypassed(strip(2), true);
    engine.setMuted(strip(1), true);
    EXPECT_THAT(open(), ElementsAre(true, false, true));
    for (int pause = 0; pause < 15; ++pause)
        tick({-60, -60, -60}, {0, 0, 0});
    EXPECT_THAT(open(), ElementsAre(false, false, false));
    tick({-20, -20, -20}, {0, 0, 0});
    engine.stop();
    EXPECT_THAT(open(), ElementsAre(false, false, false));
}

TEST_F(Bridge, RepaintsOnlyWhatHasChanged) {
    tick({-40, -20, 6}, {0, 0, 0});
    EXPECT_EQ(bridge.litLength(0), 0);
    EXPECT_EQ(bridge.litLength(2), 94) << "the whole of a third of the width";
    QApplication::processEvents();
    RepaintLog log;
    bridge.installEventFilter(&log);
    tick({-40, -10, 6}, {0, 0, 0});
    QApplication::processEvents();
    EXPECT_EQ(log.region.boundingRect(), QRect(143, 23, 21, 7)) << "from -20 to -10 dB";
    engine.setMuted(strip(0), true);
    QApplication::processEvents();
    EXPECT_EQ(log.region.boundingRect().left(), 6);
}

TEST_F(Bridge, PicksTheClickedChannel) {
    for (const int x : {0, 110, 299})
        QTest::mouseClick(&bridge, Qt::LeftButton, {}, {x, 10});
    EXPECT_THAT(picked, ElementsAre(0, 1, 2));
}

} // namespace
