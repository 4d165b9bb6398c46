// Any bytes as what comes down the serial pedal's line, in bursts of any length,
// with the insert guard, the loading silence and the modem lines changing between
// receive events: the handler must never read more than a burst's share, must take
// a whole share whenever it is not left early, and each pedal's edges must
// alternate down, up, down, with its press flag telling which came last.

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <string>

// The fuzz targets link the settings library only: the decoder is built in here.
#include "../src/devices/serial_pedal_decoder.cpp"
#include "support/scripted_serial_line.h"

namespace {

using namespace ovd::devices;

void check(bool condition) {
    if (!condition) __builtin_trap();
}

using Line = ovd::testing::ScriptedSerialLine;

struct Alternation : PedalEventSink {
    std::map<std::string, bool> down;
    bool middleSeen = false;
    bool strict = true;
    void PedalEventSER(const std::string& pedal, const std::string& direction) override {
        check(pedal == kLeft || pedal == kMiddle || pedal == kRight);
        check(direction == kDown || direction == kUp);
        const bool isDown = direction == kDown;
        if (strict) check(down[pedal] != isDown);
        down[pedal] = isDown;
        if (pedal == kMiddle) middleSeen = true;
    }
    void PedalEventUSB(const std::string&, const std::string&) override { check(false); }
    void PedalEventGAME(const std::string&, const std::string&) override { check(false); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    ovd::settings::SettingsRecord record;
    ovd::dictation::DictationState dictation;
    PedalHits hits;
    Alternation sink;
    Line line;
    bool silenced = false;
    // The station never has both switched on, and the line pedals may release the
    // right pedal a second time through its byte rule: alternation holds for bytes.
    const bool modemLines = input.ConsumeBool();
    const bool swap = !modemLines && input.ConsumeBool();
    sink.strict = !modemLines;
    record.TwoPedalsSER = input.ConsumeBool();
    SerialPedalDecoder decoder(record, dictation, hits, sink,
                               SerialPedalHooks{[&] { return silenced; }, [] {}},
                               SerialPedalOptions{swap, modemLines});

    while (input.remaining_bytes() > 0) {
        const std::uint8_t flags = input.ConsumeIntegral<std::uint8_t>();
        dictation.DoingInsertUpdate = (flags & 1) != 0;
        dictation.OverWriteFile = (flags & 2) != 0;
        record.OneTapRecPause = (flags & 4) != 0;
        silenced = (flags & 8) != 0;
        line.cd = (flags & 16) != 0;
        line.dsr = (flags & 32) != 0;
        line.cts = (flags & 64) != 0;
        const auto burst = input.ConsumeBytes<std::uint8_t>(input.ConsumeIntegralInRange(0, 16));
        line.bytes.insert(line.bytes.end(), burst.begin(), burst.end());
        const std::size_t before = line.bytes.size();
        const bool ranThrough = decoder.OnComm(line);
        const std::size_t taken = before - line.bytes.size();
        check(taken <= SerialPedalDecoder::kSlots + 1);
        // A turn that ran through took all it could: the port's receive loop counts
        // on it to empty the line.
        if (ranThrough)
            check(taken == std::min<std::size_t>(before, SerialPedalDecoder::kSlots + 1));
        if (silenced) check(taken == 0);

        check(!(hits.RIGHTSERPEDALHit && hits.RIGHTSERPEDALUpHit) || modemLines);
        if (modemLines) continue;
        const char* left = swap ? kRight : kLeft;
        const char* right = swap ? kLeft : kRight;
        check(sink.down[left] == hits.LEFTSERPEDALHit);
        check(sink.down[kMiddle] == hits.MIDSERPEDALHit);
        check(sink.down[right] == hits.RIGHTSERPEDALHit);
    }
    if (record.TwoPedalsSER) check(!sink.middleSeen);
    return 0;
}
