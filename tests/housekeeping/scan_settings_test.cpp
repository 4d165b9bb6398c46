// FileScan.cfg: read, written back with its spare field, and a file of garbage
// that gives the defaults and says why.

#include "housekeeping/scan_settings.h"

#include <gtest/gtest.h>

#include "platform/files.h"
#include "support/temp_folder.h"

namespace ovd::housekeeping::testing {
namespace {

class ScanSettingsTest : public ::testing::Test {
  protected:
    void write(const std::string& text) {
        ASSERT_TRUE(platform::writeWholeFile(scanSettingsPath(data.path()), text));
    }
    ovd::testing::TempFolder data;
};

TEST_F(ScanSettingsTest, ARecordComesBackAsWrittenWithItsSpareField) {
    write("\"/home/ann\",\"/srv/letters\",\"Friday\",7,30,\"AM\",\"kept as it is\",45\r\n");
    const LoadedScanSettings first = LoadScanSettings(data.path());
    ASSERT_TRUE(first.damage.empty()) << first.damage;
    EXPECT_EQ(first.settings.DestPath.toText(), "/srv/letters");
    EXPECT_EQ(daysToKeep(first.settings.DeleteDays), 45);

    ASSERT_TRUE(SaveScanSettings(data.path(), first.settings));
    EXPECT_EQ(platform::readWholeFile(scanSettingsPath(data.path())).value(),
              "\"/home/ann\",\"/srv/letters\",\"Friday\",7,30,\"AM\",\"kept as it is\",45\r\n");
}

TEST_F(ScanSettingsTest, EmptyFieldsTakeTheirDefaults) {
    write("\"\",,,,,,,\r\n");
    const LoadedScanSettings loaded = LoadScanSettings(data.path());
    EXPECT_TRUE(loaded.damage.empty());
    EXPECT_EQ(loaded.settings.DestPath.toText(), data.path() + "/Recordings");
    EXPECT_EQ(loaded.settings.FileScanAMPM.toText(), "PM");
    EXPECT_FALSE(daysToKeep(loaded.settings.DeleteDays));

    ScanSettings blank;
    ASSERT_TRUE(SaveScanSettings(data.path(), blank));
    EXPECT_EQ(platform::readWholeFile(scanSettingsPath(data.path())).value(),
              "\"\",,,,,\"PM\",,\r\n");
}

TEST_F(ScanSettingsTest, GarbageGivesTheDefaultsAndSaysWhy) {
    const struct {
        std::string content;
        std::string reason;
    } cases[] = {
        {std::string("\x7f"
                     "ELF\x02\x01\x01\0\0\0,,,\x03",
                     14),
         "fields where 8 belong"},
        {"\"/a\",\"/b\",\"Friday\",7,30,\"AM\",\"x\",45,\"extra\"\r\n", "9 fields"},
        {"\"/a\",\"/b\x01\",1,2,3,\"AM\",,4\r\n", "field 2 holds text"},
        {"\"/a\",17,1,2,3,\"AM\",,4\r\n", "its folder is no path"},
        {std::string(100000, 'x'), "not one short record"},
    };
    for (const auto& c : cases) {
        write(c.content);
        const LoadedScanSettings loaded = LoadScanSettings(data.path());
        EXPECT_NE(loaded.damage.find(c.reason), std::string::npos) << loaded.damage;
        EXPECT_EQ(loaded.settings.DestPath.toText(), data.path() + "/Recordings");
        EXPECT_FALSE(daysToKeep(loaded.settings.DeleteDays)) << "garbage sets no age";
    }
}

TEST(DaysToKeep, OnlyAWholeNumberOfZeroOrMoreIsAnAge) {
    using settings::ConfigVariant;
    EXPECT_EQ(daysToKeep(ConfigVariant(30)), 30);
    EXPECT_EQ(daysToKeep(ConfigVariant("30")), 30);
    EXPECT_EQ(daysToKeep(ConfigVariant(0)), 0) << "0 is the user's to choose";
    for (const ConfigVariant& none : {ConfigVariant(), ConfigVariant(""), ConfigVariant("abc"),
                                      ConfigVariant(-3), ConfigVariant(2.5), ConfigVariant(true)}) {
        EXPECT_FALSE(daysToKeep(none)) << none.toText();
    }
}

}  // namespace
}  // namespace ovd::housekeeping::testing
