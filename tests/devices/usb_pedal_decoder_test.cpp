// USB pedal reports to edges: one pedal at a time, the reports that change
// nothing, the guard, both drivers' entries and the stream's report size.

#include "devices/usb_pedal_decoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

namespace ovd::devices {
namespace {

using Report = std::vector<std::uint8_t>;

// Notes each edge with the pedal state the decoder shows while the edge is handed on.
class EdgeLog : public PedalEventSink {
  public:
    const UsbPedalDecoder* decoder = nullptr;
    std::function<void()> duringEdge;
    std::vector<std::string> edges;

    void PedalEventUSB(const std::string& pedal, const std::string& direction) override {
        edges.push_back(pedal + " " + direction + " " + std::to_string(decoder->MSLastUSB));
        if (duringEdge) duringEdge();
    }
    void PedalEventSER(const std::string&, const std::string&) override { edges.push_back("SER"); }
    void PedalEventGAME(const std::string&, const std::string&) override {
        edges.push_back("GAME");
    }
};

struct Fixture {
    EdgeLog sink;
    PedalHits hits;
    settings::SettingsRecord settings;
    dictation::DictationState state;
    UsbPedalDecoder decoder{sink, hits, settings, state};
    int stepBackStops = 0;

    Fixture() {
        sink.decoder = &decoder;
        decoder.USBPedals = true;
        decoder.stopStepBack = [this] { ++stepBackStops; };
    }
};

struct DecodeCase {
    const char* name;
    std::function<void(Fixture&)> setUp;
    std::vector<Report> reports;
    std::vector<std::string> edges;
    std::int16_t lastUsb;
};

TEST(UsbPedalDecoderTest, ReportsBecomeEdgesOnePedalAtATime) {
    const auto none = [](Fixture&) {};
    const std::vector<DecodeCase> cases = {
        // The left pedal shows itself held already while its press is handed on.
        {"left", none, {{0, 1, 0}, {0, 0, 0}}, {"LEFT DOWN 1", "LEFT UP 1"}, 4},
        {"middle", none, {{0, 2}, {0, 0}}, {"MIDDLE DOWN 0", "MIDDLE UP 2"}, 5},
        {"right leaves 3", none, {{0, 4}, {0, 0}}, {"RIGHT DOWN 0", "RIGHT UP 3"}, 3},
        {"repeated report", none, {{0, 1}, {0, 1}, {0, 1}}, {"LEFT DOWN 1"}, 1},
        {"byte 0 not 0 hides even a release", none, {{0, 1}, {1, 0}, {7, 0}}, {"LEFT DOWN 1"}, 1},
        {"too short", none, {{0}, {}}, {}, 0},
        {"two at once: the leftmost", none, {{0, 3}}, {"LEFT DOWN 1"}, 1},
        {"left up, right still down: right counts in the same pass",
         none,
         {{0, 1}, {0, 5}, {0, 4}},
         {"LEFT DOWN 1", "LEFT UP 1", "RIGHT DOWN 4"},
         3},
        {"right up, left still down: left counts at the next report",
         none,
         {{0, 4}, {0, 5}, {0, 1}, {0, 1}},
         {"RIGHT DOWN 0", "RIGHT UP 3", "LEFT DOWN 1"},
         1},
        {"a second pedal let go before the first is never seen",
         none,
         {{0, 2}, {0, 3}, {0, 2}, {0, 0}},
         {"MIDDLE DOWN 0", "MIDDLE UP 2"},
         5},
        {"not polled", [](Fixture& f) { f.decoder.USBPedals = false; }, {{0, 1}}, {}, 0},
        {"serial pedal held", [](Fixture& f) { f.hits.MIDSERPEDALHit = true; }, {{0, 1}}, {}, 0},
        {"desk unit pedal held",
         [](Fixture& f) { f.hits.RIGHTQDUPEDALHit = true; },
         {{0, 1}},
         {},
         0},
        {"game pedal held does not block",
         [](Fixture& f) { f.hits.LEFTGAMEPEDALHit = true; },
         {{0, 1}},
         {"LEFT DOWN 1"},
         1},
        {"insert under hold-to-record loses the press and its release",
         [](Fixture& f) { f.state.DoingInsertUpdate = true; },
         {{0, 1}, {0, 0}},
         {},
         0},
        {"overwrite under hold-to-record",
         [](Fixture& f) { f.state.OverWriteFile = true; },
         {{0, 4}},
         {},
         0},
        {"insert under one-tap counts",
         [](Fixture& f) {
             f.state.DoingInsertUpdate = true;
             f.settings.OneTapRecPause = true;
         },
         {{0, 2}},
         {"MIDDLE DOWN 0"},
         2},
    };
    for (const DecodeCase& c : cases) {
        for (const bool newDriver : {false, true}) {
            Fixture f;
            c.setUp(f);
            for (const Report& report : c.reports) {
                if (newDriver) {
                    f.decoder.UseHIDDataNew(report);
                } else {
                    f.decoder.UseHIDData(report);
                }
            }
            EXPECT_EQ(f.sink.edges, c.edges) << c.name << (newDriver ? " (new)" : "");
            EXPECT_EQ(f.decoder.MSLastUSB, c.lastUsb) << c.name;
            EXPECT_FALSE(f.decoder.HIDDecoding) << c.name;
            const auto ups = std::count_if(
                c.edges.begin(), c.edges.end(),
                [](const std::string& e) { return e.find(" UP ") != std::string::npos; });
            EXPECT_EQ(f.stepBackStops, ups) << c.name << ": every release stops the step-back";
            EXPECT_EQ(f.hits.HandSetHitNotHit, c.edges.size() > 0) << c.name;
        }
    }
}

TEST(UsbPedalDecoderTest, AReportArrivingDuringAnEdgeIsDropped) {
    Fixture f;
    f.sink.duringEdge = [&] {
        EXPECT_TRUE(f.decoder.HIDDecoding);
        const Report release{0, 0};
        f.decoder.UseHIDData(release);
    };
    f.decoder.UseHIDData(Report{0, 1});
    EXPECT_EQ(f.sink.edges, std::vector<std::string>{"LEFT DOWN 1"});
    EXPECT_TRUE(f.hits.LEFTUSBPEDALHit);
    EXPECT_FALSE(f.decoder.HIDDecoding);
    f.sink.duringEdge = nullptr;
    f.decoder.UseHIDData(Report{0, 0});
    EXPECT_FALSE(f.hits.LEFTUSBPEDALHit);
}

struct BatchCase {
    const char* name;
    std::vector<Report> batches;
    std::uint8_t size;
    std::vector<std::string> edges;
};

TEST(UsbPedalDecoderTest, TheStreamLearnsItsReportSizeFromTheFirstBatchThatTellsIt) {
    const std::vector<BatchCase> cases = {
        {"six bytes teach nothing and are lost", {{0, 1, 0, 0, 0, 0}}, 0, {}},
        {"three bytes give 3", {{0, 1, 0}}, 3, {"LEFT DOWN 1"}},
        {"four bytes give 2", {{0, 2, 0, 0}}, 2, {"MIDDLE DOWN 0", "MIDDLE UP 2"}},
        {"nine bytes, three reports",
         {{0, 1, 0, 0, 0, 0, 0, 4, 0}},
         3,
         {"LEFT DOWN 1", "LEFT UP 1", "RIGHT DOWN 4"}},
        {"once learned, six bytes are two reports",
         {{0, 4, 0}, {0, 0, 0, 0, 1, 0}},
         3,
         {"RIGHT DOWN 0", "RIGHT UP 3", "LEFT DOWN 1"}},
        {"a lost batch, then a size", {{0, 4, 0, 0, 0, 0}, {0, 4}}, 2, {"RIGHT DOWN 0"}},
    };
    for (const BatchCase& c : cases) {
        Fixture f;
        std::array<std::uint8_t, kHIDBatchBytes> buffer{};
        for (const Report& batch : c.batches) {
            std::copy(batch.begin(), batch.end(), buffer.begin());
            f.decoder.useHIDBatch(buffer, static_cast<int>(batch.size()));
        }
        EXPECT_EQ(f.decoder.HIDReportSize, c.size) << c.name;
        EXPECT_EQ(f.sink.edges, c.edges) << c.name;
    }
}

TEST(UsbPedalDecoderTest, AFullBatchStaysInsideTheBuffer) {
    Fixture f;
    f.decoder.HIDReportSize = 2;
    std::array<std::uint8_t, kHIDBatchBytes> buffer{};
    buffer[kHIDBatchBytes - 1] = 1;  // the last report presses the left pedal
    f.decoder.useHIDBatch(buffer, kHIDBatchBytes + 50);
    EXPECT_EQ(f.sink.edges, std::vector<std::string>{"LEFT DOWN 1"});
}

TEST(UsbPedalDecoderTest, RawDisplayAndHexPad) {
    const std::vector<std::tuple<std::uint32_t, int, std::string>> pads = {
        {0x25, 3, "025"}, {0, 2, "00"}, {0xff, 3, "0FF"}, {0x1abc, 2, "1ABC"}};
    for (const auto& [value, width, text] : pads) EXPECT_EQ(HexPad(value, width), text);

    Fixture f;
    const std::array<std::uint8_t, 3> report{0, 5, 0};
    f.decoder.ShowRawHIDButtons(report);
    f.decoder.UseHIDDataNew(report);
    EXPECT_EQ(f.decoder.view.buttonsText, "Buttons: 05 ");
    using Indicator = UsbRawView::Indicator;
    EXPECT_EQ(f.decoder.view.indicators,
              (std::array{Indicator::Green, Indicator::ButtonFace, Indicator::Green}));
    // The raw line shows the state before this report was decoded.
    EXPECT_EQ(f.decoder.view.rawReport, "0   00 05 00");
    f.decoder.UseHIDDataNew(std::array<std::uint8_t, 3>{9, 0, 0});
    EXPECT_EQ(f.decoder.view.rawReport, "1   09 00 00") << "shown though ignored";
    f.decoder.UseHIDData(std::array<std::uint8_t, 3>{0, 0, 0});
    EXPECT_EQ(f.decoder.view.rawReport, "1   09 00 00") << "the stream driver shows nothing";
    f.decoder.ShowRawHIDButtons(std::array<std::uint8_t, 3>{0, 2, 0});
    EXPECT_EQ(f.decoder.view.indicators,
              (std::array{Indicator::ButtonFace, Indicator::Green, Indicator::ButtonFace}));
}

}  // namespace
}  // namespace ovd::devices
