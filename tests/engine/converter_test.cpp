// The format converter: a saved dictation turned into another format off the
// loop's thread, its target held until complete, its end reported on the loop.

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <future>
#include <thread>

#include "engine/audio_converter.h"
#include "platform/system_queries.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"
#include "test_signal.h"

namespace ovd::engine {
namespace {

using testing::ToneSource;

constexpr PcmFormat kTake{16000, 1};

TargetFormat mp3At(int rate, int kbps) {
    TargetFormat target;
    target.word = FormatWord::MP3;
    target.sampleRate = rate;
    target.bitrateKbps = kbps;
    return target;
}

// A tone whose reading stops near its end until the test lets it go on: the
// conversion is caught in the middle, with blocks already written, whatever
// the machine's speed.
class HeldSource : public PcmSource {
  public:
    explicit HeldSource(double seconds) : tone_(kTake, seconds) {}
    [[nodiscard]] PcmFormat format() const override { return tone_.format(); }
    [[nodiscard]] SampleCount frames() const override { return tone_.frames(); }
    std::size_t read(std::int16_t* out, std::size_t frameCount) override {
        if (!held_ && handedOut_ * 10 >= frames() * 9) {
            held_ = true;
            reading_.set_value();
            release_.wait();
        }
        const std::size_t got = tone_.read(out, frameCount);
        handedOut_ += static_cast<SampleCount>(got);
        return got;
    }
    std::future<void> reading() { return reading_.get_future(); }
    void letGo() { letGo_.set_value(); }

  private:
    ToneSource tone_;
    SampleCount handedOut_ = 0;
    bool held_ = false;
    std::promise<void> reading_;
    std::promise<void> letGo_;
    std::shared_future<void> release_ = letGo_.get_future().share();
};

class ConverterTest : public ::testing::Test {
  protected:
    // Runs the loop until the completion has been delivered (a generous guard against a hang).
    void runUntilComplete() {
        const auto giveUpAt = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!completion_ && std::chrono::steady_clock::now() < giveUpAt) {
            loop_.runPending();
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        ASSERT_TRUE(completion_.has_value()) << "the conversion never reported its end";
    }

    ovd::testing::TempFolder folder_;
    ovd::testing::VirtualEventLoop loop_;
    AudioConverter converter_{loop_};
    std::optional<platform::Result<void>> completion_;
    int completions_ = 0;

    void SetUp() override {
        converter_.setOnComplete([this](const platform::Result<void>& result) {
            completion_ = result;
            ++completions_;
        });
    }
};

TEST_F(ConverterTest, ASavedWaveBecomesAnMp3AtAnotherRateAndRunsTo100) {
    const std::string source = folder_.file("dictation.wav");
    ToneSource tone(kTake, 4.0);
    TargetFormat wav;
    ASSERT_TRUE(encodeFile(tone, source, wav, "").ok());

    const std::string target = folder_.file("dictation.mp3");
    converter_.setSource(source);
    converter_.setTarget(target, mp3At(22050, 32));
    converter_.setComment("OVDESK");
    ASSERT_TRUE(converter_.start().ok());
    runUntilComplete();

    EXPECT_TRUE(completion_->ok()) << completion_->error();
    EXPECT_EQ(completions_, 1);
    EXPECT_EQ(converter_.progressPercent(), 100);
    EXPECT_FALSE(converter_.busy());
    EXPECT_EQ(converter_.error(), "");
    EXPECT_TRUE(platform::FileAvailable(target));
    const auto reader = AudioFileReader::open(target);
    ASSERT_TRUE(reader) << reader.error();
    EXPECT_EQ((*reader)->format(), (PcmFormat{22050, 1}));
    EXPECT_NEAR(static_cast<double>(fileLengthMilliseconds(target)), 4000.0, 40.0);
}

TEST_F(ConverterTest, AMissingSourceIsReportedAndLeavesNoTarget) {
    const std::string target = folder_.file("out.wav");
    converter_.setSource(folder_.file("never-recorded.wav"));
    converter_.setTarget(target, TargetFormat{});
    ASSERT_TRUE(converter_.start().ok());
    runUntilComplete();

    EXPECT_FALSE(completion_->ok());
    EXPECT_NE(converter_.error().find("never-recorded.wav"), std::string::npos)
        << converter_.error();
    EXPECT_EQ(converter_.error(), completion_->error());
    EXPECT_FALSE(std::filesystem::exists(target));
}

TEST_F(ConverterTest, TheTargetIsHeldWhileWrittenAndASecondStartIsRefused) {
    const std::string target = folder_.file("held.mp3");
    auto held = std::make_unique<HeldSource>(10.0);
    HeldSource& source = *held;
    auto reading = source.reading();
    converter_.setSource(std::move(held));
    converter_.setTarget(target, mp3At(16000, 32));
    ASSERT_TRUE(converter_.start().ok());

    reading.wait();
    EXPECT_TRUE(converter_.busy());
    EXPECT_FALSE(platform::FileAvailable(target)) << "a sender must not take a half-written file";
    EXPECT_GT(converter_.progressPercent(), 0);
    EXPECT_LT(converter_.progressPercent(), 100);
    converter_.setSource(std::make_unique<ToneSource>(kTake, 1.0));
    EXPECT_FALSE(converter_.start().ok()) << "one conversion at a time";

    source.letGo();
    runUntilComplete();
    EXPECT_TRUE(completion_->ok()) << completion_->error();
    EXPECT_TRUE(platform::FileAvailable(target));
}

TEST_F(ConverterTest, ACancelledConversionEndsAsAFailureWithNoTarget) {
    const std::string target = folder_.file("cancelled.wma");
    auto held = std::make_unique<HeldSource>(10.0);
    HeldSource& source = *held;
    auto reading = source.reading();
    converter_.setSource(std::move(held));
    TargetFormat wma;
    wma.word = FormatWord::WMA;
    wma.bitrateKbps = 32;
    converter_.setTarget(target, wma);
    ASSERT_TRUE(converter_.start().ok());

    reading.wait();
    converter_.cancel();
    source.letGo();
    runUntilComplete();
    EXPECT_FALSE(completion_->ok());
    EXPECT_FALSE(converter_.error().empty());
    EXPECT_FALSE(std::filesystem::exists(target));
}

}  // namespace
}  // namespace ovd::engine
