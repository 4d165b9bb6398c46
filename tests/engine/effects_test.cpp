// The editor's effects measured on real audio: levels, lengths, pitch and the
// bands the filters let through, the stretch around an effect untouched, undo,
// and the refusals that leave the document as it was.

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <optional>
#include <thread>
#include <vector>

#include "effects_fixture.h"

namespace ovd::engine {
namespace {

using testing::EffectsFixture;
using testing::rms;
using testing::slice;
using testing::speechSeconds;

class EffectsTest : public EffectsFixture {};

struct GainCase {
    Effect effect;
    double ratio;
};

TEST_F(EffectsTest, AmplifyChangesTheLevelByItsRatio) {
    // Stereo, the right side at half the left's level: each side keeps its own.
    std::vector<std::int16_t> stereo = testing::toneSamples({16000, 2}, 1.0, 440.0, 8000.0);
    for (std::size_t i = 1; i < stereo.size(); i += 2)
        stereo[i] = static_cast<std::int16_t>(stereo[i] / 2);
    const auto side = [](const std::vector<std::int16_t>& samples, std::size_t which) {
        std::vector<std::int16_t> one;
        for (std::size_t i = which; i < samples.size(); i += 2) one.push_back(samples[i]);
        return rms(one);
    };
    for (const GainCase& row : {GainCase{Effect::AmplifyUp, 1.2}, {Effect::AmplifyDown, 0.8}}) {
        SCOPED_TRACE(std::string(effectMenuText(row.effect)));
        load(16000, stereo, 2);
        ASSERT_TRUE(apply(row.effect, 0, editor.Length()).ok());
        const auto after = all();
        ASSERT_EQ(after.size(), stereo.size());
        EXPECT_NEAR(side(after, 0) / side(stereo, 0), row.ratio, 0.002);
        EXPECT_NEAR(side(after, 1) / side(stereo, 1), row.ratio, 0.002);
    }
}

TEST_F(EffectsTest, FadesStartAndEndAtSilence) {
    const std::size_t tenMs = 160;
    for (const Effect effect : {Effect::FadeIn, Effect::FadeOut}) {
        SCOPED_TRACE(std::string(effectMenuText(effect)));
        loadTone(16000, 2.0, 440.0, 8000.0);
        const double full = rms(all());
        ASSERT_TRUE(apply(effect, 0, editor.Length()).ok());
        const auto samples = all();
        const double head = rms(slice(samples, 0, tenMs));
        const double tail = rms(slice(samples, samples.size() - tenMs, tenMs));
        const double quiet = effect == Effect::FadeIn ? head : tail;
        const double loud = effect == Effect::FadeIn ? tail : head;
        EXPECT_LT(quiet, full * 0.01);
        EXPECT_GT(loud, full * 0.98);
        // Half way through, the level is half.
        EXPECT_NEAR(rms(slice(samples, 16000 - 80, tenMs)) / full, 0.5, 0.02);
    }
}

TEST_F(EffectsTest, StretchChangesTheLengthAndKeepsThePitch) {
    for (const GainCase& row :
         {GainCase{Effect::StretchLonger, 1.2}, {Effect::StretchShorter, 0.8}}) {
        SCOPED_TRACE(std::string(effectMenuText(row.effect)));
        loadTone(16000, 3.0, 440.0, 8000.0);
        ASSERT_TRUE(apply(row.effect, 0, editor.Length()).ok());
        EXPECT_EQ(editor.Length(), std::lround(48000 * row.ratio));
        EXPECT_NEAR(peakHertz(all(), 16000), 440.0, 4.0);
    }
}

struct BandCase {
    Effect effect;
    int rate;
    double passedHz;
    double stoppedHz;
    double stoppedDbAtMost;
    double stoppedDbAtLeast;
};

// Each filter is measured on a tone inside its band and one outside: the one
// inside comes through at about its level, the other is cut.
TEST_F(EffectsTest, FiltersCutWhatLiesOutsideTheirBand) {
    const BandCase rows[] = {
        {Effect::BandPass, 16000, 80, 2000, -20, -60},
        {Effect::HighPass, 16000, 3000, 40, -30, -90},
        {Effect::LowPass, 16000, 40, 3000, -30, -90},
        {Effect::HighShelf, 16000, 40, 5000, -8, -11},
        {Effect::LowShelf, 16000, 3000, 10, -8, -11},
        // At 8000 Hz the band pass sits at 40 Hz and the high pass at 160 Hz.
        {Effect::BandPass, 8000, 40, 1000, -20, -60},
        {Effect::HighPass, 8000, 1500, 20, -30, -90},
    };
    for (const BandCase& row : rows) {
        SCOPED_TRACE(std::string(effectMenuText(row.effect)) + " at " + std::to_string(row.rate));
        EXPECT_NEAR(gainDb(row.effect, row.rate, row.passedHz), 0.0, 1.5);
        const double stopped = gainDb(row.effect, row.rate, row.stoppedHz);
        EXPECT_LT(stopped, row.stoppedDbAtMost);
        EXPECT_GT(stopped, row.stoppedDbAtLeast);
    }
}

TEST_F(EffectsTest, InvertNegatesEverySampleAndKeepsTheLoudestNegativeInRange) {
    load(16000, {0, 1, -1, 12345, -20000, 32767, -32768});
    ASSERT_TRUE(apply(Effect::Invert, 0, editor.Length()).ok());
    EXPECT_EQ(all(), (std::vector<std::int16_t>{0, -1, 1, -12345, 20000, -32767, 32767}));
}

TEST_F(EffectsTest, NormalizeBringsThePeakToFullScale) {
    loadTone(16000, 1.0, 440.0, 6000.0);
    ASSERT_TRUE(apply(Effect::Normalize, 0, editor.Length()).ok());
    int peak = 0;
    for (const std::int16_t sample : all()) peak = std::max(peak, std::abs(int{sample}));
    EXPECT_GE(peak, 32766);
    EXPECT_EQ(editor.Length(), 16000);
}

TEST_F(EffectsTest, DelayFlangerAndVibratoKeepTheLengthAndChangeTheSound) {
    for (const Effect effect : {Effect::Delay, Effect::Flanger, Effect::Vibrato}) {
        SCOPED_TRACE(std::string(effectMenuText(effect)));
        loadSpeech({"Please file this letter."}, 0.5);
        const auto before = all();
        ASSERT_TRUE(apply(effect, 0, editor.Length()).ok());
        const auto after = all();
        ASSERT_EQ(after.size(), before.size());
        EXPECT_NE(after, before);
        EXPECT_GT(rms(after), rms(before) * 0.3);
    }
    // The echo carries the voice on into the silence after it.
    loadSpeech({"File."}, 1.0);
    const auto before = all();
    ASSERT_TRUE(apply(Effect::Delay, 0, editor.Length()).ok());
    const std::size_t end = before.size();
    EXPECT_GT(rms(slice(all(), end - 16000, 4000)),
              10 * (rms(slice(before, end - 16000, 4000)) + 1));
}

TEST_F(EffectsTest, DeleteSilenceRemovesTheGapsInsideSpeech) {
    loadSpeech({"Dear doctor Smith.", "Thank you for referring this patient, who was seen today.",
                "Yours sincerely."},
               2.0);
    const double before = seconds();
    const double spoken = speechSeconds(all());
    ASSERT_TRUE(apply(Effect::DeleteSilence, 0, editor.Length()).ok());
    // Three gaps of two seconds go, with the synthesizer's own silence around them.
    EXPECT_LT(seconds(), before - 3 * 2.0);
    EXPECT_GT(seconds(), before - 3 * 2.6);
    // What was said stays, short pauses between words and all.
    EXPECT_NEAR(speechSeconds(all()), spoken, 0.05);
    EXPECT_GT(seconds(), spoken + 0.5);
}

TEST_F(EffectsTest, AnEffectOnASelectionLeavesTheRestAndUndoesExactly) {
    loadTone(16000, 3.0, 440.0, 8000.0);
    const auto original = all();
    ASSERT_TRUE(apply(Effect::StretchLonger, 16000, 32000).ok());
    const auto stretched = all();
    ASSERT_EQ(editor.Length(), 48000 + 3200);
    EXPECT_EQ(slice(stretched, 0, 16000), slice(original, 0, 16000));
    EXPECT_EQ(slice(stretched, 35200, 16000), slice(original, 32000, 16000));
    EXPECT_EQ(editor.SelectionStart(), 16000);
    EXPECT_EQ(editor.SelectionEnd(), 35200);

    ASSERT_TRUE(editor.Undo().ok());
    EXPECT_EQ(all(), original);
    ASSERT_TRUE(editor.Redo().ok());
    EXPECT_EQ(all(), stretched);
}

// An effect's audio lies in a scratch file of its own, part on disk, part still
// in memory: a wave save copies it from there.
TEST_F(EffectsTest, TheEffectsAudioIsSavedAsTheDocumentHoldsIt) {
    loadTone(16000, 10.0, 440.0, 8000.0);
    ASSERT_TRUE(apply(Effect::AmplifyUp, 16000, 150000).ok());
    const auto amplified = all();
    const std::string path = folder.file("amplified.wav");
    auto saved = editor.SaveAs(path);
    ASSERT_TRUE(saved.ok());
    ASSERT_TRUE(saved->get().ok());
    editor.finishSaving();
    auto reader = AudioFileReader::open(path);
    ASSERT_TRUE(reader.ok());
    EXPECT_EQ(testing::readAll(**reader), amplified);
}

TEST_F(EffectsTest, InsertSilencePutsHalfASecondAtThePosition) {
    loadTone(16000, 1.0, 440.0, 8000.0);
    const auto original = all();
    ASSERT_TRUE(apply(Effect::InsertSilence, 4000, 12000).ok());
    const auto after = all();
    ASSERT_EQ(after.size(), 16000u + 8000u);
    EXPECT_EQ(slice(after, 0, 4000), slice(original, 0, 4000));
    EXPECT_EQ(slice(after, 4000, 8000), std::vector<std::int16_t>(8000, 0));
    EXPECT_EQ(slice(after, 12000, 12000), slice(original, 4000, 12000));
}

TEST_F(EffectsTest, RefusalsLeaveTheDocumentAsItWas) {
    bool called = false;
    const auto note = [&](const platform::Result<void>&) { called = true; };
    EXPECT_FALSE(editor.ApplyEffect(Effect::Normalize, 0, 10, note).ok()) << "no document";
    ASSERT_TRUE(editor.New(16000, 1).ok());
    const auto empty = editor.ApplyEffect(Effect::AmplifyUp, 0, 0, note);
    ASSERT_FALSE(empty.ok());
    EXPECT_NE(empty.error().find("empty"), std::string::npos);
    EXPECT_EQ(editor.Length(), 0);

    load(16000, std::vector<std::int16_t>(16000, 0));
    EXPECT_FALSE(editor.ApplyEffect(Effect::Invert, 500, 500, note).ok()) << "empty stretch";
    const auto silent = apply(Effect::Normalize, 0, editor.Length());
    EXPECT_FALSE(silent.ok()) << "a silent stretch has no peak to bring up";
    EXPECT_FALSE(editor.Undo().ok()) << "a failed effect leaves no undo step";

    loadTone(16000, 5.0, 440.0, 8000.0);
    const auto original = all();
    std::optional<platform::Result<void>> first;
    ASSERT_TRUE(editor
                    .ApplyEffect(Effect::Normalize, 0, editor.Length(),
                                 [&](platform::Result<void> r) { first = std::move(r); })
                    .ok());
    EXPECT_TRUE(editor.effectRunning());
    EXPECT_FALSE(editor.ApplyEffect(Effect::Invert, 0, 100, note).ok()) << "one at a time";
    EXPECT_FALSE(editor.MixClipboard().ok());
    // The author cuts while the effect runs: the cut stands, the effect is dropped.
    editor.setSelectionStart(0);
    editor.setSelectionEnd(16000);
    editor.setSelectionActive(true);
    ASSERT_TRUE(editor.Cut().ok());
    waitFor(first);
    EXPECT_FALSE(first->ok());
    EXPECT_FALSE(editor.effectRunning());
    EXPECT_EQ(all(), slice(original, 16000, 64000));
    EXPECT_FALSE(called);
}

TEST_F(EffectsTest, ClosingOrDroppingTheEditorWhileAnEffectRunsIsSafe) {
    loadTone(16000, 60.0, 440.0, 8000.0);
    std::optional<platform::Result<void>> outcome;
    ASSERT_TRUE(editor
                    .ApplyEffect(Effect::StretchLonger, 0, editor.Length(),
                                 [&](platform::Result<void> r) { outcome = std::move(r); })
                    .ok());
    editor.Close();
    waitFor(outcome);
    EXPECT_FALSE(outcome->ok());
    EXPECT_EQ(editor.Length(), 0);

    // Done before its document closed, told after: the next document is not touched.
    ASSERT_TRUE(editor.New(16000, 1).ok());
    outcome.reset();
    ASSERT_TRUE(editor
                    .ApplyEffect(Effect::InsertSilence, 0, 0,
                                 [&](platform::Result<void> r) { outcome = std::move(r); })
                    .ok());
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    editor.Close();
    ASSERT_TRUE(editor.New(16000, 1).ok());
    waitFor(outcome);
    EXPECT_FALSE(outcome->ok());
    EXPECT_EQ(editor.Length(), 0);

    {
        WaveEditor second(loop, backend, clipboard, "AudioEditor22");
        second.setTempFileName(folder.path() + "/Temp");
        ASSERT_TRUE(second.New(16000, 1).ok());
        clipboard->format = {16000, 1};
        clipboard->pieces.clear();
        loadTone(16000, 60.0, 440.0, 8000.0);
        editor.setSelectionStart(0);
        editor.setSelectionEnd(editor.Length());
        editor.setSelectionActive(true);
        ASSERT_TRUE(editor.Copy().ok());
        ASSERT_TRUE(second.Paste().ok());
        bool called = false;
        ASSERT_TRUE(second
                        .ApplyEffect(Effect::Vibrato, 0, second.Length(),
                                     [&](const platform::Result<void>&) { called = true; })
                        .ok());
        // Gone before the effect ends: it is stopped, and nothing is told to the editor.
    }
    loop.runPending();
}

TEST_F(EffectsTest, ProgressGoesOutUnderTheMenuTextAndEnds) {
    loadTone(16000, 600.0, 440.0, 8000.0);
    std::vector<BlockOperationEvent> events;
    editor.onBlockOperation = [&](const BlockOperationEvent& event) { events.push_back(event); };
    ASSERT_TRUE(apply(Effect::HighShelf, 0, editor.Length()).ok());
    ASSERT_GE(events.size(), 2u);
    EXPECT_EQ(events.front().phase, BlockOperationEvent::Phase::Start);
    EXPECT_EQ(events.back().phase, BlockOperationEvent::Phase::End);
    for (const auto& event : events) EXPECT_EQ(event.name, "High Shelf");
}

}  // namespace
}  // namespace ovd::engine
