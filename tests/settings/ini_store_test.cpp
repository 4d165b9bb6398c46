// The INI text form: how names are found, how long values come back, and exactly
// what each kind of write leaves in the file.

#include "settings/ini_store.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/files.h"
#include "support/temp_folder.h"

namespace ovd::settings {
namespace {

using testing::TempFolder;

unsigned permissionsOf(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) return 0;
    return info.st_mode & 0777U;
}

TEST(IniDocument, FindsSectionsAndKeysWithoutRegardToCaseOrBlanks) {
    const auto document = IniDocument::parse(
        "[Company]\n"
        "CompanyName =  Acme Transcripts \n"
        "name=Ann\n"
        "; EncryptKey=not a key\n"
        "[Key]\r\n"
        "EncryptKey=k1=k2\r\n"
        "[company]\n"
        "Name=Second section of the same name\n");
    struct Case {
        const char* section;
        const char* key;
        std::optional<std::string> expected;
    };
    const std::vector<Case> cases = {
        {"COMPANY", "companyname", "Acme Transcripts"},
        {"company", "NAME", "Ann"},
        {" Key ", "encryptkey", "k1=k2"},
        {"Company", "; EncryptKey", std::nullopt},
        {"Company", "EncryptKey", std::nullopt},
        {"Company", "Email", std::nullopt},
        {"Clients", "Name", std::nullopt},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(document.value(c.section, c.key), c.expected) << c.section << "/" << c.key;
    }
    EXPECT_EQ(document.sectionNames(), (std::vector<std::string>{"Company", "Key", "company"}));
    EXPECT_EQ(document.sectionEntries("KEY"), (std::vector<IniEntry>{{"EncryptKey", "k1=k2"}}));
}

TEST(IniStore, ReadKeyGivesAtMostNinetyNineCharacters) {
    TempFolder folder;
    const IniStore store(folder.file("ClientsInfo.ini"));
    for (const std::size_t length : {0U, 98U, 99U, 100U, 250U}) {
        const std::string value(length, 'v');
        ASSERT_TRUE(store.WriteKey("North", "RECEncryptKey", value));
        EXPECT_EQ(store.ReadKey("North", "RECEncryptKey").size(), std::min<std::size_t>(length, 99))
            << length;
        EXPECT_EQ(store.readValue("North", "RECEncryptKey"), value);
    }
    EXPECT_EQ(store.ReadKey("North", "Email"), "");
    EXPECT_EQ(IniStore(folder.file("none.ini")).ReadKey("North", "Email"), "");
}

TEST(IniStore, EachWriteLeavesTheExpectedText) {
    struct Case {
        const char* what;
        std::optional<std::string> before;  // nothing: no file yet
        std::function<bool(const IniStore&)> write;
        std::string after;
    };
    const std::vector<Case> cases = {
        {"a write to a missing file creates it", std::nullopt,
         [](const IniStore& s) { return s.WriteKey("Company", "Name", "Ann"); },
         "[Company]\r\nName=Ann\r\n"},
        {"a value is replaced where it stands, the key keeps its spelling",
         "; kept\n[Company]\nNAME = Old\nCity=Here\n",
         [](const IniStore& s) { return s.WriteKey("company", "name", "New"); },
         "; kept\r\n[Company]\r\nNAME=New\r\nCity=Here\r\n"},
        {"a new key goes at the end of its section, before its blank lines",
         "[A]\nx=1\n\n[B]\ny=2\n", [](const IniStore& s) { return s.WriteKey("a", "z", "3"); },
         "[A]\r\nx=1\r\nz=3\r\n\r\n[B]\r\ny=2\r\n"},
        {"a new section goes at the end of the file", "[A]\nx=1\n",
         [](const IniStore& s) { return s.WriteKey("B", "y", "2"); },
         "[A]\r\nx=1\r\n\r\n[B]\r\ny=2\r\n"},
        {"an empty text is written as such", "[A]\nx=1\n",
         [](const IniStore& s) { return s.WriteKey("A", "x", ""); }, "[A]\r\nx=\r\n"},
        {"a write of nothing removes the key", "[A]\nx=1\ny=2\n",
         [](const IniStore& s) { return s.WriteKey("A", "X", std::nullopt); }, "[A]\r\ny=2\r\n"},
        {"a value can't bring a line of its own", "[A]\n",
         [](const IniStore& s) { return s.WriteKey("A", "x", "one\r\n[Evil]\r\nk=v"); },
         "[A]\r\nx=one\r\n"},
        {"lines that are not entries stay as they are", "garbage\n[A]\nnot a key\n",
         [](const IniStore& s) { return s.WriteKey("A", "k", "v"); },
         "garbage\r\n[A]\r\nnot a key\r\nk=v\r\n"},
        {"removing from a missing file creates nothing", std::nullopt,
         [](const IniStore& s) {
             return s.WriteKey("A", "x", std::nullopt) && s.deleteSection("A");
         },
         "<no file>"},
        {"a whole section is removed, the others kept", "[A]\nx=1\n[B]\ny=2\n[C]\nz=3\n",
         [](const IniStore& s) { return s.deleteSection("b"); }, "[A]\r\nx=1\r\n[C]\r\nz=3\r\n"},
    };
    for (const auto& c : cases) {
        TempFolder folder;
        const std::string path = folder.file("Test.ini");
        if (c.before) {
            ASSERT_TRUE(platform::writeWholeFile(path, *c.before));
        }
        const IniStore store(path);
        EXPECT_TRUE(c.write(store)) << c.what;
        EXPECT_EQ(platform::readWholeFile(path).value_or("<no file>"), c.after) << c.what;
    }
}

TEST(IniStore, RefusesWhatTheFileCouldNotHold) {
    TempFolder folder;
    const IniStore unreachable(folder.file("no such folder/ClientsInfo.ini"));
    EXPECT_FALSE(unreachable.WriteKey("North", "Email", "a@b"));

    const IniStore store(folder.file("ClientsInfo.ini"));
    for (const char* key : {"a=b", ";note", "[North]"}) {
        EXPECT_FALSE(store.WriteKey("North", key, "1")) << key;
    }
    EXPECT_FALSE(store.exists());
}

TEST(IniStore, OwnerOnlyFilesAreCreatedAndRewrittenForTheOwnerAlone) {
    TempFolder folder;
    const std::string path = folder.file("OurCompanyInfo.ini");
    const IniStore store(path, FileAccess::OwnerOnly);
    ASSERT_TRUE(store.WriteKey("Key", "EncryptKey", "secret"));
    EXPECT_EQ(permissionsOf(path), 0600U);

    ::chmod(path.c_str(), 0644);
    ASSERT_TRUE(store.WriteKey("Company", "PassPopServer1", "hunter2"));
    EXPECT_EQ(permissionsOf(path), 0600U);
    EXPECT_EQ(store.ReadKey("Key", "EncryptKey"), "secret");
}

}  // namespace
}  // namespace ovd::settings
