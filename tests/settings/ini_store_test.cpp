// The INI text form (how names are found, how long values come back, exactly what each
// kind of write leaves in the file) and clsIniFile over it: the logic-error guard, the
// readings of its values, the current section and the main file.

#include "settings/ini_store.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "platform/files.h"
#include "platform/text.h"
#include "settings/ini_file.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::settings {
namespace {

using testing::ScriptedPrompts;
using testing::TempFolder;

TEST(IniStore, ReadsTrimmedValuesFromTheFirstSectionOfTheNameCutAtNinetyNine) {
    TempFolder folder;
    const IniStore store(folder.file("ClientsInfo.ini"));
    ASSERT_TRUE(platform::writeWholeFile(
        store.path(),
        "[Company]\nCompanyName =  Acme Transcripts \n; Name=not a key\n"
        "[Key]\r\nEncryptKey=k1=k2\r\n[company]\nName=Second section of the name\n"));
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"COMPANY", "companyname", "Acme Transcripts"},
        {" Key ", "encryptkey", "k1=k2"},
        {"Company", "Name", ""},
        {"Company", "; Name", ""},
        {"Clients", "Name", ""}};
    for (const auto& [section, key, expected] : cases) {
        EXPECT_EQ(store.ReadKey(section, key), expected) << section << "/" << key;
    }
    EXPECT_EQ(store.sectionNames(), (std::vector<std::string>{"Company", "Key", "company"}));

    for (const std::size_t length : {0U, 98U, 99U, 100U, 250U}) {
        const std::string value(length, 'v');
        ASSERT_TRUE(store.WriteKey("North", "RECEncryptKey", value));
        EXPECT_EQ(store.ReadKey("North", "RECEncryptKey"), value.substr(0, 99)) << length;
        EXPECT_EQ(store.readValue("North", "RECEncryptKey"), value);
    }
    EXPECT_EQ(IniStore(folder.file("none.ini")).ReadKey("North", "Email"), "");
}

std::function<bool(const IniStore&)> writeKey(std::string section, std::string key,
                                              std::optional<std::string> value) {
    return [=](const IniStore& store) { return store.WriteKey(section, key, value).ok(); };
}

TEST(IniStore, EachWriteLeavesTheExpectedText) {
    // The file before (nothing: none yet), the write, the file after.
    const std::vector<
        std::tuple<std::optional<std::string>, std::function<bool(const IniStore&)>, std::string>>
        cases = {
            // A missing file is created.
            {std::nullopt, writeKey("Company", "Name", "Ann"), "[Company]\r\nName=Ann\r\n"},
            // A value is replaced where it stands; the key keeps its spelling.
            {"; kept\n[Company]\nNAME = Old\nCity=Here\n", writeKey("company", "name", "New"),
             "; kept\r\n[Company]\r\nNAME=New\r\nCity=Here\r\n"},
            // A new key goes at the end of its section, after lines that are not entries.
            {"garbage\n[A]\nx=1\nnot a key\n\n[B]\ny=2\n", writeKey("a", "z", "3"),
             "garbage\r\n[A]\r\nx=1\r\nnot a key\r\nz=3\r\n\r\n[B]\r\ny=2\r\n"},
            // A new section goes at the end of the file; an empty text is written as such.
            {"[A]\nx=1\n", writeKey("B", "y", ""), "[A]\r\nx=1\r\n\r\n[B]\r\ny=\r\n"},
            // A write of nothing removes the key.
            {"[A]\nx=1\ny=2\n", writeKey("A", "X", std::nullopt), "[A]\r\ny=2\r\n"},
            // A value can't bring a line of its own.
            {"[A]\n", writeKey("A", "x", "one\r\n[Evil]\r\nk=v"), "[A]\r\nx=one\r\n"},
            // Removing from a missing file creates nothing.
            {std::nullopt,
             [](const IniStore& s) { return s.WriteKey("A", "x", {}) && s.deleteSection("A"); },
             "<no file>"},
            // A whole section is removed, the others kept.
            {"[A]\nx=1\n[B]\ny=2\n[C]\nz=3\n",
             [](const IniStore& s) { return s.deleteSection("b").ok(); },
             "[A]\r\nx=1\r\n[C]\r\nz=3\r\n"},
        };
    for (const auto& [before, write, after] : cases) {
        TempFolder folder;
        const std::string path = folder.file("Test.ini");
        ASSERT_TRUE(!before || platform::writeWholeFile(path, *before));
        EXPECT_TRUE(write(IniStore(path))) << after;
        EXPECT_EQ(platform::readWholeFile(path).valueOr("<no file>"), after);
    }
}

TEST(IniStore, RefusesWhatTheFileCouldNotHold) {
    TempFolder folder;
    EXPECT_FALSE(IniStore(folder.file("no such folder/a.ini")).WriteKey("North", "Email", "a@b"));
    const IniStore store(folder.file("ClientsInfo.ini"));
    for (const char* key : {"a=b", ";note", "[North]"}) {
        EXPECT_FALSE(store.WriteKey("North", key, "1")) << key;
    }
    EXPECT_FALSE(store.exists());
}

TEST(IniStore, OwnerOnlyFilesAreCreatedAndRewrittenForTheOwnerAlone) {
    TempFolder folder;
    const IniStore store(folder.file("OurCompanyInfo.ini"), FileAccess::OwnerOnly);
    // Made, then rewritten after others were let in.
    for (const char* key : {"EncryptKey", "PassPopServer1"}) {
        ASSERT_TRUE(store.WriteKey("Key", key, "secret"));
        struct stat info {};
        ASSERT_EQ(::stat(store.path().c_str(), &info), 0);
        EXPECT_EQ(info.st_mode & 0777U, 0600U) << key;
        ASSERT_EQ(::chmod(store.path().c_str(), 0644), 0);
    }
}

TEST(IniFileGuard, EveryOperationNeedsFileAndSectionFirst) {
    // Each is true when it gave nothing back; writes give nothing back at all, and that
    // they did nothing shows in the file at the end.
    const std::vector<std::pair<const char*, std::function<bool(clsIniFile&)>>> operations = {
        {"GetString", [](clsIniFile& f) { return f.GetString("Entries", "1").empty(); }},
        {"GetInt", [](clsIniFile& f) { return f.GetInt("Entries", 5) == 0; }},
        {"GetTF", [](clsIniFile& f) { return !f.GetTF("Node", true); }},
        {"IniRead", [](clsIniFile& f) { return f.IniRead("General", "Entries", "1").empty(); }},
        {"GetSections", [](clsIniFile& f) { return f.GetSections().empty(); }},
        {"GetSectionsEx", [](clsIniFile& f) { return f.GetSectionsEx().empty(); }},
        {"GetSectEntries", [](clsIniFile& f) { return f.GetSectEntries().empty(); }},
        {"GetSectEntriesEx", [](clsIniFile& f) { return f.GetSectEntriesEx().empty(); }},
        {"SectExist", [](clsIniFile& f) { return !f.SectExist("General"); }},
        {"IniWrite", [](clsIniFile& f) { return !f.IniWrite("General", "Entries", "2"); }},
        {"FlushCache", [](clsIniFile& f) { return f.FlushCache(), true; }},
        {"PutString", [](clsIniFile& f) { return f.PutString("Form Title", "Help"), true; }},
        {"PutInt", [](clsIniFile& f) { return f.PutInt("Entries", 2), true; }},
        {"PutTF", [](clsIniFile& f) { return f.PutTF("Node", true), true; }},
        {"DeleteStrEntry", [](clsIniFile& f) { return f.DeleteStrEntry("Entries"), true; }},
        {"DeleteNumEntry", [](clsIniFile& f) { return f.DeleteNumEntry("Entries"), true; }},
        {"DeleteSection", [](clsIniFile& f) { return f.DeleteSection(), true; }},
    };
    TempFolder folder;
    const std::string path = folder.file("Help.INI");
    const std::string text = "[General]\r\nEntries=3\r\nNode=yes\r\n";
    ASSERT_TRUE(platform::writeWholeFile(path, text));

    // Only the file, only the section, the file and a section set back to blanks.
    const std::vector<std::pair<bool, std::vector<const char*>>> setUps = {
        {true, {}}, {false, {"General"}}, {true, {"General", "   "}}};
    for (std::size_t s = 0; s < setUps.size(); ++s) {
        for (const auto& [name, gaveNothing] : operations) {
            ScriptedPrompts prompts;
            clsIniFile ini(prompts, folder.path());
            if (setUps[s].first) ini.FullPath(path);
            for (const char* section : setUps[s].second) ini.SectionName(section);
            EXPECT_TRUE(gaveNothing(ini)) << name << " set-up " << s;
            ASSERT_EQ(prompts.transcript().size(), 1U) << name << " set-up " << s;
            EXPECT_EQ(prompts.transcript()[0].title + ": " + prompts.transcript()[0].text,
                      "IniFile Logic Error: [Section] and FileName Not Registered in Private.Ini!");
        }
    }
    EXPECT_EQ(platform::readWholeFile(path).valueOr(""), text);
}

// A file object set to Help.INI in a fresh folder; no test here expects a box.
class IniFileTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ini.FullPath("  " + folder.file("Help.INI") + "  ");
        ini.SectionName(" General ");
    }
    void TearDown() override { EXPECT_TRUE(prompts.transcript().empty()); }
    TempFolder folder;
    ScriptedPrompts prompts;
    clsIniFile ini{prompts, folder.path()};
};

TEST_F(IniFileTest, ValuesReadAsNumbersAndAsYesOrNo) {
    // What is stored, GetInt and GetTF of it; nothing stands for the default, 7 or
    // either truth value.
    const std::vector<std::tuple<const char*, std::optional<int>, std::optional<bool>>> cases = {
        {" YES ", 0, true}, {"yes", 0, true}, {"Y", 0, true},      {"True", 0, true},
        {"t", 0, true},     {"On", 0, true},  {"1", 1, true},      {"-1", -1, true},
        {"NO", 0, false},   {"n", 0, false},  {"false", 0, false}, {"F", 0, false},
        {"off", 0, false},  {"0", 0, false},  {"maybe", 0, {}},    {"2", 2, {}},
        {"YES!", 0, {}},    {"12px", 12, {}}, {"", {}, {}}};
    for (const auto& [stored, number, truth] : cases) {
        ini.PutString("Node", stored);
        EXPECT_EQ(ini.GetInt("Node", 7), number.value_or(7)) << "'" << stored << "'";
        for (const bool fallback : {false, true}) {
            EXPECT_EQ(ini.GetTF("Node", fallback), truth.value_or(fallback))
                << "'" << stored << "' default " << fallback;
        }
    }
    EXPECT_EQ(ini.GetInt("Missing", 7), 7);
    EXPECT_TRUE(ini.GetTF("Missing", true));
    EXPECT_FALSE(ini.GetTF("Missing", false));
}

TEST_F(IniFileTest, WritesTheTrimmedSectionAndListsItsSectionsAndKeys) {
    ini.PutInt("Entries", -12);
    ini.PutTF("Node", false);
    EXPECT_TRUE(ini.IniWrite("2", "ListItem", "Starting"));
    EXPECT_EQ(platform::readWholeFile(folder.file("Help.INI")).valueOr(""),
              "[General]\r\nEntries=-12\r\nNode=False\r\n\r\n[2]\r\nListItem=Starting\r\n");
    EXPECT_EQ(ini.IniRead("2", "listitem", "x") + ini.GetString("Missing", "?"), "Starting?");
    EXPECT_EQ(ini.GetSections(), std::string("General\0"
                                             "2\0",
                                             10));
    EXPECT_EQ(ini.GetSectionsEx(), (std::vector<std::string>{"General", "2"}));
    EXPECT_EQ(ini.GetSectEntriesEx(),
              (std::vector<IniEntry>{{"Entries", "-12"}, {"Node", "False"}}));
    EXPECT_TRUE(ini.SectExist("GENERAL"));
    EXPECT_FALSE(ini.SectExist("Gen"));

    ini.DeleteNumEntry("Entries");
    EXPECT_EQ(ini.GetSectEntries(), std::vector<std::string>{"Node"});
    ini.DeleteStrEntry("NODE");
    EXPECT_TRUE(ini.GetSectEntries().empty());
    ini.DeleteSection();
    EXPECT_FALSE(ini.SectExist("General"));
}

TEST_F(IniFileTest, UseWinINIPointsAtTheMainFileAndBack) {
    ini.UseWinINI(true);
    ini.PutString("Wallpaper", "none");
    EXPECT_EQ(IniStore(folder.file("WIN.INI")).ReadKey("general", "wallpaper"), "none");
    EXPECT_EQ(ini.PrivPath(), folder.file("Help.INI"));
    ini.UseWinINI(false);
    EXPECT_EQ(ini.GetString("Wallpaper", "default"), "default");
    EXPECT_EQ(ini.filepath() + ini.FileExt(), platform::toUpper(folder.path()) + "/INI");
}

}  // namespace
}  // namespace ovd::settings
