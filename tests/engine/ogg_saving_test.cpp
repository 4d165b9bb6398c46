// An Ogg Vorbis file saved again and again while the take grows: each save puts
// out its last page, so a file left as a save wrote it reads to that save.

#include <gtest/gtest.h>
#include <unistd.h>

#include "engine/codecs.h"
#include "engine/virtual_backend.h"
#include "engine/wave_editor.h"
#include "platform/files.h"
#include "platform/system_queries.h"
#include "save_and_wait.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"
#include "test_signal.h"

namespace ovd::engine {
namespace {

using ovd::testing::TempFolder;
using ovd::testing::VirtualEventLoop;
using platform::Milliseconds;
using testing::commandOutput;

TEST(OggSavingTest, AnOggTakeCutBetweenTwoSavesReadsToTheLastSave) {
    TempFolder folder;
    VirtualEventLoop loop;
    VirtualBackend backend{loop, {}};
    WaveEditor editor{loop, backend, std::make_shared<Clipboard>(), "AudioEditor1"};
    editor.setTempFileName(folder.path() + "/Temp");
    TargetFormat target;
    target.word = FormatWord::OGG;
    target.sampleRate = 16000;
    target.channels = 1;
    const std::string path = folder.file("Letter 1.ogg");
    ASSERT_TRUE(editor.New(16000, 1).ok());
    editor.chooseFormat(target);
    ASSERT_TRUE(editor.Record().ok());
    const auto save = [&] {
        const auto saved = testing::saveAndWait(editor, loop, path);
        EXPECT_TRUE(saved) << saved.error();
    };
    for (const int seconds : {10, 7}) {
        loop.advance(Milliseconds(seconds * 1000));
        save();
        const std::string cut = folder.file("cut.ogg");
        ASSERT_TRUE(platform::writeWholeFile(cut, *platform::readWholeFile(path)).ok());
        EXPECT_EQ(commandOutput("ffprobe -v error -show_entries stream=codec_name -of csv=p=0 '" +
                                cut + "'"),
                  "vorbis\n");
        const std::size_t decoded =
            commandOutput("ffmpeg -v error -i '" + cut + "' -f s16le -ac 1 - 2>/dev/null").size() /
            2;
        // The encoder keeps its last block until the take goes on.
        EXPECT_NEAR(static_cast<double>(decoded), static_cast<double>(editor.Length()),
                    0.2 * 16000);
    }
    editor.Stop();
    editor.Close();
    EXPECT_EQ(commandOutput("ffmpeg -v error -i '" + path + "' -f null - 2>&1"), "");
    const auto heard = AudioFileReader::open(path);
    ASSERT_TRUE(heard) << heard.error();
    EXPECT_NEAR(static_cast<double>(testing::readAll(**heard).size()), 17.0 * 16000, 0.05 * 16000);
}

}  // namespace
}  // namespace ovd::engine
