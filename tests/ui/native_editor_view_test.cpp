#include "ui/editors/native_editor_view.h"

#include "support/scripted_audio_unit.h"

#include <gtest/gtest.h>

#include <QTest>

namespace {

using namespace orvane;
using platform::NativeEditorParent;

/// The behaviour of a scripted editor, and what happened to it.
struct Script {
    bool hasFixedSize = false;
    bool wantsToClose = false;
    NativeEditorParent* parent = nullptr;
    int idleCalls = 0;
    int openEditors = 0;
};

struct Editor final : platform::NativeEditor {
    Editor(Script& played, NativeEditorParent& parent) : script(played) {
        script.parent = &parent;
        ++script.openEditors;
        parent.setContentSize(300, 200);
    }
    ~Editor() override { --script.openEditors; }
    [[nodiscard]] std::uintptr_t nativeWindow() const override { return 0; }
    [[nodiscard]] bool hasFixedSize() const override { return script.hasFixedSize; }
    bool idle() override {
        ++script.idleCalls;
        return !script.wantsToClose;
    }

    Script& script;
};

class NativeEditorView : public testing::Test {
  protected:
    NativeEditorView() {
        unit->nativeEditor = [this](NativeEditorParent& parent) {
            return std::make_unique<Editor>(script, parent);
        };
    }

    std::unique_ptr<ui::NativeEditorView> open() {
        return ui::NativeEditorView::open(std::make_shared<platform::AUViewController>(unit), Qt::Window);
    }
    Script script;
    test::ScriptedAudioUnit::Report report;
    std::shared_ptr<test::ScriptedAudioUnit> unit =
        std::make_shared<test::ScriptedAudioUnit>(test::AudioUnitScript{}, report);
};

TEST_F(NativeEditorView, ExistsIfThePluginsEditorOpensAndHasItsSize) {
    for (const bool isFixed : {false, true}) {
        script.hasFixedSize = isFixed;
        const auto view = open();
        ASSERT_TRUE(view);
        EXPECT_NE(script.parent->nativeWindow(), 0U);
        EXPECT_EQ(view->size(), QSize(300, 200));
        EXPECT_EQ(view->minimumSize() == view->maximumSize(), isFixed);
        script.parent->setContentSize(400, 500);
        EXPECT_EQ(view->size(), QSize(400, 500));
        view->resize(600, 600);
        EXPECT_EQ(view->size(), isFixed ? QSize(400, 500) : QSize(600, 600));
    }
    EXPECT_EQ(script.openEditors, 0);
    unit->nativeEditor = {};
    EXPECT_FALSE(open());
}

TEST_F(NativeEditorView, EndsTheEditorIfEitherSideClosesIt) {
    auto view = open();
    view->show();
    EXPECT_TRUE(QTest::qWaitFor([&] { return script.idleCalls > 2; }));
    EXPECT_EQ(script.openEditors, 1);
    view->close();
    EXPECT_EQ(script.openEditors, 0);

    view = open();
    view->show();
    script.wantsToClose = true;
    EXPECT_TRUE(QTest::qWaitFor([&] { return view->isHidden(); }));
    EXPECT_EQ(script.openEditors, 0);

    script.wantsToClose = false;
    view = open();
    unit.reset();
    EXPECT_EQ(report.living, 1);
    EXPECT_EQ(script.openEditors, 1);
    view.reset();
    EXPECT_EQ(report.living, 0);
    EXPECT_EQ(script.openEditors, 0);
}

} // namespace
