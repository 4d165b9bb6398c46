#pragma once
// The press state of every pedal the station listens to. It lives with the
// dictation because the transport's own buttons set the diagnostic flag too.

namespace ovd::dictation {

// The press state every pedal kind keeps: true from an accepted press to its release.
struct PedalHits {
    bool LEFTSERPEDALHit = false;
    bool MIDSERPEDALHit = false;
    bool RIGHTSERPEDALHit = false;
    bool RIGHTSERPEDALUpHit = false;
    bool LEFTUSBPEDALHit = false;
    bool MIDUSBPEDALHit = false;
    bool RIGHTUSBPEDALHit = false;
    bool LEFTGAMEPEDALHit = false;
    bool MIDGAMEPEDALHit = false;
    bool RIGHTGAMEPEDALHit = false;
    bool LEFTQDUPEDALHit = false;
    bool MIDQDUPEDALHit = false;
    bool RIGHTQDUPEDALHit = false;
    // Set by every accepted control event; shown in the support dump only.
    bool HandSetHitNotHit = false;
};

}  // namespace ovd::dictation
