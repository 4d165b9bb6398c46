#pragma once
// A whole dictation on the virtual clock: the real wave editors over the
// virtual sound backend, the settings in a temporary data folder, scripted
// prompts and a peer that keeps what it is told. The microphone plays a ramp,
// so every recorded sample tells where in its take it was spoken.

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "dictation/dictation.h"
#include "dictation/dictation_probe.h"
#include "engine/virtual_backend.h"
#include "engine/wave_editor.h"
#include "platform/files.h"
#include "support/letter_names.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::dictation::testing {

using platform::Milliseconds;

inline constexpr int kRate = 16000;

// Sample i of a take reads i / 8: sixteen seconds before the ramp runs out.
inline std::int16_t rampAt(engine::SampleCount i) { return static_cast<std::int16_t>(i / 8); }

// A mono 16-bit WAV file at kRate of the given samples.
inline std::string writeMonoWave(const std::string& path,
                                 const std::vector<std::int16_t>& samples) {
    const auto frames = static_cast<std::uint32_t>(samples.size());
    std::string bytes(44 + frames * 2, '\0');
    const auto put32 = [&](std::size_t at, std::uint32_t v) { std::memcpy(&bytes[at], &v, 4); };
    const auto put16 = [&](std::size_t at, std::uint16_t v) { std::memcpy(&bytes[at], &v, 2); };
    std::memcpy(&bytes[0], "RIFF", 4);
    put32(4, 36 + frames * 2);
    std::memcpy(&bytes[8], "WAVEfmt ", 8);
    put32(16, 16);
    put16(20, 1);
    put16(22, 1);
    put32(24, kRate);
    put32(28, kRate * 2);
    put16(32, 2);
    put16(34, 16);
    std::memcpy(&bytes[36], "data", 4);
    put32(40, frames * 2);
    if (frames > 0) std::memcpy(&bytes[44], samples.data(), frames * 2);
    EXPECT_TRUE(platform::writeWholeFile(path, bytes));
    return path;
}

inline std::string writeRampWave(const std::string& path, int seconds) {
    std::vector<std::int16_t> samples(static_cast<std::size_t>(seconds * kRate));
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = rampAt(static_cast<engine::SampleCount>(i));
    return writeMonoWave(path, samples);
}

class RecordingPeer : public PeerNotices {
  public:
    [[nodiscard]] bool linkOn() const override { return on; }
    bool send(const std::string& message, const std::string& waitTag) override {
        messages.push_back(message);
        if (duringWait) duringWait();
        (void)waitTag;
        return reachable;
    }
    bool on = false;
    bool reachable = true;
    std::vector<std::string> messages;
    std::function<void()> duringWait;  // something that arrives while the link waits
};

class DictationTest : public ::testing::Test {
  protected:
    DictationTest() {
        auto& r = config.record;
        ovd::testing::nameLettersAB(r, recordings, 1);
        r.RecordingFormats = "OPT2";
        r.FormatType = "WAV";
        r.Frequency = "16000";
        r.Channel = "MONO";
        r.FileBit = "16";
        r.StepAmt = 2;
        r.SAVEEVERY = 15;
        r.HandsFreeEdition = true;
        EXPECT_TRUE(platform::createFolder(recordings));
        EXPECT_TRUE(platform::createFolder(recordings + "/Temp"));
        config.WriteConfig();
        rebuild();
    }

    // A dictation on the settings as they now stand.
    void rebuild() {
        dictation.reset();
        dictation = std::make_unique<Dictation>(DictationParts{
            loop, config, log, prompts, editor1, editor21, voice, speakers, peer, folder.path()});
        dictation->start();
    }

    Dictation& d() { return *dictation; }
    // What the window and the support dump read.
    const DictationState& state() const { return dictation->state(); }
    const MainView& view() const { return dictation->view(); }
    // For arranging a situation no command leads to.
    DictationState& arrangeState() { return DictationProbe::state(*dictation); }
    MainView& arrangeView() { return DictationProbe::view(*dictation); }
    const platform::Timer& timer(const std::string& name) const {
        return timerNamed(*dictation, name);
    }

    void run(int milliseconds) { loop.advance(Milliseconds(milliseconds)); }

    // New file, a take of the given length, Stop from the bar.
    void dictate(int milliseconds) {
        d().newLetter();
        d().recordTake();
        run(milliseconds);
        d().stop();
    }

    std::vector<std::int16_t> frames(engine::SampleCount from, engine::SampleCount count) const {
        std::vector<std::int16_t> out(
            static_cast<std::size_t>(std::max<engine::SampleCount>(count, 0)));
        out.resize(editor1.readFrames(from, out.data(), out.size()));
        return out;
    }

    [[nodiscard]] bool logged(const std::string& text) const {
        return log.text().find(text) != std::string::npos;
    }

    ::ovd::testing::TempFolder folder;
    std::string recordings = folder.file("Rec");
    ::ovd::testing::VirtualEventLoop loop{::ovd::testing::localTime(2026, 11, 22, 9, 30, 0)};
    settings::ConfigFile config{folder.path()};
    settings::EventLog log{loop, folder.path(), config.record};
    ::ovd::testing::ScriptedPrompts prompts;
    settings::SpeakersTable speakers{folder.path()};
    engine::VirtualBackend backend{loop, {440.0, 0.25, writeRampWave(folder.file("ramp.wav"), 20)}};
    std::shared_ptr<engine::Clipboard> clipboard = std::make_shared<engine::Clipboard>();
    engine::WaveEditor editor1{loop, backend, clipboard, "AudioEditor1"};
    engine::WaveEditor editor21{loop, backend, clipboard, "AudioEditor21"};
    engine::PromptPlayer voice{backend, OVD_TEST_ASSETS "/prompts"};
    RecordingPeer peer;
    std::unique_ptr<Dictation> dictation;
};

}  // namespace ovd::dictation::testing
