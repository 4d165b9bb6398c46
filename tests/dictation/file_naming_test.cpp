// Naming a new dictation: the four schemes, the number used up at once, the
// refused width, the collision question, the priority marker, the speaker box.

#include <gtest/gtest.h>

#include "dictation/file_naming.h"
#include "platform/files.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::dictation {
namespace {

using platform::Answer;

struct RecordingHooks : NamingHooks {
    std::vector<std::string> calls;
    std::optional<std::string> chosenFile;
    std::string linkError;
    void CaseClose() override { calls.push_back("CaseClose"); }
    void ResetRecorderState() override { calls.push_back("ResetRecorderState"); }
    void prepareFormat(const engine::FormatGroup& g) override { calls.push_back("format " + g.FormatType); }
    void startSaveTimer() override { calls.push_back("timSave on"); }
    std::optional<std::string> ChooseFileName(int mode) override {
        calls.push_back("ChooseFileName " + std::to_string(mode));
        return chosenFile;
    }
    std::string sendLoaded(const std::string& baseName) override {
        calls.push_back("LOADED_" + baseName);
        return linkError;
    }
    void tellPeerNewFileRefused() override { calls.push_back("peer told: refused"); }
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
        platform::createFolder(rec);
    }
    std::string name() const { return state.Filename.substr(rec.size() + 1); }
    bool logHas(const std::string& text) const { return logCount(text) > 0; }
    int logCount(const std::string& text) const {
        int count = 0;
        for (auto at = log.text().find(text); at != std::string::npos; at = log.text().find(text, at + 1)) ++count;
        return count;
    }

    testing::TempFolder folder;
    std::string rec = folder.file("Rec");
    testing::VirtualEventLoop loop{testing::localTime(2006, 11, 2, 14, 3, 9)};
    settings::ConfigFile config{folder.path()};
    settings::EventLog log{loop, folder.path(), config.record};
    testing::ScriptedPrompts prompts;
    settings::SpeakersTable speakers{folder.path()};
    DictationState state;
    MainView view;
    RecordingHooks hooks;
    FileNaming naming{state, view, config, log, prompts, loop, speakers, hooks};
};

TEST_F(FileNamingTest, EachSchemePutsItsPiecesInItsOwnOrder) {
    struct Case {
        const char* what;
        bool numbered, perSpeaker, date, barCode;
        std::string label, speaker, increment, format;
        int places, seqNo;
        std::string expected;
    };
    const std::vector<Case> cases = {
        {"plain", true, false, false, false, "AB", "", "7", "MP3", 4, 0, "AB0007.MP3"},
        {"speaker", true, true, true, false, "AB", "Jones", "10", "WAV", 3, 12, "AB_Jones_20061102_012.WAV"},
        {"speaker, padded by the counter", true, true, false, false, "", "Jones", "7", "MP3", 3, 123, "Jones_00123.MP3"},
        {"date only with a speaker", true, false, true, false, "AB", "", "12", "MP3", 5, 0, "AB00012.MP3"},
        {"stamp", false, false, true, false, "", "", "7", "mp3", 4, 0, "20061102_14.03.09_.MP3"},
        {"stamp, label", false, false, false, false, "AB", "", "7", "MP3", 4, 0, "AB20061102_14.03.09_.MP3"},
        {"stamp, speaker", false, true, true, false, "AB", "Jones", "7", "MP3", 4, 0, "AB_Jones_20061102_14.03.09_.MP3"},
        {"stamp, bar code", false, false, false, true, "", "", "7", "MP3", 4, 0, "20061102_14.03.09__4711.MP3"},
        {"plain, bar code", true, false, false, true, "AB", "", "7", "MP3", 4, 0, "AB0007_4711.MP3"},
        {"speech codec", true, false, false, false, "AB", "", "7", "DSP", 4, 0, "AB0007.WAV"},
    };
    for (const Case& c : cases) {
        auto& r = config.record;
        r.SequentialNumbering = c.numbered;
        r.AddNameToFile = c.perSpeaker;
        r.AddDateToName = c.date;
        r.PromptBarCode = c.barCode;
        r.FileLabelText = c.label;
        r.CurrentSpeaker = c.speaker;
        r.FileNameIncrement = c.increment;
        r.FormatType = c.format;
        r.Places = static_cast<std::int16_t>(c.places);
        state.DictatorSeqNo = c.seqNo;
        state.TrueSpeech = false;
        if (c.barCode) prompts.answerNextText("4711");
        naming.CreateFileName();
        EXPECT_EQ(name(), c.expected) << c.what;
        EXPECT_EQ(view.lblReady, c.expected) << c.what;
        EXPECT_EQ(state.TrueSpeech, c.format == "DSP") << c.what;
    }
    EXPECT_EQ(view.statusPanel1, rec + "/AB0007.WAV");
    EXPECT_EQ(prompts.transcript().at(0).text, kBarCodePrompt);
    EXPECT_EQ(prompts.transcript().at(0).title, kBarCodeTitle);
}

TEST_F(FileNamingTest, ACancelledBarCodeKeepsItsUnderscoreAndOtherConditionsGiveTheExtension) {
    config.record.PromptBarCode = true;
    config.record.RecordingFormats = "OPT3";
    naming.Newfile();
    EXPECT_EQ(name(), "AB0007_.WMA");
    EXPECT_EQ(hooks.calls, (std::vector<std::string>{"format wma", "timSave on"}));
    EXPECT_TRUE(state.RecordingstatusPaused && state.flgNewToRecord && state.flgfileOpen1);
}

TEST_F(FileNamingTest, TheNumberIsUsedUpAtOnceAndABlankLastNumberStartsAtTheCounter) {
    naming.Newfile();
    EXPECT_EQ(name(), "AB0007.MP3");
    naming.Newfile();
    EXPECT_EQ(name(), "AB0008.MP3");
    settings::ConfigFile stored(folder.path());
    stored.ReadConfig();
    EXPECT_EQ(stored.record.FileNameIncrement.toText(), "8");
    EXPECT_EQ(stored.record.FileNameIncrementStartingNum.toText(), "8");
    EXPECT_EQ(stored.record.LastFileOpened, "AB0008.MP3");
}

TEST_F(FileNamingTest, PlacesBoundTheCounterWithoutWrappingAround) {
    config.record.Places = 5;
    config.record.FileNameIncrementStartingNum = 99998;
    naming.Newfile();
    EXPECT_EQ(name(), "AB99999.MP3");
    EXPECT_TRUE(prompts.transcript().empty());

    hooks.calls.clear();
    naming.Newfile();
    EXPECT_EQ(state.Filename, "");
    EXPECT_TRUE(state.UserSelectedNo);
    EXPECT_EQ(prompts.texts(),
              std::vector<std::string>{"You have exceded the maximum Sequential Number.\r\n"
                                       "Please goto the Configuration Drop Down menu and change your options\r\n"
                                       "File Can Not be saved at this time!"});
    EXPECT_EQ(hooks.calls, (std::vector<std::string>{"CaseClose", "ResetRecorderState"}));
    EXPECT_EQ(config.record.FileNameIncrement.toText(), "100000") << "the number stays used";
}

TEST_F(FileNamingTest, ASpeakersNumberIsWrittenToTheirRowAtOnce) {
    ASSERT_TRUE(speakers.addSpeaker("Jones", true));
    ASSERT_TRUE(speakers.saveSpeakerNumber("Jones", 11));
    config.record.AddNameToFile = true;
    config.record.CurrentSpeaker = "Jones";
    config.record.FileNameIncrement = 10;
    config.record.Places = 3;
    naming.ComnboFill();
    naming.Newfile();
    EXPECT_EQ(name(), "AB_Jones_012.MP3");
    EXPECT_EQ(speakers.loadSpeakers("Jones").DictatorSeqNo, 12);
    EXPECT_EQ(config.record.FileNameIncrement.toText(), "10") << "the plain counter is not used";
    naming.pickDictator("Jones");
    EXPECT_EQ(state.DictatorSeqNo, 12) << "the box keeps the number just used";
}

TEST_F(FileNamingTest, ASpeakerIsFoundInAnySpellingAndAnInactiveOneIsNotListed) {
    ASSERT_TRUE(speakers.addSpeaker("Jones", true));
    ASSERT_TRUE(speakers.addSpeaker("anne", true));
    ASSERT_TRUE(speakers.addSpeaker("Bob", false));
    ASSERT_TRUE(speakers.saveSpeakerNumber("Jones", 7));
    config.record.CurrentSpeaker = "Bob";
    naming.ComnboFill();
    EXPECT_EQ(naming.dictatorNames(), (std::vector<std::string>{"anne", "Jones"}));
    EXPECT_EQ(config.record.CurrentSpeaker, "") << "an inactive speaker no longer names files";

    EXPECT_TRUE(naming.pickDictator("JONES"));
    EXPECT_EQ(state.DictatorSeqNo, 7);
    EXPECT_EQ(view.cboName, "JONES");
    EXPECT_FALSE(naming.pickDictator("bob"));
    EXPECT_EQ(config.record.CurrentSpeaker, "JONES");
}

TEST_F(FileNamingTest, ATrailingSeparatorIsCleanedOnceAndStored) {
    config.record.CaptureFilePath = rec + "/";
    const int before = config.writeCount();
    naming.CreateFileName();
    EXPECT_EQ(state.Filename, rec + "/AB0007.MP3");
    const int firstWrites = config.writeCount() - before;
    naming.CreateFileName();
    EXPECT_EQ(config.writeCount() - before - firstWrites, firstWrites - 1);
    settings::ConfigFile stored(folder.path());
    stored.ReadConfig();
    EXPECT_EQ(stored.record.CaptureFilePath.toText(), rec);
}

TEST_F(FileNamingTest, AnExistingFileIsOverwrittenOnlyOnYesOrWithoutWarnings) {
    struct Case {
        bool suppress;
        std::optional<Answer> answer;  // nothing: the box's default
        bool kept;
    };
    for (const Case& c : {Case{false, Answer::Yes, true}, Case{false, Answer::No, false},
                          Case{false, std::nullopt, false}, Case{true, std::nullopt, true}}) {
        config.record.SequentialNumbering = false;  // the same stamp every time
        config.record.SuppressWarnings = c.suppress;
        config.record.TCP = true;
        ASSERT_TRUE(platform::writeWholeFile(rec + "/AB20061102_14.03.09_.MP3", "x"));
        prompts.clear();
        hooks.calls.clear();
        state = {};
        if (c.answer) prompts.answerNext(*c.answer);
        const int refusalsLogged = logCount("User Selected NO to overwrite file");
        naming.Newfile();
        EXPECT_EQ(prompts.transcript().size(), c.suppress ? 0u : 1u);
        if (!c.suppress) {
            EXPECT_EQ(prompts.transcript()[0].text, "Overwrite existing file?");
            EXPECT_EQ(prompts.transcript()[0].defaultAnswer, Answer::No);
        }
        EXPECT_EQ(state.Filename.empty(), !c.kept);
        EXPECT_EQ(state.UserSelectedNo, !c.kept);
        const std::vector<std::string> refused = {"LOADED_AB20061102_14.03.09_", "peer told: refused",
                                                  "CaseClose", "ResetRecorderState"};
        const std::vector<std::string> kept = {"LOADED_AB20061102_14.03.09_", "format MP3", "timSave on"};
        EXPECT_EQ(hooks.calls, c.kept ? kept : refused);
        EXPECT_EQ(logCount("User Selected NO to overwrite file") - refusalsLogged, c.kept ? 0 : 1);
        EXPECT_EQ(state.WhichBut, c.answer == Answer::Yes ? "New" : "");
    }
}

TEST_F(FileNamingTest, TheNewFileIsAnnouncedInTheLogAndToThePeer) {
    config.record.TCP = true;
    hooks.linkError = "Connection is forcibly rejected";
    naming.CreateFileName();
    EXPECT_EQ(hooks.calls, std::vector<std::string>{"LOADED_AB0007"});
    EXPECT_EQ(view.Label40, "Connection is forcibly rejected");
    for (const char* line : {"LOADED New File: ", " Procedure - CREATEFILENAME", " -58 Sending Message in CreateFileName",
                             "CaseNew-FileSaveError =: False", " Procedure - CreateFileName"}) {
        EXPECT_TRUE(logHas(line)) << line;
    }
}

TEST_F(FileNamingTest, AHandedOverNameReplacesTheCompositionAndATakenUpFileIsNotAnnounced) {
    config.record.TCP = true;
    config.record.PromptBarCode = true;
    config.record.FileNameIncrement = 123456;  // too wide, but not looked at
    state.CommandFileName = rec + "/Handed";
    naming.CreateFileName();
    EXPECT_EQ(state.Filename, rec + "/Handed.MP3");
    EXPECT_TRUE(prompts.transcript().empty());
    EXPECT_EQ(hooks.calls, std::vector<std::string>{"LOADED_Handed"});

    hooks.calls.clear();
    state.PRERECORDED = true;
    state.Filename = rec + "/Taken.MP3";
    naming.CreateFileName();
    EXPECT_EQ(state.Filename, rec + "/Taken.MP3");
    EXPECT_TRUE(hooks.calls.empty());
}

TEST_F(FileNamingTest, WithoutRulesTheUserPicksTheNameOrAbandonsTheFile) {
    config.record.FileLabelActive = false;
    hooks.chosenFile = rec + "/Mine.MP3";
    naming.Newfile();
    EXPECT_EQ(state.Filename, rec + "/Mine.MP3");
    EXPECT_EQ(hooks.calls.front(), "ChooseFileName 3");

    hooks.chosenFile.reset();
    hooks.calls.clear();
    naming.Newfile();
    EXPECT_TRUE(state.UserSelectedNo);
    EXPECT_EQ(hooks.calls, (std::vector<std::string>{"ChooseFileName 3", "CaseClose", "ResetRecorderState"}));
}

TEST(PriorityMarkerTest, EverySaveWithTheFlagOnAddsTheMarkerAgain) {
    DictationState state;
    state.Filename = "/rec/v1.2/AB0007.MP3";
    addPriorityMarker(state);
    EXPECT_EQ(state.Filename, "/rec/v1.2/AB0007.MP3") << "off: nothing";
    state.PriorityOn = true;
    addPriorityMarker(state);
    addPriorityMarker(state);
    EXPECT_EQ(state.Filename, "/rec/v1.2/AB0007-PRIORITY-PRIORITY.MP3");
    EXPECT_TRUE(state.PriorityOn);
    EXPECT_EQ(withPriorityMarker("/rec/v1.2/Take"), "/rec/v1.2/Take-PRIORITY.");
}

}  // namespace
}  // namespace ovd::dictation
