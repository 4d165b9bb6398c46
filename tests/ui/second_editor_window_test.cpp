// The second editor's window beside the letter's: a passage prepared there (a
// file opened, a part selected and softened) is copied, "Work With First File"
// goes back, and the letter's own Paste puts it in at the cursor. The desktop's
// clipboard carries the audio as WAV data both ways and refuses plain text.

#include "ui/second_editor_window.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDoubleSpinBox>
#include <QMimeData>
#include <QPushButton>
#include <chrono>
#include <cmath>
#include <numbers>
#include <thread>

#include "second_editor/second_editor.h"
#include "ui/spectral_view.h"
#include "ui/station_window_fixture.h"

namespace ovd::ui::testing {
namespace {

using dictation::testing::kRate;

class SecondEditorWindowTest : public StationWindowTest {
  protected:
    SecondEditorWindowTest() { secondFile.setTempFileName(folder.file("SecondEditor")); }

    // Two seconds of a 1 kHz tone at half scale.
    std::string writeTone() {
        std::vector<std::int16_t> samples(2 * kRate);
        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] = static_cast<std::int16_t>(std::lround(
                16000 * std::sin(2 * std::numbers::pi * 1000.0 * static_cast<double>(i) / kRate)));
        return dictation::testing::writeMonoWave(folder.file("tone.wav"), samples);
    }

    std::vector<std::int16_t> secondFrames(engine::SampleCount from, engine::SampleCount count) {
        std::vector<std::int16_t> out(static_cast<std::size_t>(count));
        out.resize(secondFile.readFrames(from, out.data(), out.size()));
        return out;
    }

    void trigger(SecondEditorWindow& w, const char* name) {
        QAction* entry = w.action(name);
        ASSERT_NE(entry, nullptr) << name;
        ASSERT_TRUE(entry->isEnabled()) << name;
        entry->trigger();
    }

    // The effect's end comes back through the loop while the window stays live.
    void letEffectFinish() {
        for (int i = 0; i < 2000 && secondFile.effectRunning(); ++i) {
            QApplication::processEvents();
            loop.runPending();
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        loop.runPending();
        ASSERT_FALSE(secondFile.effectRunning());
    }

    engine::WaveEditor secondFile{loop, backend, clipboard, "SecondEditor"};
    second_editor::SecondEditor second{
        second_editor::SecondEditorParts{loop,
                                         prompts,
                                         secondFile,
                                         clipboard,
                                         [this] { return state().Recordingstatus; },
                                         [this] { return recordings; },
                                         [] {
                                             return engine::PcmFormat{kRate, 1};
                                         },
                                         {}}};
};

TEST_F(SecondEditorWindowTest, APreparedClipGoesIntoTheLetterAtTheCursor) {
    // Opened from the letter's Tools menu; "Work With First File" brings the letter back.
    attachSecondEditorWindow(window(), second, folder.path());
    window().Form_Load();
    dictate(4000);
    const engine::SampleCount letterLength = editor1.Length();
    const engine::SampleCount cursor = kRate;
    editor1.setSelectionActive(false);
    editor1.setCursorPosition(cursor);
    const std::vector<std::int16_t> letterAfterCursor = frames(cursor, letterLength - cursor);

    window().findChild<QAction*>("mnuInsertRecording")->trigger();
    auto* opened = window().findChild<SecondEditorWindow*>("frmSecFile");
    ASSERT_NE(opened, nullptr);
    SecondEditorWindow& w = *opened;
    EXPECT_TRUE(w.isVisible());
    prompts.answerNextText(writeTone());
    trigger(w, "mnuOpen");
    ASSERT_EQ(secondFile.Length(), 2 * kRate);

    w.findChild<QDoubleSpinBox*>("txtSelStart")->setValue(0.5);
    w.findChild<QDoubleSpinBox*>("txtSelEnd")->setValue(1.5);
    ASSERT_EQ(secondFile.SelectionStart(), kRate / 2);
    ASSERT_EQ(secondFile.SelectionEnd(), kRate + kRate / 2);
    const std::vector<std::int16_t> before = secondFrames(kRate / 2, kRate);

    trigger(w, "mnuAmplify2");
    letEffectFinish();
    const std::vector<std::int16_t> clip = secondFrames(kRate / 2, kRate);
    // Softer, not silent: the effect reached the selection.
    EXPECT_NE(clip, before);
    EXPECT_LT(std::abs(clip[40]), std::abs(before[40]) + 1);

    trigger(w, "Copy");
    w.findChild<QPushButton*>("Command5")->click();
    EXPECT_TRUE(window().isVisible());
    // The passage stays in the second editor for another go.
    EXPECT_EQ(secondFile.Length(), 2 * kRate);

    window().findChild<QAction*>("mnuPaste")->trigger();
    runAndRender(100);
    ASSERT_EQ(editor1.Length(), letterLength + kRate);
    EXPECT_EQ(frames(cursor, kRate), clip);
    EXPECT_EQ(frames(cursor + kRate, letterLength - cursor), letterAfterCursor);
}

TEST_F(SecondEditorWindowTest, TheDesktopClipboardCarriesWavAndRefusesText) {
    SecondEditorWindow w(second);
    ASSERT_TRUE(second.openFile(writeTone()));
    second.setSelectionStart(0.25);
    second.setSelectionEnd(0.75);
    const std::vector<std::int16_t> clip = secondFrames(kRate / 4, kRate / 2);
    trigger(w, "mnuCopyWinClipboard");
    const QMimeData* data = QApplication::clipboard()->mimeData();
    ASSERT_TRUE(data->hasFormat("audio/wav"));
    EXPECT_TRUE(data->data("audio/wav").startsWith("RIFF"));

    // Pasted with nothing open: a new document of exactly the clip.
    ASSERT_TRUE(second.close());
    clipboard->pieces.clear();
    trigger(w, "mnuPasteWinClipboard");
    ASSERT_EQ(secondFile.Length(), kRate / 2);
    EXPECT_EQ(secondFrames(0, kRate / 2), clip);

    // Another program's name for wave data is read too.
    const QByteArray wav = data->data("audio/wav");
    auto* other = new QMimeData;
    other->setData("audio/x-wav", wav);
    QApplication::clipboard()->setMimeData(other);
    trigger(w, "mnuPasteWinClipboard");
    EXPECT_EQ(secondFile.Length(), kRate);

    QApplication::clipboard()->setText("a line of text");
    trigger(w, "mnuPasteWinClipboard");
    EXPECT_EQ(secondFile.Length(), kRate);
    EXPECT_EQ(prompts.texts().back(), second_editor::kNoAudioOnClipboardText);
}

TEST_F(SecondEditorWindowTest, TheSpectralViewShowsATonesPitchWhereItBelongs) {
    SecondEditorWindow w(second);
    ASSERT_TRUE(second.openFile(writeTone()));
    trigger(w, "mnuViewSpectral");
    ASSERT_TRUE(w.spectralShown());
    EXPECT_TRUE(w.action("mnuViewSpectral")->isChecked());
    EXPECT_FALSE(w.action("mnuViewWaveForm")->isChecked());
    SpectralView& view = w.spectral();
    view.resize(200, 160);
    QImage shot = view.grab().toImage();
    // The brightest row of the middle column: 1 kHz of the 8 kHz shown is an
    // eighth of the way up from the bottom.
    int brightest = 0;
    int brightestRow = -1;
    for (int y = 0; y < shot.height(); ++y) {
        const int level = qGray(shot.pixel(shot.width() / 2, y));
        if (level > brightest) {
            brightest = level;
            brightestRow = y;
        }
    }
    const int expected = shot.height() - 1 - shot.height() / 8;
    EXPECT_NEAR(brightestRow, expected, shot.height() / 20 + 2);
}

}  // namespace
}  // namespace ovd::ui::testing
