#include "support/hosted_unit.h"
#include "support/wait_for.h"

#include "scripted_host_test.h"

#include <gmock/gmock.h>
#include <lv2/atom/atom.h>
#include <lv2/urid/urid.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <limits>
#include <thread>
#include <utility>
#include <vector>

namespace orvane::platform::lv2 {
namespace {

using namespace test;
using namespace testing;

constexpr std::uint32_t gainPort = 2;
constexpr std::uint32_t answerPort = 3;
constexpr std::uint32_t inputPort = 4;
constexpr std::uint32_t outputPort = 5;
constexpr std::uint32_t enabledPort = 8;

struct Parent final : NativeEditorParent {
    [[nodiscard]] std::uintptr_t nativeWindow() const override { return 77; }
    [[nodiscard]] double scaleFactor() const override { return 1.0; }
    void setContentSize(int width, int height) override { size = {width, height}; }

    std::pair<int, int> size;
};

/// The scripted plugin, with a port that the host holds, and a description of its editor.
std::string withEditor(const std::string& editor) {
    return scripted("plain") + R"(<urn:orvane:test:plain> ui:ui <urn:orvane:test:editor> ;
        lv2:port [ a lv2:ControlPort, lv2:InputPort ; lv2:index 8 ; lv2:symbol "enabled" ;
        lv2:name "On" ; lv2:designation lv2:enabled ; lv2:maximum 1 ] . <urn:orvane:test:editor> )"
           + editor;
}

const std::string usualEditor = "a ui:X11UI ; lv2:binary <file://" + scriptedLv2Library
                                + "> ; lv2:requiredFeature ui:idleInterface , ui:fixedSize .";

class Lv2EditorTest : public test::ScriptedHostTest {
  protected:
    Lv2EditorTest() { probe().editor = {}; }

    void load(const std::string& editor) {
        bundles.add("scripted.lv2", withEditor(editor));
        host = std::make_unique<Lv2UnitHost>(log, bundles.searchPath());
        unit = make("plain");
        ASSERT_TRUE(unit);
    }

    std::unique_ptr<NativeEditor> open() {
        auto editor = unit->openNativeEditor(parent);
        log.flush();
        return editor;
    }

    /// Makes a unit that is ready to render, and opens its usual editor.
    std::unique_ptr<NativeEditor> openReady() {
        load(usualEditor);
        EXPECT_EQ(setUp(*unit, 1), "");
        auto editor = open();
        EXPECT_TRUE(editor);
        return editor;
    }

    static void write(std::uint32_t port, float value) {
        probe().editor.write(probe().editor.controller, port, sizeof value, 0, &value);
    }
    static LV2_URID urid(const char* uri) {
        const auto* const map = static_cast<const LV2_URID_Map*>(probe().editor.features.at(LV2_URID__map));
        return map->map(map->handle, uri);
    }
    /// `claimed`: the size in the atom's header.
    static void send(std::uint32_t port, std::int32_t number, std::uint32_t claimed = 4) {
        const std::array<std::uint32_t, 3> atom{
            claimed, urid(LV2_ATOM__Int), static_cast<std::uint32_t>(number)};
        probe().editor.write(
            probe().editor.controller, port, sizeof atom, urid(LV2_ATOM__eventTransfer), atom.data()
        );
    }

    Parent parent;
    std::shared_ptr<AUAudioUnit> unit;
};

TEST_F(Lv2EditorTest, OpensIfTheEditorIsForX11AndItsRequirementsAreSupported) {
    const std::string binary = " <file://" + scriptedLv2Library + "> ";
    const struct {
        std::string editor;
        bool opens = false;
        /// The end of the line in the log; empty if there is none.
        std::string reason = {};
    } cases[] = {
        {usualEditor, true},
        {"a ui:X11UI ; ui:binary" + binary + ".", true},
        {"a ui:GtkUI ; ui:binary" + binary + "."},
        {"a ui:X11UI ; lv2:requiredFeature <http://lv2plug.in/ns/ext/instance-access> ; ui:binary" + binary
             + ".",
         false, "it needs the LV2 feature http://lv2plug.in/ns/ext/instance-access, which is not supported."},
        {"a ui:X11UI ; opts:requiredOption <urn:option> ; ui:binary" + binary + ".", false,
         "it needs the LV2 option urn:option, which is not supported."},
        {"a ui:X11UI .", false, "it names no library."},
        {"a ui:X11UI ; ui:binary <file:///missing.so> .", false,
         "/missing.so: cannot open shared object file: No such file or directory."},
    };
    for (const auto& each : cases) {
        load(each.editor);
        EXPECT_EQ(open() != nullptr, each.opens) << each.editor;
        if (each.reason.empty())
            EXPECT_THAT(lines, IsEmpty());
        else
            EXPECT_THAT(lines, ElementsAre("The editor of \"plain\" cannot be opened: " + each.reason));
        lines.clear();
    }
    load(usualEditor);
    probe().editor.refuses = true;
    EXPECT_FALSE(open());
    EXPECT_THAT(
        lines, ElementsAre("The editor of \"plain\" cannot be opened: the plugin refuses to open it.")
    );
    EXPECT_THAT(probe().editor.pluginsAtClose, ElementsAre(1, 1)) << "those that were opened";
}

TEST_F(Lv2EditorTest, ExchangesWindowAndSizeWithItsParent) {
    load(usualEditor);
    probe().editor.width = 300;
    const auto editor = open();
    ASSERT_TRUE(editor);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(probe().editor.features[LV2_UI__parent]), 77U);
    EXPECT_EQ(probe().editor.gainPort, gainPort);
    EXPECT_EQ(parent.size, std::pair(300, 100));
    const LV2UI_Resize& resize = *probe().editor.resize;
    EXPECT_NE(resize.ui_resize(resize.handle, 0, 100), 0);
    EXPECT_EQ(resize.ui_resize(resize.handle, 500, 400), 0);
    EXPECT_EQ(parent.size, std::pair(500, 400));
    EXPECT_EQ(editor->nativeWindow(), reinterpret_cast<std::uintptr_t>(&probe().editor));
    EXPECT_TRUE(editor->hasFixedSize());
    EXPECT_TRUE(editor->idle());
    EXPECT_EQ(probe().editor.idleCalls, 1);
    probe().editor.wantsToClose = true;
    EXPECT_FALSE(editor->idle());
}

TEST_F(Lv2EditorTest, IsClosedWithALogLineIfItThrows) {
    using Throw = test::ScriptedEditorProbe::Throw;
    load(usualEditor);
    for (const Throw place : {Throw::instantiate, Throw::extensionData, Throw::portEvent}) {
        probe().editor.throwsIn = place;
        EXPECT_FALSE(open()) << static_cast<int>(place);
        EXPECT_THAT(lines, ElementsAre("The editor of \"plain\" cannot be opened: it failed."));
        lines.clear();
    }
    EXPECT_EQ(probe().editor.pluginsAtClose.size(), 2U) << "those that had begun";
    for (const Throw place : {Throw::portEvent, Throw::idle, Throw::cleanup}) {
        probe().editor.throwsIn = Throw::nowhere;
        auto editor = open();
        ASSERT_TRUE(editor);
        probe().editor.throwsIn = place;
        AUParameter& gain = parameter(*unit, "gain");
        gain.setValue(gain.value() / 2.0F);
        EXPECT_EQ(editor->idle(), place == Throw::cleanup);
        editor.reset();
        log.flush();
        EXPECT_EQ(lines.size(), place == Throw::cleanup ? 0U : 1U);
        lines.clear();
    }
}

TEST_F(Lv2EditorTest, ShowsOutsideChangesAndSetsItsOwn) {
    load(usualEditor);
    auto& values = probe().editor.values;
    const auto editor = open();
    ASSERT_TRUE(editor);
    const auto shownAtNextIdle = [&] {
        values.clear();
        editor->idle();
        return values;
    };
    EXPECT_THAT(values, ElementsAre(Pair(gainPort, 0.5F), Pair(answerPort, 0.0F), Pair(enabledPort, 1.0F)));
    EXPECT_THAT(shownAtNextIdle(), IsEmpty());
    parameter(*unit, "gain").setValue(0.75F);
    EXPECT_THAT(shownAtNextIdle(), ElementsAre(Pair(gainPort, 0.75F)));

    write(gainPort, 1.5F);
    EXPECT_EQ(parameter(*unit, "gain").value(), 1.5F);
    EXPECT_THAT(shownAtNextIdle(), IsEmpty()) << "it knows";
    write(gainPort, 99.0F);
    EXPECT_THAT(shownAtNextIdle(), ElementsAre(Pair(gainPort, 2.0F))) << "the parameter takes no more";
    write(gainPort, std::numeric_limits<float>::quiet_NaN());
    EXPECT_THAT(shownAtNextIdle(), ElementsAre(Pair(gainPort, 2.0F)));
    write(enabledPort, 0.0F);
    EXPECT_THAT(shownAtNextIdle(), ElementsAre(Pair(enabledPort, 1.0F))) << "the host holds it";
    write(answerPort, 5.0F);
    EXPECT_THAT(shownAtNextIdle(), ElementsAre(Pair(answerPort, 0.0F))) << "it is the plugin's to set";

    const auto state = unit->fullState();
    write(gainPort, 0.25F);
    EXPECT_TRUE(unit->setFullState(*state));
    EXPECT_THAT(shownAtNextIdle(), ElementsAre(Pair(gainPort, 2.0F))) << "a recall";

    write(0, 1.0F);
    write(9999, 1.0F);
    const double tooLarge = 1.0;
    probe().editor.write(probe().editor.controller, gainPort, sizeof tooLarge, 0, &tooLarge);
    probe().editor.write(probe().editor.controller, gainPort, 4, 12345, &tooLarge);
    probe().editor.write(probe().editor.controller, gainPort, 4, 0, nullptr);
    EXPECT_THAT(shownAtNextIdle(), IsEmpty());
    EXPECT_EQ(parameter(*unit, "gain").value(), 2.0F);
}

TEST_F(Lv2EditorTest, CarriesMessagesBothWaysWithTheBlocks) {
    auto editor = openReady();
    UnitRenderer renderer(*unit, 1);
    auto& messages = probe().editor.messages;
    send(inputPort, 11);
    send(inputPort, 12);
    send(outputPort, 13);
    send(gainPort, 14);
    send(inputPort, 15, 5000);
    editor->idle();
    EXPECT_THAT(messages, IsEmpty());
    EXPECT_EQ(renderer.renderBlock(ones), noErr);
    EXPECT_EQ(parameter(*unit, "answer").value(), 0.0F) << "a port is not connected as it should be";
    editor->idle();
    EXPECT_THAT(messages, ElementsAre(Pair(outputPort, 11), Pair(outputPort, 12)));
    EXPECT_EQ(renderer.renderBlock(ones), noErr);
    editor->idle();
    EXPECT_EQ(messages.size(), 2U) << "nothing was sent again";

    messages.clear();
    send(inputPort, 21);
    send(inputPort, -1);
    send(inputPort, 22);
    EXPECT_EQ(renderer.renderBlock(ones), noErr);
    editor->idle();
    EXPECT_THAT(messages, ElementsAre(Pair(outputPort, 21))) << "what follows a wrong size cannot be found";

    // Another instance replaces this one. All open editors receive every message; an editor opened later
    // receives none of the earlier ones.
    messages.clear();
    auto second = open();
    unit->deallocateRenderResources();
    ASSERT_EQ(setUp(*unit, 1, 96000.0), "");
    send(inputPort, 31);
    EXPECT_EQ(renderer.renderBlock(ones), noErr);
    second->idle();
    EXPECT_THAT(messages, ElementsAre(Pair(outputPort, 31), Pair(outputPort, 31)));
    send(inputPort, 32);
    EXPECT_EQ(renderer.renderBlock(ones), noErr);
    editor.reset();
    second.reset();
    messages.clear();
    editor = open();
    editor->idle();
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(Lv2EditorTest, SendsFromThreadsOfItsOwn) {
    const auto editor = openReady();
    constexpr std::int32_t secondFrom = 1 << 30;
    const auto& opened = probe().editor;
    const LV2_URID transfer = urid(LV2_ATOM__eventTransfer);
    const LV2_URID type = urid(LV2_ATOM__Int);
    std::atomic<bool> isOver = false;
    std::vector<std::thread> threads;
    for (const std::int32_t first : {0, secondFrom})
        threads.emplace_back([&, first] {
            for (auto number = static_cast<std::uint32_t>(first); !isOver; ++number) {
                const std::array<std::uint32_t, 3> atom{4, type, number};
                opened.write(opened.controller, inputPort, sizeof atom, transfer, atom.data());
            }
        });
    UnitRenderer renderer(*unit, 1);
    auto& messages = probe().editor.messages;
    EXPECT_TRUE(test::waitFor([&] {
        EXPECT_EQ(renderer.renderBlock(ones), noErr);
        EXPECT_TRUE(editor->idle());
        return messages.size() > 50000;
    }));
    isOver = true;
    for (std::thread& thread : threads)
        thread.join();
    // Some do not fit; the others arrive whole, and in order for each thread.
    std::ranges::stable_partition(messages, [](const auto& message) { return message.second < secondFrom; });
    EXPECT_TRUE(std::ranges::is_sorted(messages));
    EXPECT_EQ(std::ranges::adjacent_find(messages), messages.end());
}

TEST_F(Lv2EditorTest, WorksWhileBlocksAreRendered) {
    load(usualEditor);
    ASSERT_EQ(setUp(*unit, 1), "");
    std::atomic<bool> isDone = false;
    std::thread audio([&] {
        UnitRenderer renderer(*unit, 1);
        while (!isDone.load())
            EXPECT_EQ(renderer.renderBlock(ones), noErr);
    });
    for (int round = 0; round < 20; ++round) {
        const auto editor = open();
        ASSERT_TRUE(editor);
        probe().editor.messages.clear();
        EXPECT_TRUE(test::waitFor([&] {
            send(inputPort, round);
            write(gainPort, 0.01F * static_cast<float>(round));
            editor->idle();
            const auto& messages = probe().editor.messages;
            return !messages.empty() && messages.back() == std::pair(outputPort, round);
        }));
    }
    isDone.store(true);
    audio.join();
}

TEST_F(Lv2EditorTest, IsClosedBeforeItsPluginInEitherOrderOfRelease) {
    auto editor = openReady();
    const std::weak_ptr kept(unit);
    unit->deallocateRenderResources();
    unit.reset();
    host.reset();
    EXPECT_FALSE(kept.expired());
    write(gainPort, 1.0F);
    send(inputPort, 1);
    EXPECT_TRUE(editor->idle());
    editor.reset();
    EXPECT_TRUE(kept.expired());
    EXPECT_EQ(probe().editor.openCount, 1);
    EXPECT_THAT(probe().editor.pluginsAtClose, ElementsAre(1));
    EXPECT_EQ(probe().pluginCount.load(), 0);
}

} // namespace
} // namespace orvane::platform::lv2
