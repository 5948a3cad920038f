#include "ui/windows/plugin_editor_windows.h"

#include "platform/lv2/lv2_unit_host.h"
#include "support/hosted_unit.h"
#include "ui/controls/menu_picker.h"
#include "ui/controls/value_field.h"
#include "ui/controls/value_slider.h"
#include "ui/editors/parameter_row.h"
#include "ui/editors/parameter_scale.h"
#include "ui/editors/plugin_editor_view.h"

#include "mixer_machine.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QProgressBar>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

#include <cmath>

namespace {

using namespace orvane;
using namespace orvane::test;
using namespace orvane::ui;

/// The editor of the distribution's equaliser, which has parameters of every kind.
class PluginEditor : public testing::Test {
  protected:
    PluginEditor() {
        const auto made = instantiate(host, "x42-eq - Parametric Equalizer Mono");
        if (!made.unit) throw std::runtime_error("x42-plugins is not installed");
        unit = made.unit;
        window = windows.windowWithContentViewController(
            std::make_shared<platform::AUViewController>(unit), "Equalizer",
            platform::NSWindowStyleMaskTitled | platform::NSWindowStyleMaskClosable
        );
        window->showWindow();
        window->makeKeyAndOrderFront();
        for (QWidget* each : QApplication::topLevelWidgets())
            if (auto* const editor = dynamic_cast<PluginEditorView*>(each)) view = editor;
    }

    ParameterRow& row(platform::AUParameter& of) {
        return viewNamed<ParameterRow>(*view, QString::fromStdString(of.info().displayName));
    }
    /// The first parameter that matches.
    template <class Predicate>
    platform::AUParameter& find(Predicate fits) {
        for (platform::AUParameter* each : unit->parameters())
            if (!each->info().isHidden && fits(each->info())) return *each;
        throw std::runtime_error("no such parameter");
    }

    platform::SystemLog log{[](const platform::LogLine&) {}};
    platform::lv2::Lv2UnitHost host{log};
    std::shared_ptr<platform::AUAudioUnit> unit;
    PluginEditorWindows windows;
    std::unique_ptr<platform::NSWindowController> window;
    PluginEditorView* view = nullptr;
};

using Info = platform::AUParameterInfo;

/// A parameter without a plugin.
struct LoneParameter final : platform::AUParameter {
    [[nodiscard]] const Info& info() const override { return description; }
    [[nodiscard]] float value() const noexcept override { return current; }
    void setValue(float value) noexcept override { current = value; }

    Info description;
    float current = 0.0F;
};

TEST(ParameterRow, OffersAMenuOfNamesOrValues) {
    LoneParameter parameter;
    parameter.description.kind = Info::Kind::choice;
    parameter.description.namedValues = {{0.0F, "Off"}, {1.5F, ""}, {3.0F, " "}};
    ParameterRow row(parameter);
    MenuPicker& menu = *viewsIn<MenuPicker>(row).at(0);
    EXPECT_EQ(itemsOf(menu), QStringList({"Off", "1.5", "3"}));
    QTest::keyClick(&menu, Qt::Key_Down);
    EXPECT_EQ(parameter.value(), 1.5F);
    parameter.setValue(3.0F);
    row.refresh();
    EXPECT_EQ(menu.currentText(), "3");
}

TEST_F(PluginEditor, SetsParametersAndShowsChangesMadeElsewhere) {
    EXPECT_EQ(view->windowTitle(), "Equalizer");
    auto& frequency = find([](const Info& info) { return info.isLogarithmic && info.unitName == "Hz"; });
    auto& slider = *viewsIn<ValueSlider>(row(frequency)).at(0);
    auto& field = *viewsIn<ValueField>(row(frequency)).at(0);
    QTest::keyClick(&slider, Qt::Key_End);
    EXPECT_FLOAT_EQ(frequency.value(), frequency.info().maxValue);
    EXPECT_TRUE(field.text().endsWith(" Hz")) << field.text().toStdString();
    field.selectAll();
    QTest::keyClicks(&field, "440");
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_FLOAT_EQ(
        frequency.value(), std::clamp(440.0F, frequency.info().minValue, frequency.info().maxValue)
    );
    frequency.setValue(frequency.info().minValue);
    EXPECT_TRUE(QTest::qWaitFor([&] { return slider.value() == 0.0; }));
    doubleClick(slider, {10, slider.height() / 2});
    EXPECT_NEAR(frequency.value(), frequency.info().defaultValue, 1e-3F * frequency.info().defaultValue);

    auto& toggle = find([](const Info& info) { return info.kind == Info::Kind::toggle && !info.isReadOnly; });
    auto& box = *row(toggle).findChild<QCheckBox*>();
    EXPECT_EQ(box.isChecked(), toggle.value() > 0.0F);
    const bool wasOn = box.isChecked();
    box.click();
    EXPECT_EQ(toggle.value() > 0.0F, !wasOn);

    auto& meter = find([](const Info& info) { return info.isReadOnly; });
    EXPECT_NE(row(meter).findChild<QProgressBar*>(), nullptr);
    EXPECT_TRUE(viewsIn<ValueSlider>(row(meter)).empty());
}

TEST_F(PluginEditor, ScrollsWithoutMovingSlidersUnderThePointer) {
    ASSERT_TRUE(QTest::qWaitForWindowActive(view));
    ValueSlider& slider = *viewsIn<ValueSlider>(*view).at(0);
    const QScrollBar& place = *view->findChild<QScrollArea*>()->verticalScrollBar();
    ASSERT_GT(place.maximum(), 0);
    slider.setValue(0.5);
    slider.setFocus();
    turnWheelAt(*view->findChild<QLabel*>(), 1000);
    EXPECT_GT(place.value(), 0);
    turnWheelAt(slider, 1250);
    EXPECT_EQ(slider.value(), 0.5);
    turnWheelAt(slider, 1600);
    EXPECT_LT(slider.value(), 0.5);
}

TEST_F(PluginEditor, IsClosedByTheUserForGood) {
    EXPECT_FALSE(window->isClosed());
    ASSERT_TRUE(QTest::qWaitForWindowActive(view));
    QTest::keyClick(view, Qt::Key_Escape);
    EXPECT_TRUE(window->isClosed());
    const std::weak_ptr kept(unit);
    unit.reset();
    EXPECT_FALSE(kept.expired());
    window.reset();
    EXPECT_TRUE(kept.expired());
}

Info makeInfo(float lowest, float highest, bool isLogarithmic = false, const char* unitName = "") {
    Info info;
    info.minValue = lowest;
    info.maxValue = highest;
    info.isLogarithmic = isLogarithmic;
    info.unitName = unitName;
    return info;
}

TEST(ParameterScale, ConvertsBothWays) {
    const Info linear = makeInfo(-20.0F, 20.0F);
    const Info logarithmic = makeInfo(20.0F, 20000.0F, true, "Hz");
    const Info falling = makeInfo(-8.0F, -0.5F, true);
    EXPECT_DOUBLE_EQ(shareOfRange(linear, 10.0), 0.75);
    EXPECT_NEAR(shareOfRange(logarithmic, 632.4555), 0.5, 1e-6);
    EXPECT_DOUBLE_EQ(shareOfRange(falling, -2.0), 0.5);
    for (const Info& info : {linear, logarithmic, falling}) {
        for (const double share : {0.0, 0.3, 1.0})
            EXPECT_NEAR(shareOfRange(info, valueAtShare(info, share)), share, 1e-9);
        EXPECT_EQ(shareOfRange(info, 1e9), 1.0);
    }
    EXPECT_EQ(shareOfRange(makeInfo(1.0F, 1.0F), 1.0), 0.0);
    EXPECT_EQ(writtenValue(logarithmic, 1234.4), "1234 Hz");
    EXPECT_EQ(writtenValue({}, 0.12345), "0.123");
}

} // namespace
