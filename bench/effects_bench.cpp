// Figures for the editor's effects: each effect and filter over a 10-minute
// 16 kHz mono dictation, normalize and amplify against the sox command line on
// the same file, and the memory a stretch of a 60-minute document takes. Run:
// build/release/bench/effects_bench [scratch folder]

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "bench_figures.h"
#include "engine/codecs.h"
#include "engine/resampler.h"
#include "engine/virtual_backend.h"
#include "engine/wave_editor.h"
#include "engine/wave_header.h"
#include "support/virtual_event_loop.h"

namespace {

using namespace ovd;
using namespace ovd::bench;

constexpr int kRate = 16000;

// Spoken phrases with pauses between, as a dictation has them, at 16 kHz.
std::vector<std::int16_t> spokenSample(const std::string& folder) {
    const std::string path = folder + "/spoken.wav";
    const std::string command = "espeak-ng -w '" + path +
                                "' 'Dear doctor Smith. Thank you for referring this patient, "
                                "who was seen in the clinic today.' && test -s '" +
                                path + "'";
    if (std::system(command.c_str()) != 0) std::abort();
    auto reader = engine::AudioFileReader::open(path);
    if (!reader) std::abort();
    auto converted = engine::ConvertingSource::create(**reader, {kRate, 1});
    if (!converted) std::abort();
    std::vector<std::int16_t> samples(1 << 16);
    std::vector<std::int16_t> all;
    while (const std::size_t got = (*converted)->read(samples.data(), samples.size()))
        all.insert(all.end(), samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(got));
    all.resize(all.size() + 2 * kRate);  // a pause to think
    return all;
}

// A wave file of the sample repeated for the given minutes, written a piece at a time.
void writeDictation(const std::string& path, const std::vector<std::int16_t>& sample, int minutes) {
    const std::uint64_t frames = static_cast<std::uint64_t>(minutes) * 60 * kRate;
    const auto header = engine::pcmWaveHeader({kRate, 1}, "", frames * 2);
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(header.data()),
              static_cast<std::streamsize>(header.size()));
    for (std::uint64_t written = 0; written < frames;) {
        const std::uint64_t count = std::min<std::uint64_t>(sample.size(), frames - written);
        out.write(reinterpret_cast<const char*>(sample.data()),
                  static_cast<std::streamsize>(count * 2));
        written += count;
    }
}

struct Run {
    double seconds = -1;
    engine::SampleCount length = 0;
};

Run timedEffect(testing::VirtualEventLoop& loop, engine::WaveEditor& editor,
                const std::string& path, engine::Effect effect) {
    if (!editor.Open(path)) std::abort();
    std::optional<platform::Result<void>> outcome;
    const auto start = Clock::now();
    const auto started = editor.ApplyEffect(
        effect, 0, editor.Length(), [&](platform::Result<void> r) { outcome = std::move(r); });
    if (!started) {
        std::fprintf(stderr, "%s refused: %s\n", std::string(effectMenuText(effect)).c_str(),
                     started.error().c_str());
        return {};
    }
    while (!outcome) {
        loop.runPending();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const double seconds = secondsSince(start);
    if (!*outcome) {
        std::fprintf(stderr, "%s failed: %s\n", std::string(effectMenuText(effect)).c_str(),
                     outcome->error().c_str());
        return {};
    }
    return {seconds, editor.Length()};
}

}  // namespace

int main(int argc, char** argv) {
    std::string folder = argc > 1 ? argv[1] : "";
    if (folder.empty()) {
        char pattern[] = "/tmp/ovd-effects-bench-XXXXXX";
        folder = ::mkdtemp(pattern);
    }
    testing::VirtualEventLoop loop;
    engine::VirtualBackend backend(loop, {});
    engine::WaveEditor editor(loop, backend, std::make_shared<engine::Clipboard>(), "bench");
    editor.setTempFileName(folder + "/Temp");

    const auto sample = spokenSample(folder);
    const std::string hour = folder + "/hour.wav";
    const std::string tenMinutes = folder + "/ten.wav";
    writeDictation(hour, sample, 60);
    writeDictation(tenMinutes, sample, 10);

    // Memory first, while nothing else has raised the high-water mark.
    if (!editor.Open(hour)) std::abort();
    const long before = statusKilobytes("VmHWM:");
    const Run stretched = timedEffect(loop, editor, hour, engine::Effect::StretchLonger);
    std::printf(
        "60-minute Stretch +: %.1f s, peak resident %ld MB (before it %ld MB), "
        "%.1f minutes after\n",
        stretched.seconds, statusKilobytes("VmHWM:") / 1024, before / 1024,
        static_cast<double>(stretched.length) / kRate / 60);
    editor.Close();

    std::printf("\nEach effect over 10 minutes at 16 kHz mono (target under 2 s):\n");
    for (int e = 0; e <= static_cast<int>(engine::Effect::LowShelf); ++e) {
        const auto effect = static_cast<engine::Effect>(e);
        const Run run = timedEffect(loop, editor, tenMinutes, effect);
        std::printf("  %-15s %6.2f s   %6.1f s long after\n",
                    std::string(effectMenuText(effect)).c_str(), run.seconds,
                    static_cast<double>(run.length) / kRate);
        editor.Close();
    }

    if (!editor.Open(tenMinutes)) std::abort();
    const auto spectrumStart = Clock::now();
    const auto columns = editor.Spectrum(0, editor.Length(), 1920, 256);
    std::printf("\nSpectral view of 10 minutes, 1920 columns of 256 bins: %.3f s (%zu columns)\n",
                secondsSince(spectrumStart), columns.size());
    editor.Close();

    std::printf("\nAgainst sox on the same file (target within 2x):\n");
    const std::string out = folder + "/sox.wav";
    const double soxAmplify = timedCommand("sox '" + tenMinutes + "' '" + out + "' vol 1.2");
    const double soxNormalize = timedCommand("sox '" + tenMinutes + "' '" + out + "' gain -n");
    const Run amplify = timedEffect(loop, editor, tenMinutes, engine::Effect::AmplifyUp);
    editor.Close();
    const Run normalize = timedEffect(loop, editor, tenMinutes, engine::Effect::Normalize);
    editor.Close();
    std::printf("  Amplify +   %.2f s, sox vol 1.2 %.2f s (%.1fx)\n", amplify.seconds, soxAmplify,
                amplify.seconds / soxAmplify);
    std::printf("  Normalize   %.2f s, sox gain -n %.2f s (%.1fx)\n", normalize.seconds,
                soxNormalize, normalize.seconds / soxNormalize);

    std::filesystem::remove_all(folder);
    return 0;
}
