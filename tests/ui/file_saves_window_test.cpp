// The file-save settings windows over a whole station on the virtual clock: the
// author sets sequential names, a destination and MP3 at 32 kbit mono through the
// windows, saves, and the next letter dictated through the main window comes out
// so, in the recordings folder and in the destination.

#include "ui/file_saves_window.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QToolButton>
#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>

#include "configuration/file_saves_texts.h"
#include "configuration/mp3_options.h"
#include "settings/debug_trace.h"
#include "station/virtual_station.h"
#include "ui/format_windows.h"
#include "ui/station_window.h"
#include "ui/transport_bar.h"
#include "ui_test_helpers.h"

namespace ovd::ui::testing {
namespace {

// What ffprobe says of the first audio stream: "codec sample_rate channels bit_rate".
std::string probe(const std::string& path) {
    const std::string command =
        "ffprobe -v error -select_streams a:0 -show_entries "
        "stream=codec_name,sample_rate,channels,bit_rate -of csv=p=0 '" +
        path + "'";
    std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    if (!pipe) return {};
    std::string out;
    std::array<char, 256> buffer{};
    while (std::fgets(buffer.data(), buffer.size(), pipe.get()) != nullptr) out += buffer.data();
    while (!out.empty() && (out.back() == '\n' || out.back() == '\r')) out.pop_back();
    return out;
}

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

void pick(QComboBox* box, const QString& text) {
    const int index = box->findText(text);
    ASSERT_GE(index, 0) << text.toStdString();
    box->setCurrentIndex(index);
    Q_EMIT box->activated(index);
}

class FileSavesWindowTest : public ::testing::TestWithParam<bool> {
  protected:
    FileSavesWindowTest() {
        settings::SettingsRecord& r = s.config.record;
        r.RecordingFormats = "OPT2";
        r.FileLabelActive = true;
        r.FileLabelText = "AB";
        r.SequentialNumbering = false;
        if (!s.config.WriteConfig()) ADD_FAILURE() << "settings not written";
        station = &s.make();
        station->Form_Load();
        window = std::make_unique<StationWindow>(
            StationWindowParts{s.config, s.log, station->dictation(), station->recordingEditor(),
                               station->scratchEditor(), trace, s.prompts, OVD_TEST_ASSETS,
                               "virtual", &station->handsFree()});
        window->Form_Load();
    }

    station::testing::VirtualStation s;
    station::Station* station = nullptr;
    settings::DebugTrace trace{s.loop};
    std::unique_ptr<StationWindow> window;
};

TEST_P(FileSavesWindowTest, ALetterComesOutAsTheWindowSetIt) {
    const bool tabbed = GetParam();
    if (tabbed) {
        auto* caption = in<QLabel>(*window, "lblFileNameCaption");
        QMouseEvent twice(QEvent::MouseButtonDblClick, QPointF(2, 2),
                          caption->mapToGlobal(QPointF(2, 2)), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QApplication::sendEvent(caption, &twice);
    }
    const std::string destination = s.folder.file("dest");
    s.prompts.answerNextText(destination);

    const bool opened = answering<FileSavesWindow>(
        [&](FileSavesWindow& dialog) {
            EXPECT_EQ(dialog.objectName(), tabbed ? "frmcfgFileSavesTab" : "frmcfgFileSaves");
            in<QRadioButton>(dialog, "Option2")->click();
            type(in<QLineEdit>(dialog, "Text4"), "4");
            type(in<QLineEdit>(dialog, "Text2"), "7");
            in<QCheckBox>(dialog, "chkSend1")->click();
            pick(in<QComboBox>(dialog, "cboFormat"), "MP3");
            const bool mp3 = answering<Mp3OptionsWindow>(
                [](Mp3OptionsWindow& options) {
                    pick(in<QComboBox>(options, "cmbFrequency"), "16 000 Hz");
                    pick(in<QComboBox>(options, "cmbChMode"), "Mono");
                    in<QSlider>(options, "sldrBitrate")
                        ->setValue(configuration::sliderIndexOfBitRate(32));
                    EXPECT_EQ(in<QLabel>(options, "lblBitrate")->text(),
                              "Current bitrate: 32 kbit");
                    in<QPushButton>(options, "cmdOK")->click();
                },
                [&] { in<QPushButton>(dialog, "cmdFormatOptions")->click(); });
            EXPECT_TRUE(mp3);
            EXPECT_EQ(in<QComboBox>(dialog, "cboBits")->currentText(), "32");
            EXPECT_EQ(in<QComboBox>(dialog, "cboChan")->currentText(), "MONO");
            in<QPushButton>(dialog, "Command9")->click();
        },
        [&] { in<QAction>(*window, "mnuFileSaves")->trigger(); });
    ASSERT_TRUE(opened);

    const settings::SettingsRecord disk = s.storedSettings();
    EXPECT_TRUE(disk.SequentialNumbering.toBool());
    EXPECT_EQ(disk.Places, 4);
    EXPECT_EQ(disk.FileNameIncrement.toText(), "7");
    EXPECT_EQ(disk.FormatType, "MP3");
    EXPECT_EQ(disk.FileBit, "32");
    EXPECT_EQ(disk.Channel, "1");
    EXPECT_EQ(disk.Frequency, "16000");
    EXPECT_TRUE(disk.AutoSend1);
    EXPECT_EQ(disk.SendToOne, destination);

    // The first letter of the run opens in the new settings. "starting at" holds
    // the last number used, not the next one: starting at 7 makes this letter 0008.
    s.advance(3000);
    window->render();
    const std::string name = "AB0008.MP3";
    ASSERT_EQ(station->dictation().state().Filename, s.recordings + "/" + name);
    TransportBar* bar = window->findChild<TransportBar*>("MMControl1");
    bar->button(TransportBar::Button::Record)->click();
    s.advance(2000);
    bar->button(TransportBar::Button::Stop)->click();
    s.advance(500);
    window->render();
    in<QPushButton>(*window, "cmdEOL")->click();
    s.advance(15000);

    for (const std::string& folder : {s.recordings, destination}) {
        SCOPED_TRACE(folder);
        EXPECT_EQ(probe(folder + "/" + name), "mp3,16000,1,32000");
    }
}

class FileSavesDuringATakeTest : public FileSavesWindowTest {};

TEST_F(FileSavesDuringATakeTest, ATakeUnderWayIsSavedAsItWasBegunAndTheNextLetterOpens) {
    s.advance(3000);
    window->render();
    const std::string first = station->dictation().state().Filename;
    ASSERT_FALSE(first.empty());
    window->findChild<TransportBar*>("MMControl1")->button(TransportBar::Button::Record)->click();
    s.advance(3000);
    ASSERT_TRUE(station->dictation().state().Recordingstatus);

    const bool opened = answering<FileSavesWindow>(
        [](FileSavesWindow& dialog) {
            pick(in<QComboBox>(dialog, "cboFormat"), "MP3");
            in<QPushButton>(dialog, "Command9")->click();
        },
        [&] { in<QAction>(*window, "mnuFileSaves")->trigger(); });
    ASSERT_TRUE(opened);
    s.advance(1000);

    const auto texts = s.prompts.texts();
    EXPECT_NE(std::find(texts.begin(), texts.end(), configuration::kRecordingSavedNow),
              texts.end());
    const dictation::DictationState& now = station->dictation().state();
    EXPECT_FALSE(now.Recordingstatus);
    EXPECT_TRUE(now.flgfileOpen1);
    EXPECT_NE(now.Filename, first);
    // The take is kept, in the wave format it was begun in.
    EXPECT_EQ(probe(first).rfind("pcm_", 0), 0U) << probe(first);
    EXPECT_EQ(s.storedSettings().FormatType, "MP3");
}

INSTANTIATE_TEST_SUITE_P(BothForms, FileSavesWindowTest, ::testing::Values(false, true),
                         [](const auto& form) { return form.param ? "Tabbed" : "Scrolling"; });

}  // namespace
}  // namespace ovd::ui::testing
