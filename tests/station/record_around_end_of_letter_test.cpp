// A record press timed around the end of letter, from the pedal down to the
// screen: whenever it comes while the letter is closed and the next file made,
// it waits for that file and then records, the take stops when the author says
// so, and the next end of letter finishes the next letter.

#include <optional>

#include "delivery_log.h"
#include "devices/control_actions.h"
#include "devices/pedal_events.h"
#include "devices/switch_model.h"
#include "dictation/dictation_fixture.h"
#include "station/end_of_letter.h"

namespace ovd::station {
namespace {

using devices::kDown;
using devices::kMiddle;
using devices::kRight;
using devices::kUp;
using devices::PedalDispatcher;
using devices::SwitchModel;
using dictation::testing::kRate;
using platform::Milliseconds;

constexpr int kRecording = static_cast<int>(engine::EditorState::Recording);

struct Timing {
    int tcpDelaySeconds;
    bool oneTap;
};

class RecordAroundEndOfLetterTest : public dictation::testing::DictationTest,
                                    public ::testing::WithParamInterface<Timing> {
  protected:
    RecordAroundEndOfLetterTest() {
        config.record.MIDSERPEDAL = "RECSTOP";
        config.record.RIGHTSERPEDAL = "EOLSTOP";
        config.record.OneTapRecPause = GetParam().oneTap;
        peer.on = true;
        const int delay = GetParam().tcpDelaySeconds;
        // The link waits for the peer's answer, letting pedals in meanwhile.
        if (delay > 0) peer.duringWait = [this, delay] { loop.wait(Milliseconds(delay * 1000)); };
    }
    void TearDown() override {
        for (auto handle : pending) loop.stopRepeating(handle);
    }

    void pedal(const char* which, const char* direction) {
        dispatcher.PedalEventSER(which, direction);
    }
    // The pedal edge `ms` from now, as the serial line would bring it.
    void at(int ms, const char* which, const char* direction) {
        auto handle = std::make_shared<platform::EventLoop::Handle>();
        *handle = loop.startRepeating(Milliseconds(ms), [this, handle, which, direction] {
            loop.stopRepeating(*handle);
            std::erase(pending, *handle);
            pedal(which, direction);
        });
        pending.push_back(*handle);
    }
    // The record pedal pressed (and held, or tapped in one-tap mode) `from` now.
    void startRecording(int from) {
        at(from, kMiddle, kDown);
        if (GetParam().oneTap) at(from + 80, kMiddle, kUp);
    }
    // Let go (or tapped again) `after` from now.
    void stopRecording(int after) {
        if (GetParam().oneTap) at(after, kMiddle, kDown);
        at(after + (GetParam().oneTap ? 80 : 0), kMiddle, kUp);
    }
    void recordBetween(int from, int until) {
        startRecording(from);
        stopRecording(until);
    }

    // Every 25 ms: a take the engine makes is one the screen shows and can stop.
    // The author speaks for two seconds once the take is under way.
    void watch() {
        pending.push_back(loop.startRepeating(Milliseconds(25), [this] {
            const bool records = editor1.State() == kRecording;
            if (records && !takeStarted) {
                takeStarted = loop.now();
                stopRecording(2000);
            }
            if (!records && takeStarted && !takeEnded) takeEnded = loop.now();
            const bool lit = view().onAirLamp1 || view().onAirLamp2 ||
                             (view().lblOnAirVisible && view().lblOnAir == "ON AIR");
            if ((records && (!state().Recordingstatus || !view().transportBar.Stop)) ||
                (lit && !records)) {
                ++disagreements;
            }
        }));
    }

    testing::DeliveryLog letters;
    EndOfLetter eol{d(), config, log, loop, voice, letters};
    devices::ButtonMessages messages;
    SwitchModel model{{d(), editor1, config, log, prompts, peer, messages, eol}};
    platform::Timer timSER{loop, "timSERStepBACK"};
    platform::Timer timUSB{loop, "timUSBStepBACK"};
    platform::Timer timGAME{loop, "timGAMEStepBACK"};
    PedalDispatcher dispatcher{config.record, d(), model, {timSER, timUSB, timGAME}};
    std::vector<platform::EventLoop::Handle> pending;
    std::optional<platform::WallClock::time_point> takeStarted;
    std::optional<platform::WallClock::time_point> takeEnded;
    int disagreements = 0;
};

// The moment the record pedal is timed from: the release of the end of letter
// pedal, or the close of the letter (the save's own length on the virtual clock
// depends on the machine, so the moments after it are timed from the close).
enum class Anchor { EndOfLetterReleased, LetterClosed };

TEST_P(RecordAroundEndOfLetterTest,
       ARecordPressDuringTheChangeOfFileWaitsForTheNextFileAndRecords) {
    const auto letterClosedThen = [this](int offset) {
        const int delay = GetParam().tcpDelaySeconds;
        peer.duringWait = [this, offset, delay, armed = true]() mutable {
            if (armed && peer.messages.back().rfind("UserClose_", 0) == 0) {
                armed = false;
                startRecording(offset + 1);
            }
            if (delay > 0) loop.wait(Milliseconds(delay * 1000));
        };
    };
    for (const Anchor anchor : {Anchor::EndOfLetterReleased, Anchor::LetterClosed}) {
        for (int offset = 0; offset <= 1000; offset += 50) {
            SCOPED_TRACE(
                "record pressed " + std::to_string(offset) + " ms after the " +
                (anchor == Anchor::LetterClosed ? "close of the letter" : "end of letter"));
            takeStarted.reset();
            takeEnded.reset();
            disagreements = 0;
            letters.delivered.clear();

            d().newLetter();
            recordBetween(10, 2010);
            run(2500);
            ASSERT_FALSE(state().Recordingstatus);
            ASSERT_TRUE(view().endOfLetterEnabled);
            const std::string first = state().Filename;

            watch();
            // End of letter tapped; the record pedal comes `offset` later and is
            // held (or tapped on) until two seconds into the take.
            at(10, kRight, kDown);
            at(110, kRight, kUp);
            if (anchor == Anchor::LetterClosed) {
                letterClosedThen(offset);
            } else {
                startRecording(110 + offset);
            }
            for (int waited = 0; waited < 120000 && !takeEnded; waited += 500) run(500);
            run(500);

            ASSERT_EQ(letters.delivered, std::vector<std::string>{first});
            ASSERT_TRUE(takeStarted.has_value()) << "the press is not lost";
            ASSERT_TRUE(takeEnded.has_value()) << "the take stops when the author says so";
            EXPECT_EQ(disagreements, 0);
            EXPECT_NE(state().Filename, first) << "the take went into the next letter";
            EXPECT_FALSE(state().Recordingstatus);
            const auto seconds = std::chrono::duration<double>(*takeEnded - *takeStarted).count();
            EXPECT_NEAR(seconds, 2.0, 0.1);
            EXPECT_NEAR(static_cast<double>(editor1.Length()) / kRate, seconds, 0.1);

            // And the end of letter finishes that letter too.
            const std::string second = state().Filename;
            at(10, kRight, kDown);
            at(110, kRight, kUp);
            for (int waited = 0; waited < 120000 && letters.delivered.size() < 2; waited += 500)
                run(500);
            ASSERT_EQ(letters.delivered.size(), 2u);
            EXPECT_EQ(letters.delivered[1], second);
            EXPECT_NEAR(static_cast<double>(platform::fileSize(second).valueOr(0) - 44) / 2 / kRate,
                        seconds, 0.1);
            for (auto handle : pending) loop.stopRepeating(handle);
            pending.clear();
            d().closeFile();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(HoldAndTap, RecordAroundEndOfLetterTest,
                         ::testing::Values(Timing{0, false}, Timing{2, false}, Timing{0, true},
                                           Timing{2, true}),
                         [](const ::testing::TestParamInfo<Timing>& run) {
                             return std::string(run.param.oneTap ? "OneTap" : "Hold") + "Delay" +
                                    std::to_string(run.param.tcpDelaySeconds);
                         });

}  // namespace
}  // namespace ovd::station
