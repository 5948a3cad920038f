#include "ui/meters/meters.h"
#include "ui/theme/theme.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QPaintEvent>
#include <QPainter>
#include <QTest>

#include <cmath>

namespace {

using namespace orvane;
using namespace orvane::ui;

TEST(Meters, LightTheSegmentsUpToTheValue) {
    for (const auto& [level, lit] :
         {std::pair(0.0, 0), {0.0001, 0}, {0.01, 0}, {0.011, 1}, {1.0, 18}, {1.9, 20}, {50.0, 20}})
        EXPECT_EQ(litLevelSegments(level, 20), lit) << level;
    for (const auto& [reduction, lit] :
         {std::pair(-1.0, 0), {0.0, 0}, {0.01, 1}, {15.0, 10}, {30.0, 20}, {120.0, 20}})
        EXPECT_EQ(litReductionSegments(reduction, 20), lit) << reduction;
    for (const auto& [load, lit] : {std::pair(-1.0, 0), {0.0, 0}, {0.62, 7}, {1.0, 10}, {3.0, 10}})
        EXPECT_EQ(litLoadSegments(load, 10), lit) << load;
}

TEST(Meters, LayTheirSegmentsAlongTheLongerSide) {
    const auto upright = layOutSegments({18.0, 150.0}, 20, 2.0, MeterOrigin::bottom);
    ASSERT_EQ(upright.size(), 20U);
    EXPECT_DOUBLE_EQ(upright[0].height(), 5.6);
    EXPECT_DOUBLE_EQ(upright[0].bottom(), 150.0);
    EXPECT_NEAR(upright[19].top(), 0.0, 1e-9);
    EXPECT_EQ(layOutSegments({10.0, 150.0}, 20, 2.0, MeterOrigin::top)[0].top(), 0.0);
    const auto lying = layOutSegments({240.0, 14.0}, 20, 2.0, MeterOrigin::top);
    EXPECT_EQ(lying[0].left(), 0.0);
    EXPECT_EQ(lying[0].height(), 14.0);
    EXPECT_TRUE(layOutSegments({10.0, 40.0}, 20, 2.0, MeterOrigin::bottom).empty());
    EXPECT_EQ(layOutSegments({10.0, 58.0}, 20, 2.0, MeterOrigin::bottom).size(), 20U);
    EXPECT_TRUE(layOutSegments({0.0, 150.0}, 20, 2.0, MeterOrigin::bottom).empty());
}

/// The colour in the middle of a segment.
QColor colorAt(const QImage& image, const QRectF& segment) {
    return image.pixelColor(segment.center().toPoint());
}

TEST(Meters, PaintTheirSegmentsInTheColoursOfTheirPlaces) {
    MeterView meter(20);
    meter.resize(18, 150);
    meter.setLevel(1.0);
    EXPECT_EQ(meter.litSegments(), 18);
    const QImage image = meter.grab().toImage();
    const auto segments = layOutSegments({18.0, 150.0}, 20, 2.0, MeterOrigin::bottom);
    for (const auto& [segment, color] :
         {std::pair(0, theme::green),
          {13, theme::green},
          {14, theme::orange},
          {16, theme::orange},
          {17, theme::red}})
        EXPECT_EQ(colorAt(image, segments[static_cast<std::size_t>(segment)]).rgb(), color.rgb()) << segment;
    EXPECT_NE(colorAt(image, segments[18]).rgb(), theme::red.rgb());

    GateMeterView gate(20);
    gate.resize(10, 150);
    gate.setReductionDB(15.0);
    const QImage reduced = gate.grab().toImage();
    const auto fromTop = layOutSegments({10.0, 150.0}, 20, 2.0, MeterOrigin::top);
    EXPECT_EQ(colorAt(reduced, fromTop[9]).rgb(), theme::darkOrange.rgb());
    EXPECT_NE(colorAt(reduced, fromTop[10]).rgb(), theme::orange.rgb());
}

TEST(Meters, FadeTheLoadOnceItFillsAnotherSegment) {
    LoadMeterView meter(10);
    meter.resize(100, 8);
    const auto segments = layOutSegments({100.0, 8.0}, 10, 1.5, MeterOrigin::bottom);
    const auto isLit = [&](std::size_t segment) {
        return colorAt(meter.grab().toImage(), segments[segment]).rgb() == theme::green.rgb();
    };
    meter.setLoad(0.05);
    EXPECT_TRUE(isLit(0)) << "at once";
    meter.setLoad(0.15);
    EXPECT_FALSE(isLit(1)) << "as it begins to fade in";
    meter.setLoad(0.1);
    EXPECT_FALSE(isLit(1)) << "at once";
}

TEST(Meters, FadeWhileTheAudioIsStopped) {
    audio::MeterModel model(1);
    platform::Published<bool> isRunning(true);
    ChannelMeterColumn strip(model, 0, isRunning);
    WideMeterColumn master("Master level", model.masterMeter, isRunning);
    for (QWidget* column : {static_cast<QWidget*>(&strip), static_cast<QWidget*>(&master)}) {
        column->show();
        isRunning.set(true);
        model.channelMeters.set({0.0});
        model.channelGainReductionDB.set({0.0});
        model.masterMeter.set(0.0);
        const QImage dark = column->grab().toImage();
        model.channelMeters.set({1.0});
        model.channelGainReductionDB.set({9.0});
        model.masterMeter.set(1.0);
        const QImage lit = column->grab().toImage();
        EXPECT_NE(lit, dark);
        isRunning.set(false);
        EXPECT_TRUE(QTest::qWaitFor([&] { return column->grab().toImage() == dark; }));
        isRunning.set(true);
        EXPECT_EQ(column->grab().toImage(), lit);
    }
}

TEST(Meters, RepaintOnlyChangedSegments) {
    MeterView meter(20);
    meter.resize(18, 150);
    meter.show();
    QApplication::processEvents();
    RepaintLog log;
    meter.installEventFilter(&log);
    const auto repaintedFor = [&](double level) {
        log.region = {};
        meter.setLevel(level);
        QApplication::processEvents();
        return log.region.boundingRect();
    };
    const auto segments = layOutSegments({18.0, 150.0}, 20, 2.0, MeterOrigin::bottom);
    const auto reach = [&](std::size_t first, std::size_t last) {
        // With the edges, which fractional scales smooth beyond a segment.
        return segments[first].united(segments[last]).toAlignedRect().adjusted(-1, -1, 1, 1) & meter.rect();
    };
    EXPECT_EQ(repaintedFor(1.0), reach(0, 17));
    EXPECT_EQ(repaintedFor(1.0), QRect());
    EXPECT_EQ(repaintedFor(0.5), reach(15, 17));
    EXPECT_EQ(repaintedFor(0.6), reach(15, 15));

    MeterView lying(20);
    lying.resize(240, 14);
    lying.show();
    QApplication::processEvents();
    lying.installEventFilter(&log);
    for (const auto& [peak, repainted] :
         {std::pair(1.0, QRect(207, 0, 2, 14)), {1.0001, QRect()}, {1e-9, QRect(207, 0, 2, 14)}}) {
        log.region = {};
        lying.setPeak(peak);
        QApplication::processEvents();
        EXPECT_EQ(log.region.boundingRect(), repainted) << peak;
    }
}

} // namespace
