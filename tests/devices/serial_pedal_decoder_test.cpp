// The serial pedal's bytes, event by event, into the edges the dispatcher sees.

#include "devices/serial_pedal_decoder.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

#include "support/scripted_serial_line.h"

namespace ovd::devices {
namespace {

using FakePort = ovd::testing::ScriptedSerialLine;

struct EdgeLog : PedalEventSink {
    std::vector<std::string> edges;
    void PedalEventSER(const std::string& pedal, const std::string& direction) override {
        edges.push_back(pedal + " " + direction);
    }
    void PedalEventUSB(const std::string&, const std::string&) override { ADD_FAILURE(); }
    void PedalEventGAME(const std::string&, const std::string&) override { ADD_FAILURE(); }
};

struct Bench {
    settings::SettingsRecord record;
    dictation::DictationState dictation;
    PedalHits hits;
    EdgeLog sink;
    FakePort port;
    bool silenced = false;
    int stepBackStops = 0;
    SerialPedalDecoder decoder;

    explicit Bench(SerialPedalOptions options = {})
        : decoder(record, dictation, hits, sink,
                  SerialPedalHooks{[this] { return silenced; }, [this] { ++stepBackStops; }},
                  options) {}

    void event(std::vector<std::uint8_t> burst) {
        port.bytes.insert(port.bytes.end(), burst.begin(), burst.end());
        decoder.OnComm(port);
    }
    [[nodiscard]] std::string held() const {
        return std::string(hits.LEFTSERPEDALHit ? "L" : "") + (hits.MIDSERPEDALHit ? "M" : "") +
               (hits.RIGHTSERPEDALHit ? "R" : "");
    }
};

struct ByteCase {
    const char* name;
    bool twoPedals;
    bool pedalSwap;
    std::vector<std::vector<std::uint8_t>> events;  // one burst per receive event
    std::vector<std::string> edges;
    std::string heldAfter;
    int stepBackStops;
};

TEST(SerialPedalDecoderTest, BytesBecomeEdgesByTheRulesOfEachPedal) {
    const std::vector<ByteCase> cases = {
        {"release with no press", false, false, {{0x87}}, {}, "", 0},
        {"left press and release", false, false, {{0x81}, {0x87}}, {"LEFT DOWN", "LEFT UP"}, "", 1},
        {"left twice is one edge",
         false,
         false,
         {{0x81}, {0x81}, {0x87}},
         {"LEFT DOWN", "LEFT UP"},
         "",
         1},
        {"middle release, then a stray release",
         false,
         false,
         {{0x85}, {0x87}, {0x87}},
         {"MIDDLE DOWN", "MIDDLE UP"},
         "",
         1},
        {"middle ignored on a two-pedal unit", true, false, {{0x85}, {0x87}}, {}, "", 0},
        {"right released twice",
         false,
         false,
         {{0x84}, {0x87}, {0x87}},
         {"RIGHT DOWN", "RIGHT UP"},
         "",
         1},
        {"right pressed again after its release",
         false,
         false,
         {{0x84}, {0x87}, {0x84}, {0x87}},
         {"RIGHT DOWN", "RIGHT UP", "RIGHT DOWN", "RIGHT UP"},
         "",
         2},
        {"release goes to the last press only",
         false,
         false,
         {{0x81}, {0x84}, {0x87}},
         {"LEFT DOWN", "RIGHT DOWN", "RIGHT UP"},
         "L",
         1},
        {"bytes outside the vocabulary", false, false, {{0x00, 0x41, 0x80, 0x86, 0xFF}}, {}, "", 0},
        {"press and release in one burst",
         false,
         false,
         {{0x81, 0x87}},
         {"LEFT DOWN", "LEFT UP"},
         "",
         1},
        // The second slot still holds the release of the first burst and acts again.
        {"stale slot re-acted on",
         false,
         false,
         {{0x81, 0x87}, {0x84}},
         {"LEFT DOWN", "LEFT UP", "RIGHT DOWN", "RIGHT UP"},
         "",
         2},
        {"eleventh byte of a burst dropped",
         false,
         false,
         {{0x81, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x87}, {}},
         {"LEFT DOWN"},
         "L",
         0},
        {"swapped pedals",
         false,
         true,
         {{0x81}, {0x87}, {0x84}},
         {"RIGHT DOWN", "RIGHT UP", "LEFT DOWN"},
         "R",
         1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Bench bench(SerialPedalOptions{c.pedalSwap, false});
        bench.record.TwoPedalsSER = c.twoPedals;
        for (const auto& burst : c.events) bench.event(burst);
        EXPECT_EQ(bench.sink.edges, c.edges);
        EXPECT_EQ(bench.held(), c.heldAfter);
        EXPECT_EQ(bench.stepBackStops, c.stepBackStops);
        EXPECT_TRUE(bench.port.bytes.empty());
    }
}

TEST(SerialPedalDecoderTest, PressesDuringInsertOrOverwriteAreLostUnlessOneTap) {
    struct Guard {
        bool insert, overwrite, oneTap;
        bool pressTaken;
    };
    for (const Guard g : {Guard{true, false, false, false}, Guard{false, true, false, false},
                          Guard{true, true, true, true}, Guard{false, false, false, true}}) {
        SCOPED_TRACE(::testing::Message() << g.insert << g.overwrite << g.oneTap);
        Bench bench;
        bench.dictation.DoingInsertUpdate = g.insert;
        bench.dictation.OverWriteFile = g.overwrite;
        bench.record.OneTapRecPause = g.oneTap;
        bench.event({0x85});
        EXPECT_EQ(bench.hits.MIDSERPEDALHit, g.pressTaken);
        EXPECT_EQ(bench.hits.HandSetHitNotHit, g.pressTaken);
        EXPECT_EQ(bench.sink.edges.size(), g.pressTaken ? 1U : 0U);
    }
}

TEST(SerialPedalDecoderTest, GuardedPressLeavesTheRestOfTheBurstForTheNextEvent) {
    Bench bench;
    bench.dictation.DoingInsertUpdate = true;
    bench.event({0x84, 0x81, 0x87});
    EXPECT_TRUE(bench.sink.edges.empty());
    EXPECT_EQ(bench.port.bytes.size(), 2U);
    EXPECT_EQ(bench.decoder.lastSerCode(), 0);

    bench.dictation.DoingInsertUpdate = false;
    bench.event({});
    EXPECT_EQ(bench.sink.edges, (std::vector<std::string>{"LEFT DOWN", "LEFT UP"}));
    EXPECT_TRUE(bench.port.bytes.empty());
}

TEST(SerialPedalDecoderTest, LoadingOrBusyStationReadsNothing) {
    Bench bench;
    bench.silenced = true;
    bench.event({0x81});
    EXPECT_TRUE(bench.sink.edges.empty());
    EXPECT_EQ(bench.port.bytes.size(), 1U);
    bench.silenced = false;
    bench.event({});
    EXPECT_EQ(bench.sink.edges, std::vector<std::string>{"LEFT DOWN"});
}

TEST(SerialPedalDecoderTest, ModemLinesAsPedalsWhenThatBranchIsOn) {
    Bench bench(SerialPedalOptions{false, true});
    bench.record.TwoPedalsSER = true;
    bench.port.cd = bench.port.dsr = bench.port.cts = true;
    bench.event({});
    bench.port.cd = false;
    bench.event({});
    // A held USB pedal keeps the lines unread.
    bench.hits.LEFTUSBPEDALHit = true;
    bench.port.cts = false;
    bench.event({});
    EXPECT_EQ(bench.sink.edges, (std::vector<std::string>{"LEFT DOWN", "RIGHT DOWN", "LEFT UP"}));
    EXPECT_EQ(bench.held(), "R");
    EXPECT_EQ(bench.stepBackStops, 1);
}

}  // namespace
}  // namespace ovd::devices
