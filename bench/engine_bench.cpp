// Figures for the wave editor: reads polled 40 times a second, an insert into an
// hour-long take, memory for a working day's take, and saving against a plain copy
// and the lame command line. Run: build/release/bench/engine_bench [scratch folder]

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "engine/pulse_backend.h"
#include "engine/virtual_backend.h"
#include "engine/wave_editor.h"
#include "platform/system_queries.h"
#include "support/pulse_daemon.h"
#include "support/real_time_event_loop.h"
#include "support/virtual_event_loop.h"

namespace {

using namespace ovd;
using Clock = std::chrono::steady_clock;

constexpr int kRate = 16000;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

long residentKilobytes() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("VmRSS:", 0) == 0) return std::atol(line.c_str() + 6);
    }
    return -1;
}

void record(testing::VirtualEventLoop& loop, engine::WaveEditor& editor, int seconds) {
    if (!editor.Record().ok()) std::abort();
    for (int i = 0; i < seconds; ++i) loop.advance(platform::Milliseconds(1000));
    editor.Stop();
}

double timedSave(testing::VirtualEventLoop& loop, engine::WaveEditor& editor,
                 const std::string& path) {
    const auto start = Clock::now();
    const auto outcome = editor.SaveAs(path);
    if (!outcome.ok()) std::abort();
    while (editor.saving() || !platform::FileAvailable(path)) {
        loop.runPending();
        ::usleep(1000);
    }
    loop.runPending();
    if (const auto& saved = outcome->get(); !saved) {
        std::fprintf(stderr, "save failed: %s\n", saved.error().c_str());
        std::abort();
    }
    return secondsSince(start);
}

double timedCommand(const std::string& command) {
    const auto start = Clock::now();
    if (std::system(command.c_str()) != 0) std::fprintf(stderr, "failed: %s\n", command.c_str());
    return secondsSince(start);
}

// From Record to the first captured sample, through a private sound server.
void measureCaptureStart(const std::string& folder) {
    testing::PulseDaemon daemon;
    if (!daemon.running()) {
        std::printf("Record to first sample (sound server): not measured: %s\n",
                    daemon.error().c_str());
        return;
    }
    testing::RealTimeEventLoop loop;
    auto connected = engine::PulseBackend::connect(loop);
    if (!connected) {
        std::printf("Record to first sample (sound server): not measured: %s\n",
                    connected.error().c_str());
        return;
    }
    const std::unique_ptr<engine::PulseBackend> backend = std::move(*connected);
    engine::WaveEditor editor(loop, *backend, std::make_shared<engine::Clipboard>(), "latency");
    editor.setTempFileName(folder);
    for (int round = 0; round < 3; ++round) {
        if (!editor.New(kRate, 1).ok()) return;
        const auto start = Clock::now();
        if (!editor.Record().ok()) return;
        loop.runUntil([&] { return editor.Length() > 0; }, platform::Milliseconds(3000));
        std::printf("Record to first sample (sound server), take %d: %.1f ms\n", round + 1,
                    secondsSince(start) * 1e3);
        editor.Stop();
    }
    editor.Close();
}

}  // namespace

int main(int argc, char** argv) {
    const std::string folder =
        argc > 1 ? argv[1] : std::filesystem::temp_directory_path().string() + "/ovd-bench";
    std::filesystem::create_directories(folder);
    measureCaptureStart(folder);

    testing::VirtualEventLoop loop;
    engine::VirtualBackend backend(loop, {});
    auto clipboard = std::make_shared<engine::Clipboard>();
    engine::WaveEditor dictation(loop, backend, clipboard, "AudioEditor1");
    engine::WaveEditor scratch(loop, backend, clipboard, "AudioEditor21");
    dictation.setTempFileName(folder);
    scratch.setTempFileName(folder);

    // Reads the position display makes 40 times a second.
    if (!dictation.New(kRate, 1).ok()) return 1;
    record(loop, dictation, 3600);
    constexpr int kReads = 10'000'000;
    // Through the contract, as the position display reads it, and through a pointer
    // the optimiser must reload, so every read is really made.
    engine::AudioEditor* volatile polled = &dictation;
    long long sink = 0;
    auto start = Clock::now();
    for (int i = 0; i < kReads; ++i) {
        engine::AudioEditor* editor = polled;
        sink += editor->State() + editor->Length() + editor->CursorPosition();
        asm volatile("" : : "r"(sink) : "memory");
    }
    std::printf("State+Length+CursorPosition: %.2f ns per read (%lld)\n",
                secondsSince(start) * 1e9 / (3.0 * kReads), sink % 7);

    // Ten seconds inserted into the middle of an hour.
    if (!scratch.New(kRate, 1).ok()) return 1;
    record(loop, scratch, 10);
    scratch.setSelectionStart(0);
    scratch.setSelectionEnd(scratch.Length());
    scratch.setSelectionActive(true);
    if (!scratch.Copy().ok()) return 1;
    dictation.setCursorPosition(dictation.Length() / 2);
    start = Clock::now();
    if (!dictation.Paste().ok()) return 1;
    std::printf("Insert 10 s into the middle of 60 min: %.3f ms\n", secondsSince(start) * 1e3);

    // Saving an hour, against a plain copy and the lame command line.
    const std::string work = dictation.TempFileName();
    engine::TargetFormat wav;
    wav.sampleRate = kRate;
    dictation.chooseFormat(wav);
    const double wavSeconds = timedSave(loop, dictation, folder + "/hour.wav");
    const double copySeconds = timedCommand("cp '" + work + "' '" + folder + "/copy.wav'");
    std::printf("SaveAs 60 min WAV: %.3f s; plain copy: %.3f s; ratio %.2f\n", wavSeconds,
                copySeconds, wavSeconds / copySeconds);
    engine::TargetFormat mp3;
    mp3.word = engine::FormatWord::MP3;
    mp3.sampleRate = kRate;
    mp3.bitrateKbps = 32;
    dictation.chooseFormat(mp3);
    const double mp3Seconds = timedSave(loop, dictation, folder + "/hour.mp3");
    const double lameSeconds = timedCommand("lame --quiet --cbr -b 32 -m m '" + folder +
                                            "/hour.wav' '" + folder + "/lame.mp3'");
    std::printf("SaveAs 60 min MP3: %.3f s; lame: %.3f s; ratio %.2f\n", mp3Seconds, lameSeconds,
                mp3Seconds / lameSeconds);

    // The periodic save after 16 s more of the take.
    dictation.setCursorPosition(dictation.Length());
    record(loop, dictation, 16);
    const double againSeconds = timedSave(loop, dictation, folder + "/hour.mp3");
    std::printf("Periodic MP3 save after 16 s more: %.3f s = %.1f %% of the whole encode\n",
                againSeconds, 100.0 * againSeconds / mp3Seconds);
    dictation.Close();
    scratch.Close();

    // A working day's take in memory.
    engine::WaveEditor day(loop, backend, clipboard, "day");
    day.setTempFileName(folder);
    if (!day.New(kRate, 1).ok()) return 1;
    const long before = residentKilobytes();
    record(loop, day, 8 * 3600);
    std::printf("8 h at 16 kHz mono: resident %.1f MB (%.1f MB before the take)\n",
                static_cast<double>(residentKilobytes()) / 1024.0,
                static_cast<double>(before) / 1024.0);
    day.Close();
    std::filesystem::remove_all(folder);
    return 0;
}
