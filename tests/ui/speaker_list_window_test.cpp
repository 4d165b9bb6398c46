// The speaker list and the letter details over a whole station on the virtual
// clock: the author adds speakers and turns names on through the speaker window,
// the main window's box then offers the active speakers, and the next letter
// dictated through the main window is named after the speaker picked there; the
// details typed into the main window's panel come out inside the saved letter.

#include "ui/speaker_list_window.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QTreeWidget>
#include <memory>

#include "engine/file_tags.h"
#include "settings/debug_trace.h"
#include "settings/passwords_tables.h"
#include "station/virtual_station.h"
#include "ui/station_window.h"
#include "ui/transport_bar.h"
#include "ui_test_helpers.h"

namespace ovd::ui::testing {
namespace {

template <typename Widget>
Widget* in(QWidget& window, const char* name) {
    auto* widget = window.findChild<Widget*>(QString::fromLatin1(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}

void type(QLineEdit* box, const QString& text) {
    box->setText(text);
    Q_EMIT box->textEdited(text);
    Q_EMIT box->editingFinished();
}

class SpeakerListWindowTest : public ::testing::Test {
  protected:
    SpeakerListWindowTest() {
        settings::SettingsRecord& r = s.config.record;
        r.RecordingFormats = "OPT2";
        r.FileLabelActive = true;
        r.FileLabelText = "AB";
        r.SequentialNumbering = false;
        r.AddNameToFile = false;
        if (!s.config.WriteConfig()) ADD_FAILURE() << "settings not written";
        station = &s.make();
        station->Form_Load();
        window = std::make_unique<StationWindow>(
            StationWindowParts{s.config, s.log, station->dictation(), station->recordingEditor(),
                               station->scratchEditor(), trace, s.prompts, OVD_TEST_ASSETS,
                               "virtual", &station->handsFree()});
        window->Form_Load();
        s.advance(3000);  // the first letter of the run opens
        window->render();
    }

    // A take through the main window's bar, then the letter closed by its icon.
    std::string dictateAndClose() {
        in<QAction>(*window, "Image2")->trigger();
        s.advance(500);
        TransportBar* bar = window->findChild<TransportBar*>("MMControl1");
        bar->button(TransportBar::Button::Record)->click();
        s.advance(2500);
        bar->button(TransportBar::Button::Stop)->click();
        s.advance(500);
        const std::string letter = station->dictation().state().Filename;
        in<QAction>(*window, "Image10")->trigger();
        s.advance(1000);
        return letter;
    }

    station::testing::VirtualStation s;
    station::Station* station = nullptr;
    settings::DebugTrace trace{s.loop};
    std::unique_ptr<StationWindow> window;
};

TEST_F(SpeakerListWindowTest, SpeakersAddedThroughTheWindowNameTheNextLetter) {
    auto* speakerBox = in<QWidget>(*window, "frameSpeaker");
    EXPECT_TRUE(speakerBox->isHidden());

    const bool opened = answering<SpeakerListWindow>(
        [](SpeakerListWindow& dialog) {
            auto* name = in<QLineEdit>(dialog, "txtNewSpeaker");
            auto* active = in<QCheckBox>(dialog, "chkActive");
            type(name, "Ames");
            if (!active->isChecked()) active->click();
            in<QPushButton>(dialog, "CommandAddStatus")->click();
            type(name, "Brown");
            active->click();  // Brown does not dictate here any more
            in<QPushButton>(dialog, "CommandAddStatus")->click();
            type(name, "AMES");
            in<QPushButton>(dialog, "CommandAddStatus")->click();  // refused, any case
            type(name, "");
            auto* list = in<QTreeWidget>(dialog, "ListView1");
            EXPECT_EQ(list->topLevelItemCount(), 2);
            EXPECT_EQ(list->topLevelItem(1)->text(1), "False");
            in<QCheckBox>(dialog, "chkEnableAddToFileName")->click();
            in<QPushButton>(dialog, "CancelButton")->click();
        },
        [&] { in<QAction>(*window, "mnuSpeakers")->trigger(); });
    ASSERT_TRUE(opened);
    EXPECT_EQ(s.prompts.texts(),
              std::vector<std::string>{"This Speaker/Dictator is already in the list."});

    settings::SpeakersTable table(s.config.dataFolder());
    const auto rows = table.allSpeakers();
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].LastSeqNo, 0);
    EXPECT_TRUE(s.storedSettings().AddNameToFile);

    EXPECT_FALSE(speakerBox->isHidden());
    auto* names = in<QComboBox>(*window, "cboName");
    ASSERT_EQ(names->count(), 1) << "only the active speakers";
    EXPECT_EQ(names->itemText(0), "Ames");
    names->setCurrentIndex(0);
    Q_EMIT names->activated(0);

    const std::string letter = dictateAndClose();
    EXPECT_NE(letter.find("/AB_Ames_"), std::string::npos) << letter;
    EXPECT_TRUE(platform::fileExists(letter));
}

TEST_F(SpeakerListWindowTest, DetailsTypedIntoThePanelAreSavedInsideTheLetter) {
    auto* heading = in<QToolButton>(*window, "cmdLetterDetails");
    auto* author = in<QLineEdit>(*window, "Y-Author");
    EXPECT_TRUE(author->isHidden() || !author->isVisibleTo(window.get()))
        << "folded away until asked for";
    heading->click();
    EXPECT_TRUE(author->isVisibleTo(window.get()));

    in<QAction>(*window, "Image2")->trigger();
    s.advance(500);
    window->render();
    type(author, "Dr Ames");
    type(in<QLineEdit>(*window, "SF-Meeting Name"), "Ward round");
    TransportBar* bar = window->findChild<TransportBar*>("MMControl1");
    bar->button(TransportBar::Button::Record)->click();
    s.advance(2500);
    bar->button(TransportBar::Button::Stop)->click();
    s.advance(500);
    const std::string letter = station->dictation().state().Filename;
    in<QAction>(*window, "Image10")->trigger();
    s.advance(1000);
    window->render();

    EXPECT_EQ(engine::readLetterDetails(letter),
              (engine::LetterDetails{{"Y-Author", "Dr Ames"}, {"SF-Meeting Name", "Ward round"}}));
    EXPECT_EQ(author->text(), "") << "no letter open, nothing shown";
}

}  // namespace
}  // namespace ovd::ui::testing
