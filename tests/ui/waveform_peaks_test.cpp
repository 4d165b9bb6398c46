// The waveform's peaks followed as a document changes are the peaks of the
// document read whole, and following a growing take reads only what is new,
// however long the take already is.

#include "ui/waveform_peaks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace ovd::ui {
namespace {

using SampleCount = WaveformPeaks::SampleCount;

// A document in memory whose every sample differs from its neighbours, so a
// stretch taken from the wrong place shows.
class Document {
  public:
    explicit Document(int channels = 1) : channels_(channels) {}

    void append(SampleCount frames) { insert(length(), frames); }
    void insert(SampleCount at, SampleCount frames) {
        std::vector<std::int16_t> added(static_cast<std::size_t>(frames * channels_));
        for (auto& sample : added) sample = next();
        samples_.insert(samples_.begin() + at * channels_, added.begin(), added.end());
    }
    void remove(SampleCount from, SampleCount to) {
        samples_.erase(samples_.begin() + from * channels_, samples_.begin() + to * channels_);
    }
    [[nodiscard]] SampleCount length() const {
        return static_cast<SampleCount>(samples_.size()) / channels_;
    }
    [[nodiscard]] int channels() const { return channels_; }

    WaveformPeaks::Reader reader() {
        return [this](SampleCount position, std::int16_t* out, std::size_t frames) {
            const auto available =
                static_cast<std::size_t>(std::max<SampleCount>(length() - position, 0));
            const std::size_t got = std::min(frames, available);
            std::memcpy(out, samples_.data() + position * channels_,
                        got * static_cast<std::size_t>(channels_) * 2);
            framesRead += got;
            return got;
        };
    }
    std::size_t framesRead = 0;

  private:
    std::int16_t next() {
        seed_ = seed_ * 1103515245u + 12345u;
        return static_cast<std::int16_t>(seed_ >> 16);
    }
    int channels_;
    std::uint32_t seed_ = 7;
    std::vector<std::int16_t> samples_;
};

WaveformPeaks readWhole(Document& document) {
    WaveformPeaks peaks;
    peaks.update(0, document.length(), document.channels(), document.reader());
    return peaks;
}

void expectSameAsReadWhole(const WaveformPeaks& followed, Document& document, const char* when) {
    const WaveformPeaks whole = readWhole(document);
    ASSERT_EQ(followed.length(), whole.length()) << when;
    ASSERT_EQ(followed.stretchFrames(), whole.stretchFrames()) << when;
    ASSERT_EQ(followed.stretches(), whole.stretches())
        << when << " at " << document.length() << " frames";
    EXPECT_EQ(followed.columns(558), whole.columns(558)) << when;
}

TEST(WaveformPeaksTest, ATakeFollowedAsItGrowsHasThePeaksOfTheTakeReadWhole) {
    for (const int channels : {1, 2}) {
        Document document(channels);
        WaveformPeaks followed;
        // Blocks of uneven size, across every merge of stretches from single frames
        // to stretches far longer than the part of them that is looked at.
        SampleCount block = 1;
        while (document.length() < 3'000'000) {
            const SampleCount before = document.length();
            document.append(block);
            followed.update(before, document.length(), channels, document.reader());
            block = block * 3 / 2 + 7;
            if (block > 40'000) block = 333;
            expectSameAsReadWhole(followed, document, "growing");
        }
        EXPECT_GT(followed.stretchFrames(), WaveformPeaks::kFramesLookedAt);
    }
}

TEST(WaveformPeaksTest, ATakeRecordedInTheMiddleAndEditsAfterwardsKeepThePeaksRight) {
    Document document;
    WaveformPeaks followed;
    document.append(900'000);
    followed.update(0, document.length(), 1, document.reader());

    // A take goes in at the cursor: what follows it moves on as it grows.
    SampleCount cursor = 250'001;
    for (int look = 0; look < 40; ++look) {
        document.insert(cursor, 1'601);
        followed.update(cursor, document.length(), 1, document.reader());
        cursor += 1'601;
        expectSameAsReadWhole(followed, document, "recording in the middle");
    }

    // A cut brings the document below the stretch length it had grown to.
    document.remove(1'000, document.length() - 5'000);
    followed.update(1'000, document.length(), 1, document.reader());
    expectSameAsReadWhole(followed, document, "after a cut");

    document.remove(0, document.length());
    followed.update(0, 0, 1, document.reader());
    EXPECT_TRUE(followed.stretches().empty());
    EXPECT_TRUE(followed.columns(100).empty()) << "an empty document draws no columns";
}

TEST(WaveformPeaksTest, FollowingAnHourLongTakeReadsNoMoreEachLookThanAMinuteLongOne) {
    // A tenth of a second at 16 kHz is what one look of a growing take finds new.
    constexpr SampleCount kLook = 1'600;
    const auto framesReadPerLook = [](SampleCount takeLength) {
        Document document;
        document.append(takeLength);
        WaveformPeaks followed;
        followed.update(0, takeLength, 1, document.reader());
        document.framesRead = 0;
        for (int look = 0; look < 50; ++look) {
            const SampleCount before = document.length();
            document.append(kLook);
            followed.update(before, document.length(), 1, document.reader());
        }
        return document.framesRead / 50;
    };
    const std::size_t minute = framesReadPerLook(60 * 16'000);
    const std::size_t hour = framesReadPerLook(60 * 60 * 16'000);
    EXPECT_LE(minute, static_cast<std::size_t>(kLook + WaveformPeaks::kFramesLookedAt));
    EXPECT_LE(hour, minute) << "a look costs the same, however long the take already is";

    // Read whole, an hour costs no more than the stretches it is kept in.
    Document hourLong;
    hourLong.append(60 * 60 * 16'000);
    hourLong.framesRead = 0;
    (void)readWhole(hourLong);
    EXPECT_LE(hourLong.framesRead, WaveformPeaks::kMaxStretches * WaveformPeaks::kFramesLookedAt);
}

}  // namespace
}  // namespace ovd::ui
