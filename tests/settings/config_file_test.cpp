// DigitalRecorder.cfg: the positional record, its grammar and the start-up rules.

#include "settings/config_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "platform/files.h"
#include "settings/record_grammar.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::settings {
namespace {

using testing::ScriptedPrompts;
using testing::TempFolder;

struct FieldCase {
    const char* name;
    const char* raw;       // as it stands in the file
    const char* expected;  // as the dump shows the value once loaded
};

// A full record as a station in the field would hold it, one row per field.
const std::vector<FieldCase>& fullRecord() {
    static const std::vector<FieldCase> rows = {
        {"kDeviceInput", "\"2\"", "2"},
        {"kDeviceOutput", "\"1\"", "1"},
        {"LastFolderOpened", "\"/home/ann/Dictations\"", "/home/ann/Dictations"},
        {"LastFileOpened", "\"Letter 7.mp3\"", "Letter 7.mp3"},
        {"LastPathFileOpened", "\"/home/ann/Dictations/Letter 7.mp3\"",
         "/home/ann/Dictations/Letter 7.mp3"},
        {"FileLabelText", "\"DR\"", "DR"},
        {"SuppressWarnings", "#FALSE#", "False"},
        {"CaptureFilePath", "\"/srv/rec, north wing\"", "/srv/rec, north wing"},
        {"SequentialNumbering", "#TRUE#", "True"},
        {"FileNameIncrement", "42", "42"},
        {"FileLabelActive", "#TRUE#", "True"},
        {"Places", "5", "5"},
        {"FileNameIncrementStartingNum", "\"7\"", "7"},
        {"kSrcInput", "\"0\"", "0"},
        {"kSrcOutput", "\"0\"", "0"},
        {"sldrVolumeInpSelStart", "48000", "48000"},
        {"Ontopcheck", "1", "1"},
        {"Frequency", "\"16000\"", "16000"},
        {"Channel", "\"1\"", "1"},
        {"FormatType", "\"MP3\"", "MP3"},
        {"sldrVolumeOutSelStart", "-5", "-5"},
        {"sldrVolBalanceInp", "0", "0"},
        {"sldrVolBalanceOut", "-12", "-12"},
        {"chSelectOutput", "#FALSE#", "False"},
        {"chSelectInput", "#TRUE#", "True"},
        {"Last3SecsAR", "#FALSE#", "False"},
        {"Frequency2", "\"32000\"", "32000"},
        {"Channel2", "\"STEREO\"", "STEREO"},
        {"FormatType2", "\"WAV\"", "WAV"},
        {"FileBit", "\"8\"", "8"},
        {"FileBit2", "\"16\"", "16"},
        {"AudioSource1", "\"\"", ""},
        {"RecordingFormats", "\"OPT2\"", "OPT2"},
        {"BUT1", "\"New\"", "New"},
        {"BUT2", "\"RenameFile\"", "RenameFile"},
        {"BUT3", "\"Previous\"", "Previous"},
        {"BUT4", "\"Next\"", "Next"},
        {"BUT5", "\"AudioSRC\"", "AudioSRC"},
        {"BUT6", "\"SendToOne\"", "SendToOne"},
        {"BUT7", "\"SendToTwo\"", "SendToTwo"},
        {"BUT8", "\"EraseFile\"", "EraseFile"},
        {"QDUSpeakerONOFF", "\"\"", ""},
        {"QDUVol", "\"\"", ""},
        {"SAVEEVERY", "30", "30"},
        {"gNormalShutDown", "#TRUE#", "True"},
        {"SendToOne", "\"/mnt/typist1\"", "/mnt/typist1"},
        {"SendToTwo", "\"\"", ""},
        {"StepAmt", "3", "3"},
        {"AutoSend1", "#TRUE#", "True"},
        {"AutoSend2", "#FALSE#", "False"},
        {"VoicePrompts", "#TRUE#", "True"},
        {"RecoveryModule", "#TRUE#", "True"},
        {"TCP", "#FALSE#", "False"},
        {"TCPIP", "\"127.0.0.1\"", "127.0.0.1"},
        {"TCPPort", "\"2014\"", "2014"},
        {"TCPButtonScreen", "#FALSE#", "False"},
        {"WhichMIC", "\"Mic: Internal\"", "Mic: Internal"},
        {"LEFTQDUPEDAL", "\"REWIND\"", "REWIND"},
        {"MIDQDUPEDAL", "\"PLAY\"", "PLAY"},
        {"RIGHTQDUPEDAL", "\"RECORD\"", "RECORD"},
        {"LEFTUSBPEDAL", "\"REWIND\"", "REWIND"},
        {"MIDUSBPEDAL", "\"PLAY\"", "PLAY"},
        {"RIGHTUSBPEDAL", "\"EOLSTOP\"", "EOLSTOP"},
        {"LEFTSERPEDAL", "\"REWIND\"", "REWIND"},
        {"MIDSERPEDAL", "\"PLAY\"", "PLAY"},
        {"RIGHTSERPEDAL", "\"FASTFORWARD\"", "FASTFORWARD"},
        {"TwoPedalsSER", "#FALSE#", "False"},
        {"LEFTGAMEPEDAL", "\"\"", ""},
        {"MIDGAMEPEDAL", "\"\"", ""},
        {"RIGHTGAMEPEDAL", "\"\"", ""},
        {"Port", "3", "3"},
        {"UserSelectUSB", "#TRUE#", "True"},
        {"UserSelectGame", "#FALSE#", "False"},
        {"UserSelectSerial", "#FALSE#", "False"},
        {"AutoFileDeltion", "#FALSE#", "False"},
        {"OverwriteToEnd", "#TRUE#", "True"},
        {"AutoEmail", "#FALSE#", "False"},
        {"AutoEmailName", "\"Acme Typing\"", "Acme Typing"},
        {"AutoFTP", "#FALSE#", "False"},
        {"AutoFTPName", "\"\"", ""},
        {"AutoRewind", "#FALSE#", "False"},
        {"AutoInsert", "#FALSE#", "False"},
        {"AutoOverwrite", "#FALSE#", "False"},
        {"FirstRunDone", "#TRUE#", "True"},
        {"FileSaveAtStop", "#TRUE#", "True"},
        {"DFStopRec", "#FALSE#", "False"},
        {"TCPDelay", "1", "1"},
        {"QDUDisconnected", "#TRUE#", "True"},
        {"NoLogging", "#FALSE#", "False"},
        {"JumpBackSecs", "5", "5"},
        {"HandsFreeEdition", "#TRUE#", "True"},
        {"OneTapRecPause", "#FALSE#", "False"},
        {"AutoSend3", "#FALSE#", "False"},
        {"SendToThree", "\"\"", ""},
        {"InputDeviceName", "\"Built-in Audio Analog Stereo\"", "Built-in Audio Analog Stereo"},
        {"InputSourceName", "\"Microphone\"", "Microphone"},
        {"AddNameToFile", "#TRUE#", "True"},
        {"CurrentSpeaker", "\"Dr O'Neill\"", "Dr O'Neill"},
        {"DeleteDay", "5", "5"},
        {"DeleteHour", "11", "11"},
        {"DeleteMinute", "30", "30"},
        {"DeleteAMPM", "\"PM\"", "PM"},
        {"AddDateToName", "#FALSE#", "False"},
        {"Use30VEC", "#FALSE#", "False"},
        {"EOLHotKeysOn", "#TRUE#", "True"},
        {"HotKeyMode", "\"Local\"", "Local"},
        {"EOLHotKey", "\"F12\"", "F12"},
        {"EOLHotKeyShift", "", ""},
        {"ExitAtEOL", "#FALSE#", "False"},
        {"ScreenSize", "\"Thin\"", "Thin"},
        {"MainWindowLeft", "120", "120"},
        {"MainWindowTop", "80", "80"},
        {"PromptBarCode", "#FALSE#", "False"},
    };
    return rows;
}

std::string recordLine(const std::vector<std::string>& raws) {
    std::string line;
    for (std::size_t i = 0; i < raws.size(); ++i) line += (i == 0 ? "" : ",") + raws[i];
    return line + "\r\n";
}

std::string fullLine() {
    std::vector<std::string> raws;
    for (const FieldCase& row : fullRecord()) raws.emplace_back(row.raw);
    return recordLine(raws);
}

std::string readFile(const std::string& path) { return platform::readWholeFile(path).valueOr(""); }

class ConfigFileTest : public ::testing::Test {
  protected:
    void writeRecord(const std::string& text) {
        ASSERT_TRUE(platform::writeWholeFile(folder.file(kConfigFileName), text));
    }
    TempFolder folder;
    ConfigFile config{folder.path()};
};

TEST_F(ConfigFileTest, AFullRecordLoadsFieldByFieldAndWritesBackByteIdentical) {
    const auto& rows = fullRecord();
    ASSERT_EQ(rows.size(), 113u);
    ASSERT_EQ(settingsFields().size(), 113u);
    writeRecord(fullLine());

    config.ReadConfig();

    EXPECT_EQ(config.writeCount(), 0) << "nothing to fill in, so nothing written";
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_STREQ(settingsFields()[i].name, rows[i].name) << "field " << i + 1;
        EXPECT_EQ(describeField(config.record, settingsFields()[i]), rows[i].expected)
            << rows[i].name;
    }
    EXPECT_TRUE(config.record.EOLHotKeyShift.isEmpty());
    EXPECT_TRUE(config.record.FileNameIncrementStartingNum.isText());
    EXPECT_TRUE(config.record.FileNameIncrement.isNumber());

    config.WriteConfig();
    EXPECT_EQ(readFile(config.path()), fullLine());
}

TEST_F(ConfigFileTest, AShortRecordKeepsLaterFieldsAndItsFirstSaveWritesAll113) {
    config.record.JumpBackSecs = 7;  // a value held before the load
    config.record.ExitAtEOL = true;
    writeRecord("\"3\",\"4\",\"/rec\"\r\n");

    config.ReadConfig();

    EXPECT_EQ(config.record.kDeviceInput, "3");
    EXPECT_EQ(config.record.LastFolderOpened, "/rec");
    EXPECT_EQ(config.record.JumpBackSecs, 7);
    EXPECT_TRUE(config.record.ExitAtEOL);
    const std::string written = readFile(config.path());
    EXPECT_EQ(std::count(written.begin(), written.end(), ','), 112);
    EXPECT_EQ(written.substr(written.size() - 2), "\r\n");
}

TEST_F(ConfigFileTest, QuotesInsideTextCutTheFieldShortButCommasInQuotesSurvive) {
    config.record.LastFileOpened = "say \"hello\".wav";
    config.record.LastPathFileOpened = "/rec/a,b.wav";
    config.WriteConfig();

    ConfigFile reloaded(folder.path());
    reloaded.ReadConfig();

    EXPECT_EQ(reloaded.record.LastFileOpened, "say ");
    EXPECT_EQ(reloaded.record.LastPathFileOpened, "/rec/a,b.wav");
    EXPECT_EQ(reloaded.record.Port, 1);
}

TEST_F(ConfigFileTest, DamagedFieldsKeepTheirValuesAndTheRestStillLoads) {
    struct Case {
        std::size_t field;  // 1-based place
        std::string raw;
        std::string expected;
    };
    const std::vector<Case> cases = {
        {12, "abc", "4"},      // Places: not a number, stays as it was
        {12, "70000", "4"},    // too big for the field
        {12, "2.5", "2"},      // halves go to the even neighbour
        {12, "#TRUE#", "-1"},  // a yes as a number
        {7, "maybe", "True"},  // SuppressWarnings: not a yes/no, stays
        {7, "0", "False"},    {7, "\"True\"", "True"},
        {20, "MP3", "MP3"},    // text without quotes reads to the comma
        {10, "\"12\"", "12"},  // a variant keeps the form it was written in
        {10, "#NULL#", ""},
    };
    for (const Case& c : cases) {
        ConfigFile fresh(folder.path());
        fresh.record.Places = 4;
        fresh.record.SuppressWarnings = true;
        std::vector<std::string> raws(113, "");
        raws[c.field - 1] = c.raw;
        raws[109] = "\"Regular\"";
        raws[7] = "\"/rec\"";
        writeRecord(recordLine(raws));
        fresh.ReadConfig();
        EXPECT_EQ(describeField(fresh.record, settingsFields()[c.field - 1]), c.expected)
            << "field " << c.field << " from " << c.raw;
        EXPECT_EQ(fresh.record.ScreenSize, "Regular");
    }
}

TEST_F(ConfigFileTest, EmptyFillInsEachCauseTheirOwnWriteAndPortZeroIsStoredAsOne) {
    writeRecord(",,,\r\n");
    config.ReadConfig();

    EXPECT_EQ(config.writeCount(), 2);
    EXPECT_EQ(config.record.ScreenSize, "Regular");
    EXPECT_EQ(config.record.CaptureFilePath.toText(), folder.path() + "/Recordings");
    EXPECT_EQ(config.record.Port, 1);
    const auto tokens = tokenizeRecord(readFile(config.path()));
    ASSERT_EQ(tokens.size(), 113u);
    EXPECT_EQ(tokens[70].text, "1");
    EXPECT_EQ(tokens[109].text, "Regular");
}

TEST_F(ConfigFileTest, MissingOrEmptyFileStopsTheStationWithItsMessage) {
    for (const bool createEmpty : {false, true}) {
        if (createEmpty) writeRecord("");
        ScriptedPrompts prompts;
        EXPECT_FALSE(config.startUp(prompts));
        ASSERT_EQ(prompts.texts().size(), 1u);
        EXPECT_EQ(prompts.texts()[0], "Configuration File is missing. Program will not run.");
    }
}

TEST_F(ConfigFileTest, StartUpMarksTheFirstRunAndDropsTheButtonScreenWithoutTcp) {
    std::vector<std::string> raws(113, "");
    raws[55] = "#TRUE#";   // TCPButtonScreen
    raws[52] = "#FALSE#";  // TCP
    raws[83] = "#FALSE#";  // FirstRunDone
    raws[109] = "\"SuperThin\"";
    raws[7] = "\"/rec\"";
    writeRecord(recordLine(raws));
    ScriptedPrompts prompts;

    ASSERT_TRUE(config.startUp(prompts));

    EXPECT_TRUE(prompts.texts().empty());
    EXPECT_TRUE(config.record.FirstRunDone);
    EXPECT_FALSE(config.record.TCPButtonScreen);
    EXPECT_EQ(config.writeCount(), 1);
    ConfigFile again(folder.path());
    again.ReadConfig();
    EXPECT_TRUE(again.record.FirstRunDone);
}

TEST_F(ConfigFileTest, RecoveryAtStartLetsFilesBeOnceAfterANormalExit) {
    config.record.RecoveryModule = true;
    config.record.gNormalShutDown = true;
    EXPECT_EQ(config.recoveryAtStart(false), RecoveryAtStart::Nothing);
    EXPECT_TRUE(config.record.gNormalShutDown);
    EXPECT_EQ(config.recoveryAtStart(true), RecoveryAtStart::LetBeThisOnce);
    EXPECT_FALSE(config.record.gNormalShutDown);
    EXPECT_EQ(config.recoveryAtStart(true), RecoveryAtStart::OpenRecovery);
    config.record.RecoveryModule = false;
    EXPECT_EQ(config.recoveryAtStart(true), RecoveryAtStart::Nothing);
}

TEST_F(ConfigFileTest, DeviceAndWindowPositionAreFilledInOnlyWhenNotKnown) {
    config.record.InputDeviceName = "0";
    config.takeRecordingDevice("3", "USB Headset");
    EXPECT_EQ(config.record.InputDeviceName, "USB Headset");
    EXPECT_EQ(config.record.kDeviceInput, "3");
    config.takeRecordingDevice("1", "Other");
    EXPECT_EQ(config.record.InputDeviceName, "USB Headset");

    config.takeWindowPosition(10, 20);
    config.takeWindowPosition(30, 40);
    EXPECT_EQ(config.record.MainWindowLeft.toText(), "10");
    EXPECT_EQ(config.record.MainWindowTop.toText(), "20");
}

TEST_F(ConfigFileTest, ResetReturnsToWhatTheFileHoldsAndClearsTheWorkingState) {
    config.record.FormatType = "WAV";
    config.record.CaptureFilePath = "/rec";
    config.record.ScreenSize = "Thin";
    config.WriteConfig();
    config.record.FormatType = "changed in memory after the write";
    bool cleared = false;

    config.ResetRecorderState([&] {
        cleared = true;
        EXPECT_TRUE(config.record.FormatType.empty()) << "cleared before the reload";
    });

    EXPECT_TRUE(cleared);
    EXPECT_EQ(config.record.FormatType, "changed in memory after the write")
        << "the reset writes first, so what was in force is what the file gives back";
}

TEST(ShippedConfigTest, TheInstalledFirstRecordHasAllFieldsAndSensibleFirstValues) {
    const auto content =
        platform::readWholeFile(std::string(OVD_TEST_ASSETS) + "/DigitalRecorder.cfg");
    ASSERT_TRUE(content.ok());
    EXPECT_EQ(tokenizeRecord(*content).size(), 113u);
    EXPECT_EQ(content->substr(content->size() - 2), "\r\n");

    TempFolder folder;
    ASSERT_TRUE(platform::writeWholeFile(folder.file(kConfigFileName), *content));
    ConfigFile config(folder.path());
    ScriptedPrompts prompts;
    ASSERT_TRUE(config.startUp(prompts));
    EXPECT_FALSE(config.record.SequentialNumbering.toBool()) << "time-stamped names";
    EXPECT_EQ(config.record.FormatType, "MP3");
    EXPECT_EQ(config.record.Frequency, "16000");
    EXPECT_EQ(config.record.FormatType2, "MP3");
    EXPECT_EQ(config.record.Frequency2, "32000");
    EXPECT_EQ(config.record.RecordingFormats, "OPT2");
    EXPECT_EQ(config.record.CaptureFilePath.toText(), folder.path() + "/Recordings");
    EXPECT_EQ(config.record.ScreenSize, "Regular");
    EXPECT_EQ(formatRecord(config.record), platform::readWholeFile(config.path()).valueOr(""));
}

}  // namespace
}  // namespace ovd::settings
