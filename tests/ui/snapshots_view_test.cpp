#include "ui/sheets/snapshots_view.h"

#include "ui/controls/console_button.h"
#include "ui/sheets/snapshot_list_view.h"

#include "mixer_machine.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QTest>

#include <cstdint>
#include <limits>

namespace {

using namespace orvane;
using namespace orvane::test;
using namespace orvane::ui;

const QString waiting = QStringLiteral("Waiting for a MIDI note… (send one from your controller)");

class Snapshots : public MixerViewTest {
  protected:
    Snapshots() { sheet.show(); }

    void press(const char* button) { buttonOf(sheet, button).click(); }
    QPoint middleOf(int row) { return list.visualItemRect(list.item(row)).center(); }
    void click(int row) { QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, middleOf(row)); }
    /// The field in which a name is edited.
    QLineEdit& rename(int row) {
        deleteWhatIsDone();
        click(row);
        QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, middleOf(row));
        auto* const field = list.viewport()->findChild<QLineEdit*>();
        if (field == nullptr) throw std::runtime_error("no name is being edited");
        return *field;
    }

    SnapshotsView sheet{engine};
    SnapshotListView& list = *viewsIn<SnapshotListView>(sheet).at(0);
};

TEST_F(Snapshots, BeginEmptyAndAreStored) {
    const QString empty = QStringLiteral("No snapshots yet — tap New to capture the current mix.");
    EXPECT_EQ(sheet.size(), QSize(440, 660));
    EXPECT_TRUE(shows(sheet, empty));
    EXPECT_FALSE(buttonOf(sheet, "Recall").isEnabled());
    EXPECT_FALSE(buttonOf(sheet, "MIDI").isEnabled());
    ASSERT_NE(sheet.focusWidget(), nullptr);
    EXPECT_EQ(sheet.focusWidget()->accessibleName(), "Done") << "Space must not change anything";
    for (const char* inapplicable : {"Undo", "Copy", "Delete"})
        press(inapplicable);
    press("Store");
    EXPECT_FALSE(shows(sheet, empty));
    EXPECT_TRUE(shows(sheet, "1 / 1"));
    EXPECT_EQ(list.count(), 1);
    EXPECT_TRUE(buttonOf(sheet, "Recall").isEnabled());
}

TEST_F(Snapshots, AreSelectedByAClickAndAppliedByRecall) {
    engine.setMasterTargetDB(-20.0);
    press("New");
    engine.setMasterTargetDB(-5.0);
    press("New");
    EXPECT_TRUE(shows(sheet, "2 / 2"));
    click(0);
    EXPECT_TRUE(shows(sheet, "1 / 2"));
    EXPECT_EQ(state().master.get().levels.masterTargetDB, -5.0);
    press("Recall");
    EXPECT_EQ(state().master.get().levels.masterTargetDB, -20.0);
    press("Next snapshot");
    EXPECT_EQ(list.currentRow(), 1);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, QPoint(5, list.viewport()->height() - 2));
    EXPECT_EQ(list.selectedItems().size(), 1);
    press("Copy");
    press("Insert");
    EXPECT_EQ(list.count(), 4);
    press("Delete");
    EXPECT_EQ(list.count(), 3);
    press("Undo");
    EXPECT_EQ(list.count(), 4);
    press("Previous snapshot");
    EXPECT_TRUE(shows(sheet, "2 / 4"));
}

TEST_F(Snapshots, ShowTheirPositionOnOneLine) {
    for (int scene = 0; scene < 100; ++scene)
        engine.newSnapshot();
    QApplication::processEvents();
    const auto labels = sheet.findChildren<QLabel*>();
    const auto position = std::ranges::find(labels, QString("100 / 100"), &QLabel::text);
    ASSERT_NE(position, labels.end());
    EXPECT_FALSE((*position)->wordWrap());
    EXPECT_GE((*position)->width(), (*position)->sizeHint().width());
}

TEST_F(Snapshots, AreRenamedInTheListAsTyped) {
    press("New");
    press("New");
    for (const char* text : {"  Panel ", ""}) {
        QLineEdit& field = rename(1);
        field.selectAll();
        field.del();
        QTest::keyClicks(&field, text);
        QTest::keyClick(&field, Qt::Key_Return);
        QApplication::processEvents();
        EXPECT_EQ(state().snapshots.get()[1].name, text);
    }
    QLineEdit& abandoned = rename(0);
    QTest::keyClicks(&abandoned, "x");
    QTest::keyClick(&abandoned, Qt::Key_Escape);
    EXPECT_EQ(state().snapshots.get()[0].name, "Snapshot 1");
    EXPECT_TRUE(sheet.isVisible());
}

TEST_F(Snapshots, AreRecalledByEnterInTheListButNotByTheEnterThatEndsARenaming) {
    press("New");
    engine.setMuted(state().channelStrips.get()[0].id, true);
    QTest::keyClick(&rename(0), Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_TRUE(state().channelStrips.get()[0].muted);
    QTest::keyClick(sheet.findChild<QListWidget*>(), Qt::Key_Return);
    EXPECT_FALSE(state().channelStrips.get()[0].muted);
}

TEST_F(Snapshots, LearnANoteUntilItArrivesOrIsCancelled) {
    auto source = machine.addMIDISource("Pads");
    press("New");
    auto& midi = static_cast<ConsoleButton&>(buttonOf(sheet, "MIDI"));
    for (const bool isLearning : {true, false, true}) {
        midi.click();
        EXPECT_EQ(midi.isActive(), isLearning);
        EXPECT_EQ(shows(sheet, waiting), isLearning);
    }
    engine.applyDocument(engine.makeDocumentData());
    EXPECT_FALSE(midi.isEnabled()) << "a load selects none";
    press("Cancel MIDI learn");
    EXPECT_FALSE(shows(sheet, waiting));
    engine.selectSnapshot(0);
    midi.click();
    engine.handleMIDINote({2, 60});
    EXPECT_FALSE(midi.isActive());
    EXPECT_EQ(list.item(0)->toolTip(), "Recalled by MIDI channel 3, note 60.");
    session::MixerDocumentData document = engine.makeDocumentData();
    document.snapshots[0].midiTrigger->channel = std::numeric_limits<std::int64_t>::max();
    engine.applyDocument(document);
    EXPECT_EQ(list.item(0)->toolTip(), "Recalled by MIDI channel 9223372036854775808, note 60.");
}

TEST_F(Snapshots, KeepInsertsSafeFromRecalls) {
    for (const char* name : {"Insert 1 Recall-Safe", "Insert 2 Recall-Safe", "Insert 3 Recall-Safe"})
        press(name);
    press("Insert 2 Recall-Safe");
    EXPECT_EQ(state().pluginSlotRecallSafe.get(), (std::vector{true, false, true}));
    EXPECT_FALSE(buttonOf(sheet, "Insert 2 Recall-Safe").isChecked());
}

TEST_F(Snapshots, SaveAnInsertOfEveryChannelUnderTheTypedName) {
    const platform::Uuid strip = state().channelStrips.get()[0].id;
    engine.selectDevice(device(0));
    engine.loadPlugin(machine.effect, 1, strip);
    machine.mainThread.runPosted();
    const auto& identity = *state().channelStrips.get()[0].pluginSlots[1].component;
    for (const auto& [typed, kept] : {std::pair("   ", 0U), {" Warm ", 1U}}) {
        press("Save Insert 2");
        auto* const prompt = sheet.findChild<QDialog*>();
        ASSERT_NE(prompt, nullptr);
        auto* const field = prompt->findChild<QLineEdit*>();
        EXPECT_EQ(field->text(), "Insert 2");
        field->setText(typed);
        buttonOf(*prompt, "Save").click();
        deleteWhatIsDone();
        EXPECT_EQ(engine.pluginPresets(identity).size(), kept);
    }
    EXPECT_EQ(engine.pluginPresets(identity)[0].name, "Warm");
}

} // namespace
