// Figures for the dictation's timers: one timCurPos tick (40 a second while a
// file is open) and one timRecord tick (4 a second while recording), the latter
// with its disk check summing a Temp folder of 1,000 work files.
// Run: build/release/bench/dictation_bench

#include <chrono>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>

#include "dictation/dictation.h"
#include "engine/virtual_backend.h"
#include "engine/wave_editor.h"
#include "platform/files.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace {

using namespace ovd;
using Clock = std::chrono::steady_clock;

class SilentPeer : public dictation::PeerNotices {
  public:
    [[nodiscard]] bool linkOn() const override { return false; }
    bool send(const std::string&, const std::string&) override { return false; }
};

template <typename Tick>
double microsecondsPerTick(int repeats, Tick tick) {
    const auto start = Clock::now();
    for (int i = 0; i < repeats; ++i) tick();
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count() / repeats;
}

}  // namespace

int main() {
    testing::TempFolder folder;
    const std::string recordings = folder.file("Rec");
    const std::string temp = recordings + "/Temp";
    platform::Result<void> ready = platform::createFolder(temp);
    // A Temp folder as a busy station leaves it: a thousand work files.
    for (int i = 0; ready && i < 1000; ++i) {
        ready = platform::writeWholeFile(temp + "/old" + std::to_string(i) + ".tmp",
                                         std::string(4096, 'x'));
    }
    if (!ready) {
        std::cerr << ready.error() << "\n";
        return 1;
    }

    testing::VirtualEventLoop loop;
    settings::ConfigFile config(folder.path());
    config.record.CaptureFilePath = recordings;
    config.record.FileLabelActive = true;
    config.record.FileLabelText = "AB";
    config.record.SequentialNumbering = true;
    config.record.FileNameIncrement = 1;
    config.record.Places = 4;
    config.record.RecordingFormats = "OPT2";
    config.record.FormatType = "WAV";
    config.record.Frequency = "16000";
    config.record.Channel = "MONO";
    config.record.NoLogging = true;
    config.record.QDUDisconnected = true;
    config.WriteConfig();
    settings::EventLog log(loop, folder.path(), config.record);
    testing::ScriptedPrompts prompts;
    engine::VirtualBackend backend(loop, {});
    auto clipboard = std::make_shared<engine::Clipboard>();
    engine::WaveEditor editor1(loop, backend, clipboard, "AudioEditor1");
    engine::WaveEditor editor21(loop, backend, clipboard, "AudioEditor21");
    editor1.setTempFileName(temp);
    editor21.setTempFileName(temp);
    engine::PromptPlayer voice(backend, folder.path());
    settings::SpeakersTable speakers(folder.path());
    SilentPeer peer;
    dictation::Dictation d(
        {loop, config, log, prompts, editor1, editor21, voice, speakers, peer, folder.path()});
    d.start();

    // A minute's take, then the file stands open at its end.
    d.newLetter();
    d.recordTake();
    loop.advance(std::chrono::seconds(60));
    const double recordTick = microsecondsPerTick(2000, [&] { d.timRecord_Timer(); });
    d.stop();
    const double curPosTick = microsecondsPerTick(20000, [&] { d.timCurPos_Timer(); });

    std::printf("file open: %s, %s shown as %s, position %s of %d s\n",
                d.state().flgfileOpen1 ? "yes" : "no", d.state().Filename.c_str(),
                d.view().statusPanel2.c_str(), d.view().timeElapsed.c_str(),
                d.state().iTotalSecFile);
    std::printf("timCurPos tick, a minute's file open:               %8.2f us (target < 100 us)\n",
                curPosTick);
    std::printf("timRecord tick with the Temp folder of 1,000 files: %8.2f us (4 a second)\n",
                recordTick);
    return 0;
}
