// What a crash leaves around a take, and a disk without room: the recovery
// names a take after its letter, clears what an interrupted save left, and
// never trades the work file for copies cut short.

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/statvfs.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "../engine/test_signal.h"
#include "conversion/letter_notes.h"
#include "conversion/scan_convert.h"
#include "engine/codecs.h"
#include "engine/work_file.h"
#include "platform/files.h"
#include "recovery_fixture.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::conversion {
namespace {

using platform::Milliseconds;

using RecoveryLeftoversTest = testing::RecoveryFixture;

TEST_F(RecoveryLeftoversTest, ATakeIsRecoveredUnderItsLetterAndTheInterruptedSaveIsCleared) {
    useSettings();
    // The end of letter was saving AB0007 when the station was killed.
    const std::string letter = recordings + "/AB0007.MP3";
    const std::string take = workFile("ovd9-AudioEditor1-3.tmp", 2.4);
    noteLetterOfWorkFile(take, letter);
    EXPECT_TRUE(platform::writeWholeFile(letter, ""));
    EXPECT_TRUE(platform::writeWholeFile(letter + kPartialSuffix, std::string(5000, 'x')));
    // A letter whose name can't carry a length and an extension keeps the work file's name.
    const std::string longTake = workFile("ovd9-AudioEditor1-4.tmp", 1.2);
    noteLetterOfWorkFile(longTake, recordings + "/" + std::string(240, 'L') + ".MP3");
    // A take still being recorded by a running station (listed last: a held file ends
    // the round): its letter is not touched.
    const auto created = engine::WorkFile::create(temp() + "/ovd99-AudioEditor1-1.tmp", {16000, 1});
    ASSERT_TRUE(created) << created.error();
    const auto& held = *created;
    const std::string liveLetter = recordings + "/AB0008.MP3";
    noteLetterOfWorkFile(held->path(), liveLetter);
    EXPECT_TRUE(platform::writeWholeFile(liveLetter, ""));

    recoverAtStart();

    EXPECT_TRUE(platform::fileExists(recordings + "/AB0007-2.MP3")) << log.text();
    EXPECT_TRUE(platform::fileExists(recordings + "/BACK/AB0007-2.MP3"));
    EXPECT_FALSE(platform::fileExists(letter)) << "an empty letter left by the crash";
    EXPECT_FALSE(platform::fileExists(letter + kPartialSuffix));
    EXPECT_TRUE(platform::fileExists(recordings + "/ovd9-AudioEditor1-4-1.MP3")) << log.text();
    EXPECT_FALSE(platform::fileExists(take));
    EXPECT_TRUE(platform::fileExists(liveLetter));
    EXPECT_TRUE(platform::fileExists(held->path()));
    EXPECT_EQ(letterOfWorkFile(held->path()), liveLetter);
    EXPECT_FALSE(letterOfWorkFile(take)) << "the note goes with its take";
    EXPECT_TRUE(crashStateStored()) << "a take still waits, so the next start tries again";
}

class FullDiskRecoveryTest : public RecoveryLeftoversTest {
  protected:
    void SetUp() override {
        EXPECT_TRUE(platform::createFolder(recordings));
        if (::mount("tmpfs", recordings.c_str(), "tmpfs", 0, "size=1m") != 0) {
            GTEST_SKIP() << "a small tmpfs can't be mounted here (" << std::strerror(errno) << ")";
        }
        mounted = true;
        useSettings();
    }
    void TearDown() override {
        if (mounted) ::umount2(recordings.c_str(), MNT_DETACH);
    }
    // Fills the disk until only this many bytes are free.
    void leaveFree(std::uint64_t bytes) {
        struct statvfs disk {};
        ASSERT_EQ(::statvfs(recordings.c_str(), &disk), 0);
        const std::uint64_t free = static_cast<std::uint64_t>(disk.f_bavail) * disk.f_frsize;
        ASSERT_GT(free, bytes);
        ASSERT_TRUE(platform::writeWholeFile(filler(), std::string(free - bytes, 'f')));
    }
    [[nodiscard]] std::string filler() const { return recordings + "/filler"; }
    bool mounted = false;
};

TEST_F(FullDiskRecoveryTest, ARecoveryShortOfRoomSaysSoLeavesTheTakeWholeAndTriesAgainLater) {
    // Twenty seconds: its MP3 needs some 80 kB, and the disk keeps 16 kB.
    const std::string take = workFile("ovd11-AudioEditor1-1.tmp", 20.0);
    const auto bytes = platform::fileSize(take);
    ASSERT_TRUE(bytes);
    leaveFree(16 * 1024);

    recoverAtStart();

    EXPECT_EQ(platform::fileSize(take).valueOr(0), *bytes) << "the work file stays as it was\n"
                                                           << log.text();
    EXPECT_EQ(log.text().find("Deleted"), std::string::npos) << log.text();
    EXPECT_TRUE(platform::filesInFolder(recordings + "/Save").empty()) << "no copy cut short";
    EXPECT_TRUE(platform::filesInFolder(recordings + "/BACK").empty());
    EXPECT_EQ(platform::filesInFolder(recordings), std::vector<std::string>{"filler"});
    ASSERT_EQ(prompts.texts().size(), 1u);
    EXPECT_NE(prompts.texts()[0].find("not enough disk space to recover ovd11-AudioEditor1-1.tmp"),
              std::string::npos)
        << prompts.texts()[0];
    EXPECT_TRUE(crashStateStored()) << "the next start tries again by itself";

    // With room again, the next start recovers it.
    std::filesystem::remove(filler());
    recoverAtStart();
    EXPECT_TRUE(platform::fileExists(recordings + "/ovd11-AudioEditor1-1-20.MP3")) << log.text();
    EXPECT_FALSE(platform::fileExists(take));
    EXPECT_FALSE(crashStateStored());
}

}  // namespace
}  // namespace ovd::conversion
