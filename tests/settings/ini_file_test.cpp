// clsIniFile: the logic-error guard, the readings of its values and the main file.

#include "settings/ini_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "platform/files.h"
#include "platform/text.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::settings {
namespace {

using testing::ScriptedPrompts;
using testing::TempFolder;

TEST(clsIniFile, EveryOperationNeedsFileAndSectionFirst) {
    struct Operation {
        const char* name;
        std::function<bool(clsIniFile&)> gaveNothing;
    };
    // Writes give nothing back: that they did nothing shows in the file, below.
    const auto quietly = [](std::function<void(clsIniFile&)> write) {
        return [write](clsIniFile& f) {
            write(f);
            return true;
        };
    };
    const std::vector<Operation> operations = {
        {"GetString", [](clsIniFile& f) { return f.GetString("Entries", "1").empty(); }},
        {"GetInt", [](clsIniFile& f) { return f.GetInt("Entries", 5) == 0; }},
        {"GetTF", [](clsIniFile& f) { return !f.GetTF("Node", true); }},
        {"IniRead", [](clsIniFile& f) { return f.IniRead("General", "Entries", "1").empty(); }},
        {"GetSections", [](clsIniFile& f) { return f.GetSections().empty(); }},
        {"GetSectionsEx", [](clsIniFile& f) { return f.GetSectionsEx().empty(); }},
        {"GetSectEntries", [](clsIniFile& f) { return f.GetSectEntries().empty(); }},
        {"GetSectEntriesEx", [](clsIniFile& f) { return f.GetSectEntriesEx().empty(); }},
        {"SectExist", [](clsIniFile& f) { return !f.SectExist("General"); }},
        {"FlushCache", quietly([](clsIniFile& f) { f.FlushCache(); })},
        {"PutString", quietly([](clsIniFile& f) { f.PutString("Form Title", "Help"); })},
        {"PutInt", quietly([](clsIniFile& f) { f.PutInt("Entries", 2); })},
        {"PutTF", quietly([](clsIniFile& f) { f.PutTF("Node", true); })},
        {"IniWrite", [](clsIniFile& f) { return !f.IniWrite("General", "Entries", "2"); }},
        {"DeleteStrEntry", quietly([](clsIniFile& f) { f.DeleteStrEntry("Entries"); })},
        {"DeleteNumEntry", quietly([](clsIniFile& f) { f.DeleteNumEntry("Entries"); })},
        {"DeleteSection", quietly([](clsIniFile& f) { f.DeleteSection(); })},
    };
    TempFolder folder;
    const std::string path = folder.file("Help.INI");
    ASSERT_TRUE(platform::writeWholeFile(path, "[General]\r\nEntries=3\r\nNode=yes\r\n"));

    // Neither set, only the file, only the section (and a section of blanks).
    const std::vector<std::function<void(clsIniFile&)>> setUps = {
        [](clsIniFile&) {},
        [&path](clsIniFile& f) { f.FullPath(path); },
        [](clsIniFile& f) { f.SectionName("General"); },
        [&path](clsIniFile& f) {
            f.FullPath(path);
            f.SectionName("General");
            f.SectionName("   ");
        },
    };
    for (std::size_t s = 0; s < setUps.size(); ++s) {
        for (const auto& operation : operations) {
            ScriptedPrompts prompts;
            clsIniFile ini(prompts, folder.path());
            setUps[s](ini);
            EXPECT_TRUE(operation.gaveNothing(ini)) << operation.name << " set-up " << s;
            ASSERT_EQ(prompts.transcript().size(), 1U) << operation.name << " set-up " << s;
            EXPECT_EQ(prompts.transcript()[0].text,
                      "[Section] and FileName Not Registered in Private.Ini!");
            EXPECT_EQ(prompts.transcript()[0].title, "IniFile Logic Error");
        }
    }
    EXPECT_EQ(platform::readWholeFile(path), "[General]\r\nEntries=3\r\nNode=yes\r\n");
}

TEST(clsIniFile, GetTFKnowsItsWordsAndFallsBackOnAnyOther) {
    TempFolder folder;
    ScriptedPrompts prompts;
    clsIniFile ini(prompts, folder.path());
    ini.FullPath(folder.file("Help.INI"));
    ini.SectionName("1");
    struct Case {
        const char* stored;
        std::optional<bool> expected;  // nothing: the default, whichever it is
    };
    const std::vector<Case> cases = {
        {" YES ", true},     {"yes", true},      {"Y", true},
        {"True", true},      {"t", true},        {"On", true},
        {"1", true},         {"-1", true},       {"NO", false},
        {"n", false},        {"false", false},   {"F", false},
        {"off", false},      {"0", false},       {"maybe", std::nullopt},
        {"2", std::nullopt}, {"", std::nullopt}, {"YES!", std::nullopt},
    };
    for (const auto& c : cases) {
        ini.PutString("Node", c.stored);
        for (const bool fallback : {false, true}) {
            EXPECT_EQ(ini.GetTF("Node", fallback), c.expected.value_or(fallback))
                << "'" << c.stored << "' default " << fallback;
        }
    }
    EXPECT_TRUE(ini.GetTF("Missing", true));
    EXPECT_TRUE(prompts.transcript().empty());
}

TEST(clsIniFile, ReadsAndWritesTheCurrentSection) {
    TempFolder folder;
    ScriptedPrompts prompts;
    clsIniFile ini(prompts, folder.path());
    ini.FullPath("  " + folder.file("Help.INI") + "  ");
    ini.SectionName(" General ");
    EXPECT_EQ(ini.SectionName(), "General");

    ini.PutInt("Entries", -12);
    ini.PutTF("Node", false);
    ini.PutString("Form Title", "Help Desk");
    EXPECT_TRUE(ini.IniWrite("2", "ListItem", "Starting"));
    EXPECT_EQ(platform::readWholeFile(folder.file("Help.INI")),
              "[General]\r\nEntries=-12\r\nNode=False\r\nForm Title=Help Desk\r\n\r\n"
              "[2]\r\nListItem=Starting\r\n");

    EXPECT_EQ(ini.GetInt("entries", 7), -12);
    for (const auto& [stored, expected] :
         std::vector<std::pair<std::string, int>>{{"42", 42}, {"12px", 12}, {"abc", 0}, {"", 7}}) {
        ini.PutString("ListWidth", stored);
        EXPECT_EQ(ini.GetInt("ListWidth", 7), expected) << stored;
    }
    EXPECT_EQ(ini.GetString("Missing", "<UNKNOWN>"), "<UNKNOWN>");
    EXPECT_EQ(ini.IniRead("2", "listitem", "x"), "Starting");
    EXPECT_EQ(ini.GetSectEntries(),
              (std::vector<std::string>{"Entries", "Node", "Form Title", "ListWidth"}));
    EXPECT_EQ(ini.GetSectEntriesEx()[2], (IniEntry{"Form Title", "Help Desk"}));

    EXPECT_EQ(ini.GetSections(), std::string("General\0"
                                             "2\0",
                                             10));
    EXPECT_EQ(ini.GetSectionsEx(), (std::vector<std::string>{"General", "2"}));
    EXPECT_TRUE(ini.SectExist("GENERAL"));
    EXPECT_FALSE(ini.SectExist("Gen"));

    ini.DeleteNumEntry("Entries");
    ini.DeleteStrEntry("FORM TITLE");
    EXPECT_EQ(ini.GetSectEntries(), (std::vector<std::string>{"Node", "ListWidth"}));
    ini.DeleteSection();
    EXPECT_FALSE(ini.SectExist("General"));
    EXPECT_TRUE(prompts.transcript().empty());
}

TEST(clsIniFile, SplitsPathsIntoCapitalParts) {
    struct Case {
        const char* path;
        const char* folder;
        const char* name;
        const char* extension;
    };
    const std::vector<Case> cases = {
        {"/home/ann/Data/Help.ini", "/HOME/ANN/DATA/", "HELP", "INI"},
        {"/srv/v1.2/notes", "/SRV/V1.2/", "NOTES", ""},
        {"/srv/archive.tar.gz", "/SRV/", "ARCHIVE.TAR", "GZ"},
        {"/srv/data/", "/SRV/DATA/", "", ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(clsIniFile::ExtractPath(c.path), c.folder) << c.path;
        EXPECT_EQ(clsIniFile::ExtractName(c.path, NamePart::Name), c.name) << c.path;
        EXPECT_EQ(clsIniFile::ExtractName(c.path, NamePart::Extension), c.extension) << c.path;
    }
    const std::string here = platform::toUpper(std::filesystem::current_path().string());
    EXPECT_EQ(clsIniFile::ExtractPath("Help.INI"), platform::joinPath(here, ""));
}

TEST(clsIniFile, UseWinINIPointsAtTheMainFileAndBack) {
    TempFolder folder;
    ScriptedPrompts prompts;
    clsIniFile ini(prompts, folder.path());
    const std::string privateFile = folder.file("help.ini");
    ini.FullPath(privateFile);
    ini.SectionName("Desktop");

    ini.UseWinINI(true);
    EXPECT_EQ(ini.FullPath(), folder.file("WIN.INI"));
    EXPECT_EQ(ini.PrivPath(), privateFile);
    EXPECT_EQ(ini.FileExt(), "INI");
    ini.PutString("Wallpaper", "none");
    EXPECT_EQ(IniStore(folder.file("WIN.INI")).ReadKey("desktop", "wallpaper"), "none");
    EXPECT_FALSE(platform::fileExists(privateFile));

    ini.UseWinINI(false);
    EXPECT_EQ(ini.GetString("Wallpaper", "default"), "default");
    EXPECT_EQ(ini.filepath(), platform::toUpper(folder.path()) + "/");
    EXPECT_TRUE(prompts.transcript().empty());
}

}  // namespace
}  // namespace ovd::settings
