#include "ui/windows/channel_count_picker_view.h"
#include "ui/windows/window_presenter.h"

#include "mixer_machine.h"

#include <gtest/gtest.h>

#include <QListWidget>
#include <QTest>
#include <QTextBrowser>

namespace {

using namespace orvane::test;
using namespace orvane::ui;

TEST(ChannelCountPicker, OffersEightSizesAndNoOthers) {
    std::vector<int> chosen;
    int cancelled = 0;
    const auto keep = [&](int count) { chosen.push_back(count); };
    const ChannelCountPickerView first({.onSelect = keep});
    const ChannelCountPickerView again({.onSelect = keep, .isReconfiguring = true, .onCancel = [&] {
                                            ++cancelled;
                                        }});
    EXPECT_TRUE(shows(first, "How many channels?"));
    EXPECT_TRUE(shows(again, "Change Channel Count"));
    const auto buttons = first.findChildren<QAbstractButton*>();
    for (QAbstractButton* button : buttons) {
        EXPECT_EQ(button->size(), QSize(84, 56));
        QTest::keyClick(button, Qt::Key_Return);
    }
    EXPECT_EQ(chosen, (std::vector{2, 4, 8, 12, 16, 24, 32, 48}));
    buttonOf(again, "Cancel").click();
    EXPECT_EQ(cancelled, 1);
}

TEST(HelpWindow, IsOneWindowThatBeginsWithTheFirstTopic) {
    HelpWindowPresenter presenter;
    presenter.show();
    HelpView* const view = presenter.window();
    EXPECT_EQ(view->size(), QSize(660, 480));
    EXPECT_EQ(view->selectedID(), "overview");
    auto* const list = view->findChild<QListWidget*>();
    auto* const page = view->findChild<QTextBrowser*>();
    ASSERT_EQ(list->count(), 13);
    for (const HelpTopic& topic : helpTopics()) {
        EXPECT_EQ(page->toPlainText(), topic.title + "\n" + topic.paragraphs.join("\n"));
        QTest::keyClick(list, Qt::Key_Down);
    }
    EXPECT_EQ(view->selectedID(), "requirements");
    presenter.show();
    EXPECT_EQ(presenter.window(), view);
}

TEST(AboutWindow, ShowsTheVersion) {
    const QString before = QCoreApplication::applicationVersion();
    for (const auto& [version, text] : {std::pair("", "v1.0"), {"2.3", "v2.3"}}) {
        QCoreApplication::setApplicationVersion(version);
        EXPECT_TRUE(shows(AboutView(), text)) << version;
    }
    QCoreApplication::setApplicationVersion(before);
}

} // namespace
