#include "devices/serial_pedal_decoder.h"

#include <utility>

namespace ovd::devices {

SerialPedalDecoder::SerialPedalDecoder(const settings::SettingsRecord& record,
                                       const dictation::DictationState& dictation, PedalHits& hits,
                                       PedalEventSink& sink, SerialPedalHooks hooks,
                                       SerialPedalOptions options)
    : record_(record),
      dictation_(dictation),
      hits_(hits),
      sink_(sink),
      hooks_(std::move(hooks)),
      options_(options) {}

bool SerialPedalDecoder::pressAllowed() const {
    return record_.OneTapRecPause || !(dictation_.DoingInsertUpdate || dictation_.OverWriteFile);
}

bool SerialPedalDecoder::otherDevicePedalHeld() const {
    return hits_.LEFTQDUPEDALHit || hits_.MIDQDUPEDALHit || hits_.RIGHTQDUPEDALHit ||
           hits_.LEFTUSBPEDALHit || hits_.MIDUSBPEDALHit || hits_.RIGHTUSBPEDALHit;
}

void SerialPedalDecoder::press(const char* pedal) {
    hits_.HandSetHitNotHit = true;
    sink_.PedalEventSER(pedal, kDown);
}

void SerialPedalDecoder::release(const char* pedal) { sink_.PedalEventSER(pedal, kUp); }

bool SerialPedalDecoder::OnComm(SerialByteSource& port) {
    if (hooks_.silenced && hooks_.silenced()) return false;

    if (options_.NOSMARTPEDAL && !otherDevicePedalHeld() && !readModemLines(port)) return false;

    for (int i = 0; i < kSlots; ++i) {
        const auto byte = port.readByte();
        if (byte) {
            SerInput[i] = std::string(1, static_cast<char>(*byte));
            SerCode[i] = static_cast<std::int16_t>(*byte);
        } else {
            SerInput[i].clear();
        }
        // Kept on purpose: an empty read leaves the slot's old code, which is acted on again.
        if (!actOn(SerCode[i])) return false;
    }
    // Kept on purpose: an eleventh byte of a burst is read and dropped.
    (void)port.readByte();
    return true;
}

bool SerialPedalDecoder::readModemLines(SerialByteSource& port) {
    if (!readLine(port.CDHolding(), kLeft, hits_.LEFTSERPEDALHit)) return false;
    if (!record_.TwoPedalsSER && !readLine(port.DSRHolding(), kMiddle, hits_.MIDSERPEDALHit)) {
        return false;
    }
    return readLine(port.CTSHolding(), kRight, hits_.RIGHTSERPEDALHit);
}

bool SerialPedalDecoder::readLine(bool line, const char* pedal, bool& hit) {
    if (line && !hit) {
        if (!pressAllowed()) return false;
        hit = true;
        press(pedal);
    } else if (!line && hit) {
        release(pedal);
        hit = false;
        if (hooks_.stopStepBack) hooks_.stopStepBack();
    }
    return true;
}

bool SerialPedalDecoder::actOn(std::int16_t code) {
    const char* const left = options_.PedalSwap ? kRight : kLeft;
    const char* const right = options_.PedalSwap ? kLeft : kRight;

    if (code == kSerLeftPressed && !hits_.LEFTSERPEDALHit) {
        if (!pressAllowed()) return false;
        LastSerCode = kSerLeftPressed;
        hits_.LEFTSERPEDALHit = true;
        press(left);
    }
    if (code == kSerReleased && LastSerCode == kSerLeftPressed && hits_.LEFTSERPEDALHit) {
        release(left);
        hits_.LEFTSERPEDALHit = false;
        if (hooks_.stopStepBack) hooks_.stopStepBack();
    }
    if (!record_.TwoPedalsSER) {
        if (code == kSerMiddlePressed && !hits_.MIDSERPEDALHit) {
            if (!pressAllowed()) return false;
            LastSerCode = kSerMiddlePressed;
            hits_.MIDSERPEDALHit = true;
            press(kMiddle);
        }
        if (code == kSerReleased && LastSerCode == kSerMiddlePressed && hits_.MIDSERPEDALHit) {
            LastSerCode = kSerAfterMiddleRelease;
            release(kMiddle);
            hits_.MIDSERPEDALHit = false;
            if (hooks_.stopStepBack) hooks_.stopStepBack();
        }
    }
    if (code == kSerRightPressed && !hits_.RIGHTSERPEDALHit) {
        if (!pressAllowed()) return false;
        LastSerCode = kSerRightPressed;
        hits_.RIGHTSERPEDALHit = true;
        hits_.RIGHTSERPEDALUpHit = false;
        press(right);
    }
    // Kept on purpose: the right pedal's release tests its Up flag, not its Hit flag.
    if (code == kSerReleased && LastSerCode == kSerRightPressed && !hits_.RIGHTSERPEDALUpHit) {
        release(right);
        hits_.RIGHTSERPEDALHit = false;
        hits_.RIGHTSERPEDALUpHit = true;
        if (hooks_.stopStepBack) hooks_.stopStepBack();
    }
    return true;
}

}  // namespace ovd::devices
