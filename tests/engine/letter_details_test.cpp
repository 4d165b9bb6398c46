// A letter's details travel inside the saved file where its container has tags
// (read back here by the codec library's own command line tool, not only by our
// reader) and in the text file beside it where it has none; an opened letter brings
// them back, a change during a take reaches the file at the next save, and a file
// opened only to listen is left as it is.

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "engine/file_tags.h"
#include "engine/virtual_backend.h"
#include "engine/wave_editor.h"
#include "platform/files.h"
#include "platform/system_queries.h"
#include "save_and_wait.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"
#include "test_signal.h"

namespace ovd::engine {
namespace {

using ovd::testing::TempFolder;
using ovd::testing::VirtualEventLoop;
using platform::Milliseconds;
using testing::commandOutput;

constexpr int kRate = 16000;

const LetterDetails kDetails = {
    {"Y-Author", "Dr Brown"},
    {"Y-Priority", "High"},
    {"SF-Speaker Name(s)", "Brown, Ames"},
    {"SF-Notes", "first line\nsecond = line"},
};

struct Container {
    const char* name;
    FormatWord word;
    int bits;
    // How ffprobe names the author and the speakers in the file's tags; null when
    // the details go into the text file beside it.
    const char* authorTag;
    const char* speakersTag;
};

void PrintTo(const Container& c, std::ostream* out) { *out << c.name; }

TargetFormat format(const Container& c) {
    TargetFormat target;
    target.word = c.word;
    target.sampleRate = kRate;
    target.bitsPerSample = c.bits;
    target.bitrateKbps = c.word == FormatWord::WMA ? 32 : 0;
    return target;
}

class LetterDetailsTest : public ::testing::TestWithParam<Container> {
  protected:
    LetterDetailsTest() { editor.setTempFileName(folder.path() + "/Temp"); }

    void save(WaveEditor& e, const std::string& path) {
        const auto saved = testing::saveAndWait(e, loop, path);
        EXPECT_TRUE(saved) << saved.error();
    }

    std::string probed(const std::string& path) {
        return commandOutput("ffprobe -v error -show_format -of default=noprint_wrappers=1 '" +
                             path + "' 2>/dev/null");
    }

    void recordSeconds(int ms) {
        ASSERT_TRUE(editor.Record().ok());
        loop.advance(Milliseconds(ms));
    }

    TempFolder folder;
    VirtualEventLoop loop;
    VirtualBackend backend{loop, {}};
    WaveEditor editor{loop, backend, std::make_shared<Clipboard>(), "AudioEditor1"};
};

TEST_P(LetterDetailsTest, DetailsAreSavedWhereTheFormatKeepsThemAndComeBackWhenOpened) {
    const Container& c = GetParam();
    const std::string path = folder.file(std::string("AB0007.") + c.name);
    ASSERT_TRUE(editor.New(kRate, 1).ok());
    editor.setComment("OVDESK");
    editor.chooseFormat(format(c));
    editor.setDetails(kDetails);
    recordSeconds(2000);
    editor.Stop();
    save(editor, path);

    const std::string beside = folder.file("AB0007.txt");
    if (c.authorTag != nullptr) {
        const std::string tags = probed(path);
        EXPECT_NE(tags.find(std::string("TAG:") + c.authorTag + "=Dr Brown"), std::string::npos)
            << tags;
        EXPECT_NE(tags.find(std::string("TAG:") + c.speakersTag + "=Brown, Ames"),
                  std::string::npos)
            << tags;
        EXPECT_FALSE(platform::fileExists(beside));
    } else {
        const auto text = platform::readWholeFile(beside);
        ASSERT_TRUE(text) << "no details beside " << path;
        EXPECT_NE(text->find("Y-Author=Dr Brown\r\n"), std::string::npos) << *text;
    }

    WaveEditor reader{loop, backend, std::make_shared<Clipboard>(), "reader"};
    reader.setTempFileName(folder.path() + "/Temp");
    TargetFormat hint = format(c);
    reader.chooseFormat(hint);
    ASSERT_TRUE(reader.Open(path).ok());
    EXPECT_EQ(reader.details(), tidyDetails(kDetails));
}

TEST_P(LetterDetailsTest, ADetailChangedDuringATakeReachesTheFileAtTheNextSave) {
    const Container& c = GetParam();
    const std::string path = folder.file(std::string("AB0008.") + c.name);
    ASSERT_TRUE(editor.New(kRate, 1).ok());
    editor.chooseFormat(format(c));
    recordSeconds(1500);
    save(editor, path);
    EXPECT_TRUE(readLetterDetails(path).empty());

    editor.setDetails({{"Y-Reference", "Case 12/B"}});
    loop.advance(Milliseconds(1500));
    save(editor, path);
    EXPECT_EQ(readLetterDetails(path), (LetterDetails{{"Y-Reference", "Case 12/B"}}));

    // Details cleared by the author do not come back from an old text file.
    editor.setDetails({});
    editor.Stop();
    save(editor, path);
    EXPECT_TRUE(readLetterDetails(path).empty());
}

INSTANTIATE_TEST_SUITE_P(
    Formats, LetterDetailsTest,
    ::testing::Values(Container{"WAV", FormatWord::WAV, 16, "artist", "ISSP"},
                      Container{"MP3", FormatWord::MP3, 16, "Y-Author", "SF-Speaker Name(s)"},
                      Container{"MP2", FormatWord::MP2, 16, "Y-Author", "SF-Speaker Name(s)"},
                      Container{"WMA", FormatWord::WMA, 16, "Y-Author", "SF-Speaker Name(s)"},
                      Container{"RAW", FormatWord::RAW, 16, nullptr, nullptr},
                      Container{"WAV24", FormatWord::WAV, 24, nullptr, nullptr}),
    [](const ::testing::TestParamInfo<Container>& param) { return std::string(param.param.name); });

TEST(LetterDetailsFile, KeepsOnlyKnownKeysAndSurvivesLineBreaksAndEqualsSigns) {
    const LetterDetails read = detailsFromText(
        detailsFileText({{"SF-Notes", "a\\b\nc=d"}, {"Unknown", "x"}, {"Y-TaskId", "  "}}));
    EXPECT_EQ(read, (LetterDetails{{"SF-Notes", "a\\b\nc=d"}}));
    // A text of the author's own under the letter's name is not taken for details.
    EXPECT_TRUE(detailsFromText("Y-Author=Someone\r\n").empty());
}

TEST(LetterDetailsFile, AnOpenedLetterIsLeftAsItIsUntilItsDetailsChange) {
    TempFolder folder;
    VirtualEventLoop loop;
    VirtualBackend backend{loop, {}};
    WaveEditor editor{loop, backend, std::make_shared<Clipboard>(), "AudioEditor1"};
    editor.setTempFileName(folder.path() + "/Temp");
    const std::string path = folder.file("Letter.WAV");
    const auto saveTo = [&] {
        const auto saved = editor.SaveAs(path);
        ASSERT_TRUE(saved.ok());
        while (editor.saving()) {
            loop.runPending();
            ::usleep(1000);
        }
        loop.runPending();
        EXPECT_TRUE(saved->get());
    };
    ASSERT_TRUE(editor.New(kRate, 1).ok());
    editor.setDetails({{"Y-Author", "Ames"}});
    ASSERT_TRUE(editor.Record().ok());
    loop.advance(Milliseconds(1000));
    editor.Stop();
    saveTo();
    const auto written = platform::readWholeFile(path);

    ASSERT_TRUE(editor.Open(path).ok());
    saveTo();
    EXPECT_EQ(platform::readWholeFile(path).valueOr(""), written.valueOr("-"));

    editor.setDetails({{"Y-Author", "Ames"}, {"Y-Priority", "Low"}});
    saveTo();
    EXPECT_EQ(readLetterDetails(path),
              (LetterDetails{{"Y-Author", "Ames"}, {"Y-Priority", "Low"}}));
}

}  // namespace
}  // namespace ovd::engine
