// A take on a disk that fills up: the station warns in red while the author
// speaks, and the take goes on unless the settings say to stop it.

#include <sys/mount.h>

#include <cerrno>
#include <cstring>

#include "dictation_fixture.h"

namespace ovd::dictation::testing {
namespace {

class DiskFullTest : public DictationTest {
protected:
    void SetUp() override {
        platform::createFolder(smallDisk);
        if (::mount("tmpfs", smallDisk.c_str(), "tmpfs", 0, "size=1m") != 0) {
            GTEST_SKIP() << "a small tmpfs can't be mounted here (" << std::strerror(errno)
                         << "); the disk-full warning is not tried";
        }
        mounted = true;
        platform::createFolder(smallDisk + "/Temp");
        config.record.CaptureFilePath = smallDisk;
        config.WriteConfig();
        rebuild();
    }
    void TearDown() override {
        dictation.reset();
        editor1.Close();
        editor21.Close();
        if (mounted) ::umount2(smallDisk.c_str(), MNT_DETACH);
    }
    std::string smallDisk = folder.file("small");
    bool mounted = false;
};

TEST_F(DiskFullTest, TheWarningComesWhileRecordingAndTheTakeGoesOn) {
    d().Image2_Click();
    d().MMControl1_RecordClick();
    run(2000);
    EXPECT_EQ(view().Label40, "Recording");
    EXPECT_FALSE(view().Label40Warning);

    // A megabyte holds about thirty seconds; the warning keeps room for three
    // times what the work file holds.
    run(9000);
    EXPECT_EQ(view().Label40.rfind("Warning -- Number of Free Bytes : ", 0), 0u) << view().Label40;
    EXPECT_TRUE(view().Label40Warning);
    EXPECT_TRUE(logged(state().Filename + " Disk Full Warning during Recording"));
    EXPECT_TRUE(state().Recordingstatus) << "without the stop setting the take goes on";
    EXPECT_EQ(editor1.State(), 2);
}

}  // namespace
}  // namespace ovd::dictation::testing
