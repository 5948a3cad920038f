// Walks the running program on the accessibility bus, as a screen reader does.

#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QProcess>
#include <QTest>

#include <map>
#include <utility>

namespace {

constexpr unsigned checkedState = 1U << 4U;
const QString accessible = "org.a11y.atspi.Accessible";

/// An object on the bus.
struct Element {
    QVariant call(const QString& interface, const char* method, const QVariantList& with = {}) const {
        QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
        message.setArguments(with);
        return bus.call(message).arguments().value(0);
    }
    [[nodiscard]] QVariant get(const QString& interface, const char* property) const {
        const QVariant got = call("org.freedesktop.DBus.Properties", "Get", {interface, property});
        return got.value<QDBusVariant>().variant();
    }
    [[nodiscard]] QString text(const char* property) const { return get(accessible, property).toString(); }
    [[nodiscard]] bool isChecked() const {
        QList<uint> states;
        call(accessible, "GetState").value<QDBusArgument>() >> states;
        return (states.value(0) & checkedState) != 0;
    }
    bool press() const { return call("org.a11y.atspi.Action", "DoAction", {0}).toBool(); }
    /// Adds this element and all below it by their names.
    void collect(std::map<QString, Element>& byName) const {
        byName.emplace(text("Name"), *this);
        const auto children = call(accessible, "GetChildren").value<QDBusArgument>();
        if (children.currentType() != QDBusArgument::ArrayType) return;
        for (children.beginArray(); !children.atEnd();) {
            QDBusObjectPath childPath;
            Element child = *this;
            children.beginStructure();
            children >> child.service >> childPath;
            children.endStructure();
            child.path = childPath.path();
            child.collect(byName);
        }
    }

    QDBusConnection bus;
    QString service;
    QString path;
};

TEST(AccessibilityBus, OffersStripsWithTheirStatesPickersAndMeters) {
    const Element broker{QDBusConnection::sessionBus(), "org.a11y.Bus", "/org/a11y/bus"};
    const QVariant on = QVariant::fromValue(QDBusVariant(true));
    broker.call("org.freedesktop.DBus.Properties", "Set", {"org.a11y.Status", "IsEnabled", on});
    const QString address = broker.call("org.a11y.Bus", "GetAddress").toString();
    const Element desktop{
        QDBusConnection::connectToBus(address, "accessibility"), "org.a11y.atspi.Registry",
        "/org/a11y/atspi/accessible/root"};
    const orvane::test::TemporaryFolder folder;
    for (const char* home : {"XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"})
        qputenv(home, (folder / "home").c_str());
    qputenv("ORVANE_DRIVERS", "virtual");
    QProcess program;
    program.start(ORVANE_PROGRAM, {"--device", "virtual:panel", "--channels", "8", "--start"});
    std::map<QString, Element> strip;
    std::map<QString, Element> all;
    const auto isThere = [&] {
        all.clear();
        desktop.collect(all);
        return all.contains("Ch 8");
    };
    ASSERT_TRUE(QTest::qWaitFor(isThere, 30000)) << program.readAllStandardError().toStdString();

    EXPECT_EQ(all.at("Ch 3").call(accessible, "GetRoleName"), "panel");
    all.at("Ch 3").collect(strip);
    const std::pair<const char*, const char*> controls[] = {
        {"Trigger filter ♂, channel 3", "radio button"},
        {"Input, channel 3", "combo box"},
        {"Output, channel 3", "combo box"},
        {"Insert 1 (empty), channel 3", "push button"},
        {"Gain reduction, channel 3", "progress bar"},
        {"Trim, channel 3", "slider"},
        {"Bypass, channel 3", "check box"}};
    for (const auto& [name, role] : controls) {
        ASSERT_TRUE(strip.contains(name)) << name;
        EXPECT_EQ(strip.at(name).call(accessible, "GetRoleName"), role) << name;
    }
    EXPECT_EQ(strip.at("Input, channel 3").text("Description"), "In 3");
    const Element& mute = strip.at("Mute, channel 3");
    for (const bool isMuted : {true, false}) {
        EXPECT_TRUE(mute.press());
        EXPECT_TRUE(QTest::qWaitFor([&] { return mute.isChecked() == isMuted; }, 20000));
    }
    const Element& male = strip.at("Trigger filter ♂, channel 3");
    EXPECT_TRUE(male.press() && QTest::qWaitFor([&] { return male.isChecked(); }, 20000));
    const Element& master = all.at("Master level");
    const auto isPlaying = [&] {
        return master.get("org.a11y.atspi.Value", "CurrentValue").toDouble() > -40.0;
    };
    EXPECT_TRUE(QTest::qWaitFor(isPlaying, 20000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return master.text("Description").endsWith(" dB"); }, 20000));
    program.terminate();
    program.waitForFinished();
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
