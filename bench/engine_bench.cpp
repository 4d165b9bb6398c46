// Figures for the wave editor: reads polled 40 times a second, an insert into an
// hour-long take, memory for a working day's take, saving against a plain copy
// and the lame command line, the periodic save of a grown take in every format
// against its whole encode, and the recording's CPU with its work file kept durable. Run:
// build/release/bench/engine_bench [scratch folder]

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "bench_figures.h"
#include "engine/pulse_backend.h"
#include "engine/virtual_backend.h"
#include "engine/wave_editor.h"
#include "engine/work_file.h"
#include "platform/system_queries.h"
#include "support/pulse_daemon.h"
#include "support/real_time_event_loop.h"
#include "support/virtual_event_loop.h"

namespace {

using namespace ovd;
using namespace ovd::bench;

constexpr int kRate = 16000;

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

struct NamedFormat {
    const char* name;
    engine::TargetFormat target;
};

std::vector<NamedFormat> everyFormat() {
    auto format = [](engine::FormatWord word, int bits = 16, int kbps = 0) {
        engine::TargetFormat target;
        target.word = word;
        target.sampleRate = kRate;
        target.bitsPerSample = bits;
        target.bitrateKbps = kbps;
        return target;
    };
    using engine::FormatWord;
    return {{"WAV 16", format(FormatWord::WAV)},      {"WAV 8", format(FormatWord::WAV, 8)},
            {"WAV 24", format(FormatWord::WAV, 24)},  {"WAV 32", format(FormatWord::WAV, 32)},
            {"MP3", format(FormatWord::MP3, 16, 32)}, {"MP2", format(FormatWord::MP2, 16, 32)},
            {"WMA", format(FormatWord::WMA, 16, 32)}, {"VOX", format(FormatWord::VOX)},
            {"RAW", format(FormatWord::RAW)},         {"DSP", format(FormatWord::DSP)}};
}

// The save the dictation makes while the take goes on: the first one writes the
// whole hour, each next one what 16 s more added. A periodic save is mostly the
// disk's sync, whose time on a shared disk varies: the middle one of three counts.
void measurePeriodicSaves(testing::VirtualEventLoop& loop, engine::WaveEditor& dictation,
                          const std::string& folder) {
    for (const NamedFormat& format : everyFormat()) {
        dictation.chooseFormat(format.target);
        dictation.setCursorPosition(dictation.Length());
        if (!dictation.Record().ok()) std::abort();
        const std::string path =
            folder + "/periodic." + engine::formatExtension(format.target.word);
        const double whole = timedSave(loop, dictation, path);
        std::vector<double> grown;
        for (int i = 0; i < 3; ++i) {
            loop.advance(platform::Milliseconds(16000));
            grown.push_back(timedSave(loop, dictation, path));
        }
        dictation.Stop();
        std::sort(grown.begin(), grown.end());
        std::printf(
            "Periodic %s save after 16 s more of 60 min: %.1f ms (%.1f to %.1f) = %.2f %% "
            "of the whole encode (%.3f s)\n",
            format.name, grown[1] * 1e3, grown.front() * 1e3, grown.back() * 1e3,
            100.0 * grown[1] / whole, whole);
        std::filesystem::remove(path);
    }
}

double cpuSeconds() {
    struct rusage usage {};
    ::getrusage(RUSAGE_SELF, &usage);
    auto seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

struct WorkFileFigures {
    double cpuPercent;
    double longestFlushMs;  // the recording's thread held up by one flush
};

// The work file fed as a microphone feeds it (160 frames every 10 ms) for a
// while on the real clock, flushed every flushMs; with waitForDisk the flush
// also waits for the disk on the recording's own thread, as it used to every 500 ms.
WorkFileFigures workFileFigures(const std::string& folder, int flushMs, bool waitForDisk) {
    auto created = engine::WorkFile::create(folder + "/cpu.tmp", {kRate, 1});
    if (!created) std::abort();
    const std::shared_ptr<engine::WorkFile> file = *created;
    std::vector<std::int16_t> frames(kRate / 100, 1000);
    const int syncFd = ::open(file->path().c_str(), O_RDONLY | O_CLOEXEC);
    constexpr int kSeconds = 10;
    double longest = 0;
    const double before = cpuSeconds();
    const auto start = Clock::now();
    auto next = start;
    for (int tick = 1; tick <= kSeconds * 100; ++tick) {
        next += std::chrono::milliseconds(10);
        std::this_thread::sleep_until(next);
        file->append(frames.data(), frames.size());
        if (tick * 10 % flushMs != 0) continue;
        const auto flushStart = Clock::now();
        if (!file->flush()) std::abort();
        if (waitForDisk && ::fdatasync(syncFd) != 0) std::perror("fdatasync");
        longest = std::max(longest, secondsSince(flushStart) * 1e3);
    }
    const double used = cpuSeconds() - before;
    ::close(syncFd);
    file->removeFromDisk();
    return {100.0 * used / secondsSince(start), longest};
}

// The whole engine recording on the real clock from the virtual microphone.
double recordingCpuPercent(const std::string& folder) {
    testing::RealTimeEventLoop loop;
    engine::VirtualBackend backend(loop, {});
    engine::WaveEditor editor(loop, backend, std::make_shared<engine::Clipboard>(), "cpu");
    editor.setTempFileName(folder);
    if (!editor.New(kRate, 1).ok() || !editor.Record().ok()) std::abort();
    loop.runFor(platform::Milliseconds(1000));
    const double before = cpuSeconds();
    const auto start = Clock::now();
    loop.runFor(platform::Milliseconds(10000));
    const double used = cpuSeconds() - before;
    const double elapsed = secondsSince(start);
    editor.Stop();
    editor.Close();
    return 100.0 * used / elapsed;
}

void measureRecordingCpu(const std::string& folder) {
    const WorkFileFigures before = workFileFigures(folder, 500, true);
    const WorkFileFigures after = workFileFigures(folder, 200, false);
    std::printf(
        "Work file, flushed and synced on the recording's thread every 500 ms: %.3f %% "
        "of a core, longest flush %.2f ms\n",
        before.cpuPercent, before.longestFlushMs);
    std::printf(
        "Work file, flushed every 200 ms and synced in the background: %.3f %% of a "
        "core, longest flush %.2f ms\n",
        after.cpuPercent, after.longestFlushMs);
    std::printf(
        "Recording CPU of the engine (virtual microphone, 200 ms durability): %.3f %% "
        "of a core\n",
        recordingCpuPercent(folder));
}

}  // namespace

int main(int argc, char** argv) {
    const std::string folder =
        argc > 1 ? argv[1] : std::filesystem::temp_directory_path().string() + "/ovd-bench";
    std::filesystem::create_directories(folder);
    measureCaptureStart(folder);
    measureRecordingCpu(folder);

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
    // Three of each, taken in turns, so both meet the same disk; the middle ones count.
    std::vector<double> wavTimes;
    std::vector<double> copyTimes;
    for (int i = 0; i < 3; ++i) {
        const std::string name = folder + "/hour" + std::to_string(i);
        wavTimes.push_back(timedSave(loop, dictation, name + ".wav"));
        copyTimes.push_back(timedCommand("cp '" + work + "' '" + name + ".copy'"));
        if (i > 0) std::filesystem::remove(name + ".wav");
        std::filesystem::remove(name + ".copy");
    }
    std::sort(wavTimes.begin(), wavTimes.end());
    std::sort(copyTimes.begin(), copyTimes.end());
    std::printf("SaveAs 60 min WAV: %.3f s; plain copy: %.3f s; ratio %.2f\n", wavTimes[1],
                copyTimes[1], wavTimes[1] / copyTimes[1]);
    std::filesystem::rename(folder + "/hour0.wav", folder + "/hour.wav");
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

    measurePeriodicSaves(loop, dictation, folder);
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
