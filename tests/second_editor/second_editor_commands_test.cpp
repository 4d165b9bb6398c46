// The second editor's tool bar and menus over a real engine editor: what each
// command does to the document, the clipboard the letter shares, the fields in
// seconds and the transport, and what it refuses while the letter records.

#include <functional>

#include "second_editor/effect_menus.h"
#include "second_editor_fixture.h"

namespace ovd::second_editor::testing {
namespace {

constexpr engine::SampleCount kHalfSecond = kRate / 2;
constexpr engine::SampleCount kTwoSeconds = 2 * kRate;

struct KeyCase {
    const char* key;
    // What the document's length and the clipboard's hold after the key, with
    // 0.5 s to 1.0 s selected and a quarter second already on the clipboard.
    engine::SampleCount length;
    engine::SampleCount clipboard;
    int state;
};

class ToolbarKeyTest : public SecondEditorTest, public ::testing::WithParamInterface<KeyCase> {};

engine::SampleCount clipboardFrames(const engine::Clipboard& c) {
    engine::SampleCount total = 0;
    for (const engine::Piece& p : c.pieces) total += p.length;
    return total;
}

TEST_P(ToolbarKeyTest, ActsOnTheSelectionThroughTheSharedClipboard) {
    const KeyCase& c = GetParam();
    // A quarter second the letter copied before.
    select(0.0, 0.25);
    second.copy();
    select(0.5, 1.0);
    const auto key = SecondEditor::keyNamed(c.key);
    ASSERT_TRUE(key.has_value()) << c.key;
    second.toolbarButton(*key);
    EXPECT_EQ(editor.Length(), c.length) << c.key;
    EXPECT_EQ(clipboardFrames(*clipboard), c.clipboard) << c.key;
    EXPECT_EQ(editor.State(), c.state) << c.key;
    EXPECT_EQ(second.view().totalSeconds, static_cast<double>(c.length) / kRate);
}

INSTANTIATE_TEST_SUITE_P(
    Keys, ToolbarKeyTest,
    ::testing::Values(KeyCase{"Cut", kTwoSeconds - kHalfSecond, kHalfSecond, 0},
                      KeyCase{"Copy", kTwoSeconds, kHalfSecond, 0},
                      // A delete leaves the clipboard to the letter's passage.
                      KeyCase{"Delete", kTwoSeconds - kHalfSecond, kRate / 4, 0},
                      KeyCase{"Paste", kTwoSeconds - kHalfSecond + kRate / 4, kRate / 4, 0},
                      KeyCase{"Forward", kTwoSeconds, kRate / 4, 1},
                      KeyCase{"PlayToEnd", kTwoSeconds, kRate / 4, 1},
                      KeyCase{"PlayLooped", kTwoSeconds, kRate / 4, 1},
                      KeyCase{"Stop", kTwoSeconds, kRate / 4, 0},
                      KeyCase{"Zoomin", kTwoSeconds, kRate / 4, 0}),
    [](const auto& param) { return std::string(param.param.key); });

TEST_F(SecondEditorTest, UndoRedoPauseAndTheKeysThatOpenSomethingElse) {
    select(0.5, 1.0);
    second.toolbarButton(SecondEditor::Key::Cut);
    second.toolbarButton(SecondEditor::Key::Undo);
    EXPECT_EQ(editor.Length(), kTwoSeconds);
    second.toolbarButton(SecondEditor::Key::Redo);
    EXPECT_EQ(editor.Length(), kTwoSeconds - kHalfSecond);

    second.toolbarButton(SecondEditor::Key::Forward);
    second.toolbarButton(SecondEditor::Key::Pause);
    EXPECT_EQ(editor.State(), 5);
    second.toolbarButton(SecondEditor::Key::Pause);
    EXPECT_EQ(editor.State(), 1);
    second.toolbarButton(SecondEditor::Key::Stop);

    int propertiesShown = 0;
    second.onProperties = [&] { ++propertiesShown; };
    second.toolbarButton(SecondEditor::Key::Properties);
    EXPECT_EQ(propertiesShown, 1);

    // Open asks first about the cut, and starts in the recordings folder.
    prompts.answerNext(platform::Answer::No);
    prompts.answerNextText(tone);
    second.toolbarButton(SecondEditor::Key::Open);
    EXPECT_EQ(prompts.lastFileRequest.title, "Open ...");
    EXPECT_EQ(prompts.lastFileRequest.initialFolder, folder.path());
    EXPECT_EQ(editor.Length(), kTwoSeconds);
    EXPECT_FALSE(second.view().changed);

    second.toolbarButton(SecondEditor::Key::New);
    EXPECT_TRUE(editor.hasDocument());
    EXPECT_EQ(editor.Length(), 0);
    EXPECT_TRUE(second.view().fileName.empty());
    EXPECT_FALSE(SecondEditor::keyNamed("Record").has_value());
}

TEST_F(SecondEditorTest, SelectionAndZoomFieldsFollowTheEngineInSeconds) {
    select(0.5, 1.25);
    EXPECT_EQ(editor.SelectionStart(), kHalfSecond);
    EXPECT_EQ(editor.SelectionEnd(), kRate + kRate / 4);
    EXPECT_DOUBLE_EQ(second.view().selectionStart, 0.5);
    EXPECT_DOUBLE_EQ(second.view().selectionEnd, 1.25);
    // Past the end is the end.
    second.setSelectionEnd(99.0);
    EXPECT_EQ(editor.SelectionEnd(), kTwoSeconds);

    EXPECT_DOUBLE_EQ(second.view().zoomEnd, 2.0);
    second.zoomIn();
    EXPECT_NEAR(second.view().zoomEnd - second.view().zoomStart, 1.0, 1e-3);
    second.zoomOut();
    second.zoomOut();
    EXPECT_DOUBLE_EQ(second.view().zoomStart, 0.0);
    EXPECT_DOUBLE_EQ(second.view().zoomEnd, 2.0);

    second.setCursorSeconds(1.5);
    EXPECT_EQ(editor.CursorPosition(), kRate + kHalfSecond);
    EXPECT_DOUBLE_EQ(second.view().currentSeconds, 1.5);
}

TEST_F(SecondEditorTest, NeitherPlaysNorRecordsNorChangesDevicesWhileTheLetterRecords) {
    letterRecording = true;
    const int device = editor.RecordingDevices().Current();
    for (const auto& command : std::vector<std::function<void()>>{
             [&] { second.record(); }, [&] { second.play(0); },
             [&] { second.toolbarButton(SecondEditor::Key::PlayLooped); },
             [&] { second.chooseDevice(SecondEditor::Direction::Input, device + 1); }}) {
        command();
        EXPECT_EQ(editor.State(), 0);
        EXPECT_EQ(second.view().status, kLetterRecordingText);
    }
    EXPECT_EQ(editor.RecordingDevices().Current(), device);
    EXPECT_EQ(editor.Length(), kTwoSeconds);

    letterRecording = false;
    second.setCursorSeconds(2.0);
    second.record();
    loop.advance(platform::Milliseconds(500));
    second.stop();
    EXPECT_NEAR(static_cast<double>(editor.Length()), kTwoSeconds + kHalfSecond, kRate / 20.0);
    EXPECT_TRUE(second.view().changed);
}

TEST_F(SecondEditorTest, ClosingAsksAboutChangesAndLeavesAFileOpenedToListenAsItWas) {
    const std::string before = platform::readWholeFile(tone).value();
    second.play(0);
    loop.advance(platform::Milliseconds(300));
    EXPECT_TRUE(second.close());
    EXPECT_TRUE(prompts.transcript().empty());
    EXPECT_EQ(platform::readWholeFile(tone).value(), before);

    ASSERT_TRUE(second.openFile(tone));
    select(0.0, 0.5);
    second.cut();
    prompts.answerNext(platform::Answer::Cancel);
    EXPECT_FALSE(second.close());
    EXPECT_EQ(editor.Length(), kTwoSeconds - kHalfSecond);
    EXPECT_EQ(prompts.transcript().back().text, "Save the changes to tone.wav?");

    prompts.answerNext(platform::Answer::Yes);
    EXPECT_TRUE(second.close());
    editor.finishSaving();
    EXPECT_EQ(engine::fileLengthMilliseconds(tone), 1500);
    EXPECT_FALSE(editor.hasDocument());
}

TEST_F(SecondEditorTest, SaveSelectionWritesThePartAndLeavesTheDocumentAsItWas) {
    const std::string before = platform::readWholeFile(tone).value();
    select(0.5, 1.0);
    const std::string part = folder.file("part");  // no extension: saved as WAV
    ASSERT_TRUE(second.saveSelectionTo(part));
    editor.finishSaving();
    loop.advance(platform::Milliseconds(200));
    EXPECT_EQ(engine::fileLengthMilliseconds(part + ".wav"), 500);
    EXPECT_EQ(second.view().status, "Saved the selection in part.wav");
    EXPECT_EQ(second.view().fileName, tone);
    EXPECT_EQ(platform::readWholeFile(tone).value(), before);
}

TEST_F(SecondEditorTest, DesktopClipboardCarriesWavAndRefusesWhatIsNotAudio) {
    FakeDesktopClipboard desktop;
    select(0.5, 1.0);
    second.copyToDesktop(desktop);
    ASSERT_TRUE(desktop.held.has_value());
    EXPECT_EQ(desktop.held->substr(0, 4), "RIFF");
    const std::vector<std::int16_t> clip = frames(kHalfSecond, kHalfSecond);

    ASSERT_TRUE(second.close());
    clipboard->pieces.clear();
    second.pasteFromDesktop(desktop);
    EXPECT_EQ(editor.Length(), kHalfSecond);
    EXPECT_EQ(frames(0, kHalfSecond), clip);

    desktop.held = std::nullopt;
    second.pasteFromDesktop(desktop);
    desktop.held = std::string("plain words, no sound");
    second.pasteFromDesktop(desktop);
    EXPECT_EQ(editor.Length(), kHalfSecond);
    ASSERT_EQ(prompts.texts().size(), 2u);
    for (const std::string& text : prompts.texts())
        EXPECT_EQ(text.rfind(kNoAudioOnClipboardText, 0), 0u) << text;
}

TEST_F(SecondEditorTest, MixFromFileAsksInTheRecordingsFolderForWavOrMp3) {
    const std::string other = writeTone("other.wav", 1.0, 1000.0);
    prompts.answerNextText(other);
    second.mixFile();
    const platform::FileRequest& asked = prompts.lastFileRequest;
    EXPECT_EQ(asked.title, "Open ...");
    EXPECT_EQ(asked.initialFolder, folder.path());
    ASSERT_EQ(asked.filters.size(), 2u);
    EXPECT_EQ(asked.filters[0].description, "Wav Files");
    EXPECT_EQ(asked.filters[0].patterns, std::vector<std::string>{"*.wav"});
    EXPECT_EQ(asked.filters[1].description, "MP3 Files");
    EXPECT_EQ(asked.filters[1].patterns, std::vector<std::string>{"*.mp3"});
    // A mix keeps the length and changes what is heard.
    EXPECT_EQ(editor.Length(), kTwoSeconds);
    EXPECT_TRUE(second.view().changed);
}

// Invert is the one effect whose result a test can state sample by sample.
TEST_F(SecondEditorTest, AnEffectWorksOnTheSelectionOrOnTheWholeFile) {
    const std::vector<std::int16_t> original = frames(0, kTwoSeconds);
    select(0.5, 1.0);
    ASSERT_TRUE(second.applyEffect(engine::Effect::Invert));
    waitForEffect();
    std::vector<std::int16_t> now = frames(0, kTwoSeconds);
    for (engine::SampleCount i = 0; i < kTwoSeconds; i += 97) {
        const bool inside = i >= kHalfSecond && i < kRate;
        const int expected = inside ? -original[i] : original[i];
        ASSERT_NEAR(now[i], expected, 1) << i;
    }

    // chSelect off: the whole file, whatever is selected.
    second.setChSelect(false);
    ASSERT_TRUE(second.applyEffect(engine::Effect::Invert));
    waitForEffect();
    now = frames(0, kTwoSeconds);
    EXPECT_NEAR(now[100], -original[100], 1);
    EXPECT_NEAR(now[kHalfSecond + 100], original[kHalfSecond + 100], 1);

    // Nothing selected: the whole file too, and one undo takes it back.
    second.setChSelect(true);
    second.setCursorSeconds(0.0);
    ASSERT_TRUE(second.applyEffect(engine::Effect::Invert));
    waitForEffect();
    EXPECT_NEAR(frames(100, 1)[0], original[100], 1);
    second.undo();
    EXPECT_NEAR(frames(100, 1)[0], -original[100], 1);
}

TEST_F(SecondEditorTest, AnEffectOnAnEmptyDocumentSaysSoAndChangesNothing) {
    second.newDocument();
    EXPECT_FALSE(second.applyEffect(engine::Effect::Normalize));
    EXPECT_EQ(prompts.texts().back(), kNothingToWorkOnText);
    EXPECT_EQ(editor.Length(), 0);
    EXPECT_FALSE(second.view().changed);
}

TEST(EffectMenus, EveryEffectHasOneEntryWithAMenuText) {
    std::vector<engine::Effect> seen;
    for (const auto& entry : kOperationMenu) seen.push_back(entry.effect);
    for (const auto& entry : kFiltersMenu) seen.push_back(entry.effect);
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(engine::Effect::LowShelf) + 1);
    for (int e = 0; e <= static_cast<int>(engine::Effect::LowShelf); ++e) {
        const auto effect = static_cast<engine::Effect>(e);
        EXPECT_EQ(std::count(seen.begin(), seen.end(), effect), 1) << e;
        EXPECT_FALSE(engine::effectMenuText(effect).empty()) << e;
    }
}

}  // namespace
// An ".ogg" name is written as the Ogg Vorbis options stand, their rate included;
// a conversion changes the whole document and can be undone no further.
TEST_F(SecondEditorTest, OggIsSavedAsItsOptionsSayAndAConversionTakesTheWholeDocument) {
    oggChoice.word = engine::FormatWord::OGG;
    oggChoice.sampleRate = 22050;
    oggChoice.ogg.byQuality = true;
    oggChoice.ogg.quality = 3;
    const std::string ogg = folder.file("passage.ogg");
    ASSERT_TRUE(second.saveTo(ogg));
    editor.finishSaving();
    loop.advance(platform::Milliseconds(200));
    EXPECT_EQ(platform::readWholeFile(ogg).valueOr("").substr(0, 4), "OggS");
    auto read = engine::AudioFileReader::open(ogg);
    ASSERT_TRUE(read) << read.error();
    EXPECT_EQ((*read)->format().sampleRate, 22050);

    second.convertSampleType(8000, 2);
    EXPECT_EQ(editor.SamplesPerSecond(), 8000);
    EXPECT_EQ(editor.Channels(), 2);
    EXPECT_EQ(editor.Length(), 2 * 8000);
    EXPECT_TRUE(second.view().changed);
}

}  // namespace ovd::second_editor::testing
