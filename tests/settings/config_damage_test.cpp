// A damaged or unwritable DigitalRecorder.cfg: the user's file is kept before it
// is written over, the user hears once what was reset, no folder setting points
// into the current directory, and a write that fails is reported while the
// settings in force stay in memory.

#include <gtest/gtest.h>
#include <sys/mount.h>

#include <cerrno>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "platform/files.h"
#include "settings/config_file.h"
#include "settings/record_grammar.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::settings {
namespace {

using testing::ScriptedPrompts;
using testing::TempFolder;

std::string shippedRecord() {
    return platform::readWholeFile(std::string(OVD_TEST_ASSETS) + "/DigitalRecorder.cfg")
        .valueOr("");
}

// The record cut after its first fields, as a failing disk may leave it.
std::string firstFields(std::size_t count) {
    const std::vector<RecordToken> tokens = tokenizeRecord(shippedRecord());
    std::string line;
    for (std::size_t i = 0; i < count && i < tokens.size(); ++i) {
        if (i > 0) line += ',';
        line += tokens[i].quoted ? "\"" + tokens[i].text + "\"" : tokens[i].text;
    }
    return line + "\r\n";
}

std::string randomBytes(std::size_t count) {
    std::mt19937 generator(20261124);
    std::uniform_int_distribution<int> byte(0, 255);
    std::string bytes(count, '\0');
    for (char& c : bytes) c = static_cast<char>(byte(generator));
    return bytes;
}

// The shipped record with fields' raw texts replaced, by 0-based place.
std::string withFields(const std::map<std::size_t, std::string>& raws) {
    std::vector<RecordToken> tokens = tokenizeRecord(shippedRecord());
    std::string line;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (i > 0) line += ',';
        const auto replaced = raws.find(i);
        line += replaced != raws.end() ? replaced->second
                : tokens[i].quoted     ? "\"" + tokens[i].text + "\""
                                       : tokens[i].text;
    }
    return line + "\r\n";
}
std::string withField(std::size_t index, const std::string& raw) {
    return withFields({{index, raw}});
}

std::vector<std::string> damagedCopies(const TempFolder& folder) {
    std::vector<std::string> copies;
    for (const std::string& name : platform::filesInFolder(folder.path())) {
        if (name.rfind(std::string(kConfigFileName) + ".damaged-", 0) == 0) copies.push_back(name);
    }
    return copies;
}

TEST(ConfigDamageTest, ADamagedFileIsKeptTheUserIsToldOnceAndNoValueOutgrowsItsUse) {
    struct Case {
        const char* damage;
        std::string content;
        const char* toldField;  // a field the message names, or nothing
    };
    const std::vector<Case> cases = {
        {"only the first 40 fields", firstFields(40), nullptr},
        {"random bytes", randomBytes(4096), nullptr},
        {"a 1 MB label", withField(5, "\"" + std::string(1 << 20, 'A') + "\""), "FileLabelText"},
        {"a line break in a destination", withField(45, "\"/srv/\x01out\""), "SendToOne"},
        {"a yes/no where the recordings folder stands", withField(7, "#FALSE#"), "CaptureFilePath"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.damage);
        TempFolder folder;
        ASSERT_TRUE(platform::writeWholeFile(folder.file(kConfigFileName), c.content));
        ConfigFile config(folder.path());
        ScriptedPrompts prompts;

        ASSERT_TRUE(config.startUp(prompts));
        config.ResetRecorderState();  // a later load does not tell again

        const std::vector<std::string> copies = damagedCopies(folder);
        ASSERT_EQ(copies.size(), 1u);
        EXPECT_EQ(platform::readWholeFile(folder.file(copies[0])).valueOr(""), c.content)
            << "the user's file, as it was";
        ASSERT_EQ(prompts.texts().size(), 1u);
        const std::string told = prompts.texts()[0];
        EXPECT_NE(told.find("was damaged"), std::string::npos) << told;
        EXPECT_NE(told.find(copies[0]), std::string::npos) << told;
        if (c.toldField != nullptr) {
            EXPECT_NE(told.find(c.toldField), std::string::npos) << told;
        }

        for (const SettingsField& field : settingsFields()) {
            EXPECT_LE(describeField(config.record, field).size(), longestValueOf(field.name))
                << field.name;
        }
        const std::string recordings = config.record.CaptureFilePath.toText();
        EXPECT_EQ(recordings.rfind(folder.path(), 0), 0u) << recordings;
        for (const std::string& destination :
             {config.record.SendToOne, config.record.SendToTwo, config.record.SendToThree}) {
            EXPECT_TRUE(destination.empty() || destination.front() == '/') << destination;
        }
        EXPECT_LT(platform::fileSize(config.path()).valueOr(0), 64u * 1024u);
    }
}

TEST(ConfigDamageTest, AHealthyRecordIsNotCopiedAndRelativeFoldersLieBelowTheDataFolder) {
    TempFolder folder;
    // Words that stand elsewhere in the record, as a shifted record leaves them.
    const std::string record = withFields({{7, "\"AudioSRC\""}, {46, "\"False\""}});
    ASSERT_TRUE(platform::writeWholeFile(folder.file(kConfigFileName), record));
    ConfigFile config(folder.path());
    ScriptedPrompts prompts;

    ASSERT_TRUE(config.startUp(prompts));

    EXPECT_TRUE(prompts.texts().empty());
    EXPECT_TRUE(damagedCopies(folder).empty());
    EXPECT_EQ(config.record.CaptureFilePath.toText(), folder.file("AudioSRC"));
    EXPECT_EQ(config.record.SendToTwo, folder.file("False"));
    EXPECT_EQ(config.record.SendToOne, "") << "no destination stays none";
}

class UnwritableSettingsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (::mount("tmpfs", folder.path().c_str(), "tmpfs", 0, "size=1m") != 0) {
            GTEST_SKIP() << "a small tmpfs can't be mounted here (" << std::strerror(errno) << ")";
        }
        mounted = true;
    }
    void TearDown() override {
        if (mounted) ::umount2(folder.path().c_str(), MNT_DETACH);
    }
    void setReadOnly(bool readOnly) {
        ASSERT_EQ(::mount(nullptr, folder.path().c_str(), nullptr,
                          readOnly ? MS_REMOUNT | MS_RDONLY : MS_REMOUNT, "size=1m"),
                  0)
            << std::strerror(errno);
    }
    TempFolder folder;
    bool mounted = false;
};

TEST_F(UnwritableSettingsTest, AFailedWriteIsReportedOnceAndTheSettingsInForceStayInMemory) {
    ConfigFile config(folder.path());
    std::vector<std::string> reasons;
    config.onWriteFailed = [&](const std::string& reason) { reasons.push_back(reason); };
    config.record.CaptureFilePath = "/rec";
    config.record.ScreenSize = "Regular";
    config.record.FormatType = "MP3";
    config.record.FileNameIncrement = 7;
    ASSERT_TRUE(config.WriteConfig());
    const std::string onDisk = platform::readWholeFile(config.path()).valueOr("");
    setReadOnly(true);

    config.record.FileNameIncrement = 8;
    EXPECT_FALSE(config.WriteConfig());
    config.record.FileNameIncrement = 9;
    EXPECT_FALSE(config.WriteConfig());
    // A reset goes back to the settings in force, not to the stale file.
    config.ResetRecorderState();

    ASSERT_EQ(reasons.size(), 1u) << "told once, not at every change";
    EXPECT_NE(reasons[0].find("Read-only"), std::string::npos) << reasons[0];
    EXPECT_EQ(config.record.FileNameIncrement.toText(), "9");
    EXPECT_EQ(config.record.FormatType, "MP3");
    EXPECT_EQ(platform::readWholeFile(config.path()).valueOr(""), onDisk)
        << "the old record stays whole";

    setReadOnly(false);
    EXPECT_TRUE(config.WriteConfig());
    ConfigFile reloaded(folder.path());
    reloaded.ReadConfig();
    EXPECT_EQ(reloaded.record.FileNameIncrement.toText(), "9");
    setReadOnly(true);
    EXPECT_FALSE(config.WriteConfig());
    EXPECT_EQ(reasons.size(), 2u) << "a new failure after a good write is told again";
    setReadOnly(false);
}

}  // namespace
}  // namespace ovd::settings
