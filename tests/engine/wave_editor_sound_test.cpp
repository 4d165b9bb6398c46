// The two wave editors on a real sound server: a file opened in one is played into
// the test sink while the other records the sink, as a dictation is heard back.

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "engine/pulse_backend.h"
#include "engine/wave_editor.h"
#include "support/pulse_daemon.h"
#include "support/real_time_event_loop.h"
#include "support/temp_folder.h"
#include "test_signal.h"

namespace ovd::engine {
namespace {

using ovd::testing::PulseDaemon;
using std::chrono::milliseconds;

int indexNamed(DeviceList& list, const std::string& name) {
    for (int i = 0; i < list.Count(); ++i) {
        if (list.Name(i) == name) return i;
    }
    return -1;
}

TEST(WaveEditorSoundTest, AFilePlayedIntoTheSinkIsRecordedBackWithItsLengthAndPitch) {
    PulseDaemon daemon;
    ASSERT_TRUE(daemon.running()) << daemon.error();
    ovd::testing::TempFolder folder;
    const std::string tone = folder.file("tone.wav");
    ASSERT_EQ(
        std::system(("sox -n -r 16000 -c 1 -b 16 '" + tone + "' synth 2 sine 440 vol 0.5").c_str()),
        0);

    ovd::testing::RealTimeEventLoop loop;
    auto connected = PulseBackend::connect(loop);
    ASSERT_TRUE(connected) << connected.error();
    const std::unique_ptr<PulseBackend> backend = std::move(*connected);
    ASSERT_TRUE(backend->recordingDevices().setCurrent(
        indexNamed(backend->recordingDevices(), PulseDaemon::kMonitorLabel)));
    ASSERT_TRUE(backend->playbackDevices().setCurrent(
        indexNamed(backend->playbackDevices(), PulseDaemon::kSinkLabel)));
    auto clipboard = std::make_shared<Clipboard>();
    WaveEditor player(loop, *backend, clipboard, "player");
    WaveEditor recorder(loop, *backend, clipboard, "recorder");
    player.setTempFileName(folder.path());
    recorder.setTempFileName(folder.path());

    ASSERT_TRUE(player.Open(tone).ok());
    EXPECT_EQ(player.Length(), 32000);
    ASSERT_TRUE(recorder.New(16000, 1).ok());
    ASSERT_TRUE(recorder.Record().ok());
    loop.runFor(milliseconds(200));
    ASSERT_TRUE(player.Play(kPlayToEnd).ok());
    EXPECT_TRUE(loop.runUntil([&] { return player.State() == 0; }, milliseconds(6000)));
    EXPECT_EQ(player.CursorPosition(), player.Length());
    loop.runFor(milliseconds(300));
    recorder.Stop();

    std::vector<std::int16_t> take(static_cast<std::size_t>(recorder.Length()));
    take.resize(recorder.readFrames(0, take.data(), take.size()));
    std::size_t first = take.size();
    std::size_t last = 0;
    for (std::size_t i = 0; i < take.size(); ++i) {
        if (std::abs(take[i]) > 2000) {
            first = std::min(first, i);
            last = i;
        }
    }
    ASSERT_LT(first, last) << "the tone was not heard";
    const std::vector<std::int16_t> heard(take.begin() + static_cast<std::ptrdiff_t>(first),
                                          take.begin() + static_cast<std::ptrdiff_t>(last));
    EXPECT_NEAR(static_cast<double>(heard.size()) / 16000.0, 2.0, 2.0 * 0.05);
    EXPECT_NEAR(testing::toneHertz(heard, 1, 16000), 440.0, 440.0 * 0.02);
}

}  // namespace
}  // namespace ovd::engine
