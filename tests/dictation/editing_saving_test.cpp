// Editing and saving as the author meets them: Cut and Copy act on the selection
// and on nothing else, a file opened to listen is left as it was, and a Save As
// name gets the file's extension.

#include <filesystem>

#include "dictation/save_as_name.h"
#include "dictation_fixture.h"
#include "engine/codecs.h"

namespace ovd::dictation::testing {
namespace {

class EditingSavingTest : public DictationTest {
  protected:
    std::vector<std::int16_t> letter() const { return frames(0, editor1.Length()); }

    void select(engine::SampleCount from, engine::SampleCount to) {
        editor1.setSelectionStart(from);
        editor1.setSelectionEnd(to);
        editor1.setSelectionActive(true);
    }

    // Crash protection on or off: every Stop saves, or only a close does.
    void protect(bool on) {
        config.record.FileSaveAtStop = on;
        config.WriteConfig();
        rebuild();
    }
};

TEST_F(EditingSavingTest, CutOrCopyWithNothingSelectedLeavesTheLetterAsItIs) {
    // An earlier letter copied whole: its audio is on the clipboard.
    dictate(4000);
    select(0, editor1.Length());
    d().CaseCopy();
    d().closeFile();

    dictate(6000);
    const std::vector<std::int16_t> spoken = letter();
    ASSERT_EQ(spoken.size(), static_cast<std::size_t>(6 * kRate));
    d().CaseCut();
    EXPECT_EQ(letter(), spoken) << "Cut with nothing selected";
    d().CaseCopy();
    d().CasePaste();
    EXPECT_EQ(letter(), spoken) << "Copy with nothing selected, then Paste";

    // With the cursor in the middle too.
    editor1.setCursorPosition(2 * kRate);
    d().CaseCut();
    EXPECT_EQ(letter(), spoken) << "Cut at a cursor in the middle";
}

TEST_F(EditingSavingTest, CutTakesTheSelectionAndTheCloseSavesIt) {
    protect(false);
    dictate(6000);
    const std::string name = state().Filename;
    const std::vector<std::int16_t> spoken = letter();
    arrangeState().SaveRequested = true;
    d().SaveFile();

    select(kRate, 3 * kRate);
    d().CaseCut();
    std::vector<std::int16_t> expected(spoken.begin(), spoken.begin() + kRate);
    expected.insert(expected.end(), spoken.begin() + 3 * kRate, spoken.end());
    EXPECT_EQ(letter(), expected);
    EXPECT_TRUE(state().FileChanged) << "the close saves the cut";

    d().closeFile();
    const auto reader = engine::AudioFileReader::open(name);
    ASSERT_TRUE(reader) << reader.error();
    EXPECT_EQ((*reader)->frames(), 4 * kRate);
}

TEST_F(EditingSavingTest, AFileOpenedToListenIsTheSameFileAfterItsClose) {
    for (const bool protectedStops : {true, false}) {
        SCOPED_TRACE(protectedStops ? "every Stop saves" : "only a close saves");
        protect(protectedStops);
        const std::string path = recordings + "/Heard.MP3";
        engine::TargetFormat mp3;
        mp3.word = engine::FormatWord::MP3;
        mp3.bitrateKbps = 16;
        auto spoken = engine::AudioFileReader::open(writeRampWave(folder.file("spoken.wav"), 6));
        ASSERT_TRUE(spoken) << spoken.error();
        ASSERT_TRUE(engine::encodeFile(**spoken, path, mp3, "OVDESK").ok());
        const std::string bytes = platform::readWholeFile(path).valueOr("");

        d().openRecentFile(path);
        ASSERT_TRUE(state().flgfileOpen1);
        d().play();
        run(2000);
        d().stop();
        run(70000);  // the periodic saves come and go
        d().play();
        run(500);
        d().stop();
        d().closeFile();
        EXPECT_EQ(platform::readWholeFile(path).valueOr(""), bytes);
    }
}

TEST_F(EditingSavingTest, SaveAsGivesATypedNameTheFilesExtension) {
    dictate(3000);
    const std::string name = state().Filename;
    const std::string extension = name.substr(name.find_last_of('.'));
    ASSERT_EQ(extension, ".WAV");

    prompts.answerNextText(recordings + "/Copy of Smith");
    d().CaseSaveAs();
    EXPECT_TRUE(platform::fileExists(recordings + "/Copy of Smith.WAV"));
    EXPECT_FALSE(platform::fileExists(recordings + "/Copy of Smith"));
    EXPECT_EQ(state().Filename, recordings + "/Copy of Smith.WAV");
    EXPECT_EQ(platform::readWholeFile(recordings + "/Copy of Smith.WAV").valueOr(""),
              platform::readWholeFile(name).valueOr(""));
    EXPECT_FALSE(platform::fileExists(recordings + "/Copy of Smith.WAV.partial"));

    EXPECT_EQ(withExtensionOf("/r/Smith.wav", name), "/r/Smith.wav") << "any case of the letters";
    EXPECT_EQ(withExtensionOf("/r/Smith.mp3", name), "/r/Smith.mp3.WAV") << "the bytes are WAV";
    EXPECT_EQ(withExtensionOf("/r/Dr. Smith", name), "/r/Dr. Smith.WAV");
    EXPECT_EQ(withExtensionOf("/r.d/Smith", name), "/r.d/Smith.WAV") << "a dot in the folder";
    EXPECT_EQ(withExtensionOf("/r/Smith", "/r/NoExtension"), "/r/Smith");
}

}  // namespace
}  // namespace ovd::dictation::testing
