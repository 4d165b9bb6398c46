// Naming a new dictation: the four schemes, the number used up at once, the
// refused width, the collision question, the priority marker, the speaker box.

#include "dictation/file_naming.h"

#include <gtest/gtest.h>
#include <sys/mount.h>

#include <cerrno>
#include <cstring>

#include "platform/files.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::dictation {
namespace {

using platform::Answer;
using Calls = std::vector<std::string>;

struct RecordingHooks : NamingHooks {
    Calls calls;
    std::optional<std::string> chosenFile;
    std::string linkError;
    void CaseClose() override { calls.push_back("CaseClose"); }
    void ResetRecorderState() override { calls.push_back("Reset"); }
    void prepareFormat(const engine::FormatGroup& g) override { calls.push_back(g.FormatType); }
    void startSaveTimer() override { calls.push_back("timSave"); }
    std::optional<std::string> ChooseFileName(int mode) override {
        calls.push_back("Choose " + std::to_string(mode));
        return chosenFile;
    }
    std::string sendLoaded(const std::string& baseName) override {
        calls.push_back("LOADED_" + baseName);
        return linkError;
    }
    void tellPeerNewFileRefused() override { calls.push_back("peer: refused"); }
};

class FileNamingTest : public ::testing::Test {
  protected:
    FileNamingTest() {
        auto& r = config.record;
        r.CaptureFilePath = rec;
        r.FileLabelActive = true;
        r.FileLabelText = "AB";
        r.SequentialNumbering = true;
        r.FileNameIncrement = 7;
        r.Places = 4;
        r.RecordingFormats = "OPT2";
        r.FormatType = "MP3";
        r.FormatType2 = "wma";
        EXPECT_TRUE(platform::createFolder(rec));
    }
    std::string name() const { return state.Filename.substr(rec.size() + 1); }
    int logCount(const std::string& text) const {
        int n = 0;
        for (auto at = log.text().find(text); at != std::string::npos;
             at = log.text().find(text, at + 1)) {
            ++n;
        }
        return n;
    }
    settings::SettingsRecord stored() const {
        settings::ConfigFile file(folder.path());
        file.ReadConfig();
        return file.record;
    }

    testing::TempFolder folder;
    std::string rec = folder.file("Rec");
    testing::VirtualEventLoop loop{testing::localTime(2006, 11, 2, 14, 3, 9)};
    settings::ConfigFile config{folder.path()};
    settings::EventLog log{loop, folder.path(), config.record};
    testing::ScriptedPrompts prompts;
    settings::SpeakersTable speakers{folder.path()};
    DictationState state;
    AnnouncedView screen{loop};
    const MainView& view = screen.read();
    RecordingHooks hooks;
    FileNaming naming{state, screen, config, log, prompts, loop, speakers, hooks};
};

TEST_F(FileNamingTest, EachSchemePutsItsPiecesInItsOwnOrder) {
    // Flags: N numbered, S per speaker, D date, B bar code "4711".
    struct Case {
        std::string flags, label, speaker, increment, format;
        int places, seqNo;
        std::string expected;
    };
    const std::vector<Case> cases = {
        {"N", "AB", "", "7", "MP3", 4, 0, "AB0007.MP3"},
        {"NSD", "AB", "Jones", "10", "WAV", 3, 12, "AB_Jones_20061102_012.WAV"},
        {"NS", "", "Jones", "7", "MP3", 3, 123, "Jones_00123.MP3"},  // padded by the counter
        {"ND", "AB", "", "12", "mp3", 5, 0, "AB00012.MP3"},          // the date needs a speaker
        {"NB", "AB", "", "7", "MP3", 4, 0, "AB0007_4711.MP3"},
        {"N", "AB", "", "7", "DSP", 4, 0, "AB0007.WAV"},
        {"D", "", "", "7", "MP3", 4, 0, "20061102_14.03.09_.MP3"},
        {"", "AB", "", "7", "MP3", 4, 0, "AB20061102_14.03.09_.MP3"},
        {"SD", "AB", "Jones", "7", "MP3", 4, 0, "AB_Jones_20061102_14.03.09_.MP3"},
        {"B", "", "", "7", "MP3", 4, 0, "20061102_14.03.09__4711.MP3"},
    };
    for (const Case& c : cases) {
        auto& r = config.record;
        const auto has = [&](char flag) { return c.flags.find(flag) != std::string::npos; };
        r.SequentialNumbering = has('N');
        r.AddNameToFile = has('S');
        r.AddDateToName = has('D');
        r.PromptBarCode = has('B');
        r.FileLabelText = c.label;
        r.CurrentSpeaker = c.speaker;
        r.FileNameIncrement = c.increment;
        r.FormatType = c.format;
        r.Places = static_cast<std::int16_t>(c.places);
        state.DictatorSeqNo = c.seqNo;
        state.TrueSpeech = false;
        if (has('B')) prompts.answerNextText("4711");
        naming.CreateFileName();
        EXPECT_EQ(name(), c.expected) << c.flags;
        EXPECT_EQ(view.lblReady, c.expected);
        EXPECT_EQ(state.TrueSpeech, c.format == "DSP") << c.expected;
    }
    EXPECT_EQ(prompts.transcript().at(0).text, "Enter bar code.");
    EXPECT_EQ(prompts.transcript().at(0).title, "End Of File Name");
}

TEST_F(FileNamingTest, TheNumberIsUsedUpAtOnceFromABlankLastNumber) {
    config.record.CaptureFilePath = rec + "/";
    config.record.PromptBarCode = true;  // cancelled: the "_" stays
    naming.Newfile();
    EXPECT_EQ(state.Filename, rec + "/AB0007_.MP3");
    EXPECT_EQ(view.statusPanel1, state.Filename);
    EXPECT_EQ(hooks.calls, (Calls{"MP3", "timSave"}));
    EXPECT_TRUE(state.RecordingstatusPaused && state.flgNewToRecord && state.flgfileOpen1);

    const int writes = config.writeCount();
    config.record.RecordingFormats = "OPT3";
    naming.Newfile();
    EXPECT_EQ(state.Filename, rec + "/AB0008_.WMA");
    EXPECT_EQ(config.writeCount() - writes, 2) << "number and name; the folder was cleaned once";
    const settings::SettingsRecord onDisk = stored();
    EXPECT_EQ(onDisk.CaptureFilePath.toText(), rec);
    EXPECT_EQ(onDisk.FileNameIncrement.toText(), "8");
    EXPECT_EQ(onDisk.FileNameIncrementStartingNum.toText(), "8");
    EXPECT_EQ(onDisk.LastFileOpened, "AB0008_.WMA");
}

TEST_F(FileNamingTest, PlacesBoundTheCounterWithoutWrappingAround) {
    config.record.Places = 5;
    config.record.FileNameIncrementStartingNum = 99998;
    naming.Newfile();
    EXPECT_EQ(name(), "AB99999.MP3");
    hooks.calls.clear();
    naming.Newfile();
    EXPECT_EQ(state.Filename, "");
    EXPECT_TRUE(state.UserSelectedNo);
    EXPECT_EQ(prompts.texts(), Calls{"You have exceded the maximum Sequential Number.\r\n"
                                     "Please goto the Configuration Drop Down menu and change "
                                     "your options\r\nFile Can Not be saved at this time!"});
    EXPECT_EQ(hooks.calls, (Calls{"CaseClose", "Reset"}));
    EXPECT_EQ(stored().FileNameIncrement.toText(), "100000") << "the number stays used";
}

TEST_F(FileNamingTest, SpeakersAreFoundInAnySpellingAndTheirNumberIsStoredAtOnce) {
    ASSERT_TRUE(speakers.addSpeaker("Jones", true));
    ASSERT_TRUE(speakers.addSpeaker("anne", true));
    ASSERT_TRUE(speakers.addSpeaker("Bob", false));
    ASSERT_TRUE(speakers.saveSpeakerNumber("Jones", 11));
    config.record.CurrentSpeaker = "Bob";
    naming.ComboFill();
    EXPECT_EQ(naming.dictatorNames(), (Calls{"anne", "Jones"}));
    EXPECT_EQ(config.record.CurrentSpeaker, "") << "an inactive speaker names no files";
    EXPECT_FALSE(naming.pickDictator("bob"));

    ASSERT_TRUE(naming.pickDictator("JONES"));
    EXPECT_EQ(state.DictatorSeqNo, 11);
    config.record.AddNameToFile = true;
    config.record.FileNameIncrement = 10;
    config.record.Places = 3;
    naming.Newfile();
    EXPECT_EQ(name(), "AB_JONES_012.MP3");
    EXPECT_EQ(speakers.loadSpeakers("jones").DictatorSeqNo, 12);
    EXPECT_EQ(config.record.FileNameIncrement.toText(), "10") << "the plain counter rests";
    naming.pickDictator("Jones");
    EXPECT_EQ(state.DictatorSeqNo, 12) << "the box keeps the number just used";
}

TEST_F(FileNamingTest, AnExistingFileIsOverwrittenOnlyOnYesOrWithoutWarnings) {
    const std::string stamp = "AB20061102_14.03.09_";
    struct Case {
        bool suppress;
        std::optional<Answer> answer;  // nothing: the box's default
        bool kept;
    };
    for (const Case& c : {Case{false, Answer::Yes, true}, Case{false, Answer::No, false},
                          Case{false, std::nullopt, false}, Case{true, std::nullopt, true}}) {
        config.record.SequentialNumbering = false;
        config.record.SuppressWarnings = c.suppress;
        config.record.TCP = true;
        ASSERT_TRUE(platform::writeWholeFile(rec + "/" + stamp + ".MP3", "x"));
        prompts.clear();
        hooks.calls.clear();
        state = {};
        if (c.answer) prompts.answerNext(*c.answer);
        const int refusals = logCount("User Selected NO to overwrite file");
        naming.Newfile();
        ASSERT_EQ(prompts.transcript().size(), c.suppress ? 0u : 1u);
        if (!c.suppress) {
            EXPECT_EQ(prompts.transcript()[0].text, "Overwrite existing file?");
            EXPECT_EQ(prompts.transcript()[0].defaultAnswer, Answer::No);
        }
        EXPECT_EQ(state.Filename.empty(), !c.kept);
        EXPECT_EQ(state.UserSelectedNo, !c.kept);
        const Calls expected =
            c.kept ? Calls{"LOADED_" + stamp + ".MP3", "MP3", "timSave"}
                   : Calls{"LOADED_" + stamp + ".MP3", "peer: refused", "CaseClose", "Reset"};
        EXPECT_EQ(hooks.calls, expected);
        EXPECT_EQ(logCount("User Selected NO to overwrite file") - refusals, c.kept ? 0 : 1);
        EXPECT_EQ(state.WhichBut, c.answer == Answer::Yes ? "New" : "");
    }
}

TEST_F(FileNamingTest, TheNameIsAnnouncedUnlessTakenUpAndAHandedOverNameReplacesIt) {
    config.record.TCP = true;
    config.record.PromptBarCode = true;
    config.record.FileNameIncrement = 123456;  // too wide, but not looked at
    hooks.linkError = "Connection refused";
    state.CommandFileName = rec + "/Handed";
    naming.CreateFileName();
    EXPECT_EQ(state.Filename, rec + "/Handed.MP3");
    EXPECT_TRUE(prompts.transcript().empty());
    // The peer is told the file's name with its extension.
    EXPECT_EQ(hooks.calls, Calls{"LOADED_Handed.MP3"});
    EXPECT_EQ(view.statusLine, "Connection refused");
    for (const char* line :
         {" Procedure - CREATEFILENAME", " -58 Sending Message in CreateFileName",
          "CaseNew-FileSaveError =: False", " Procedure - CreateFileName"}) {
        EXPECT_EQ(logCount(line), 1) << line;
    }
    hooks.calls.clear();
    state.PRERECORDED = true;
    state.Filename = rec + "/Taken.MP3";
    naming.CreateFileName();
    EXPECT_EQ(state.Filename, rec + "/Taken.MP3");
    EXPECT_TRUE(hooks.calls.empty());
}

TEST_F(FileNamingTest, WithoutRulesTheUserPicksTheNameOrTheFileIsAbandoned) {
    config.record.FileLabelActive = false;
    naming.Newfile();
    EXPECT_TRUE(state.UserSelectedNo);
    EXPECT_EQ(hooks.calls, (Calls{"Choose 3", "CaseClose", "Reset"}));
    hooks.chosenFile = rec + "/Mine.MP3";
    state.UserSelectedNo = false;
    naming.Newfile();
    EXPECT_EQ(state.Filename, rec + "/Mine.MP3");
}

TEST(PriorityMarkerTest, EverySaveWithTheFlagOnAddsTheMarkerAgain) {
    DictationState state;
    state.Filename = "/rec/v1.2/AB0007.MP3";
    addPriorityMarker(state);
    EXPECT_EQ(state.Filename, "/rec/v1.2/AB0007.MP3");
    state.PriorityOn = true;
    addPriorityMarker(state);
    addPriorityMarker(state);
    EXPECT_EQ(state.Filename, "/rec/v1.2/AB0007-PRIORITY-PRIORITY.MP3");
    EXPECT_EQ(withPriorityMarker("/rec/v1.2/Take"), "/rec/v1.2/Take-PRIORITY.");
}

TEST(FileNamingOnUnwritableSettingsTest, TheNumberMovesOnInMemorySoNoLetterIsNamedTwice) {
    testing::TempFolder folder;
    const std::string data = folder.file("data");
    const std::string rec = folder.file("Rec");
    EXPECT_TRUE(platform::createFolder(data));
    EXPECT_TRUE(platform::createFolder(rec));
    if (::mount("tmpfs", data.c_str(), "tmpfs", 0, "size=1m") != 0) {
        GTEST_SKIP() << "a small tmpfs can't be mounted here (" << std::strerror(errno) << ")";
    }
    testing::VirtualEventLoop loop{testing::localTime(2006, 11, 2, 14, 3, 9)};
    settings::ConfigFile config{data};
    auto& r = config.record;
    r.CaptureFilePath = rec;
    r.ScreenSize = "Regular";
    r.FileLabelActive = true;
    r.FileLabelText = "AB";
    r.SequentialNumbering = true;
    r.FileNameIncrement = 6;
    r.FileNameIncrementStartingNum = 6;
    r.Places = 4;
    r.FormatType = "MP3";
    ASSERT_TRUE(config.WriteConfig());
    // The data folder turns read-only (or full) under the running station.
    ASSERT_EQ(::mount(nullptr, data.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, "size=1m"), 0)
        << std::strerror(errno);
    settings::EventLog log{loop, folder.path(), config.record};
    testing::ScriptedPrompts prompts;
    settings::SpeakersTable speakers{folder.path()};
    DictationState state;
    AnnouncedView screen{loop};
    RecordingHooks hooks;
    FileNaming naming{state, screen, config, log, prompts, loop, speakers, hooks};

    std::vector<std::string> names;
    for (int letter = 0; letter < 3; ++letter) {
        naming.Newfile();
        names.push_back(platform::withoutFolder(state.Filename));
        // The letter is dictated and saved, then closed: the close reloads the settings.
        EXPECT_TRUE(platform::writeWholeFile(state.Filename, "a letter"));
        config.ResetRecorderState();
    }

    EXPECT_EQ(names, (std::vector<std::string>{"AB0007.MP3", "AB0008.MP3", "AB0009.MP3"}));
    EXPECT_TRUE(prompts.texts().empty()) << "no letter is offered for overwriting";
    EXPECT_TRUE(config.writeFailing());
    ::umount2(data.c_str(), MNT_DETACH);
}

}  // namespace
}  // namespace ovd::dictation
