#pragma once
// What the format option windows keep in the data folder (EncoderOptions.ini),
// beside the settings record: the layout of headerless RAW files and the rate of
// VOX files, and the MP3 encoder's settings. A take in the RAW format is made
// and saved as the layout says; an MP3 is encoded as the MP3 settings say.

#include <array>
#include <string>

#include "platform/result.h"

namespace ovd::settings {

inline constexpr const char* kEncoderOptionsFile = "EncoderOptions.ini";

// The ten rates of the VOX and RAW windows (F1..F10).
inline constexpr std::array<int, 10> kLayoutFrequencies = {6000,  8000,  11025, 12000, 16000,
                                                           22050, 24000, 32000, 44100, 48000};

struct RawLayout {
    int compression = 2;     // 0 mu-law, 1 A-law, 2 16-bit PCM
    int channels = 1;        // 1 or 2
    int frequencyIndex = 1;  // into kLayoutFrequencies: 8000 Hz
    bool operator==(const RawLayout&) const = default;
};

// Defaults for what was never kept, or can't be read.
RawLayout loadRawLayout(const std::string& dataFolder);
// False when the file could not be written.
platform::Result<void> storeRawLayout(const std::string& dataFolder, const RawLayout& layout);
// The MP3 options window's lists, each in the order it shows them.
inline constexpr std::array<int, 9> kMp3Frequencies = {8000,  11025, 12000, 16000, 22050,
                                                       24000, 32000, 44100, 48000};
inline constexpr std::array<const char*, 9> kMp3FrequencyNames = {
    "8 000 Hz",  "11 025 Hz", "12 000 Hz", "16 000 Hz", "22 050 Hz",
    "24 000 Hz", "32 000 Hz", "44 100 Hz", "48 000 Hz"};
// The slider's own rates: unlike the format boxes it has no 40 or 80.
inline constexpr std::array<int, 15> kMp3SliderBitRates = {8,   16,  24,  32,  48,  56,  64, 96,
                                                           112, 128, 160, 192, 224, 256, 320};
inline constexpr std::array<const char*, 5> kChannelModeNames = {
    "Mono", "Stereo", "Joint Stereo", "Forced Joint Stereo", "Dual Channels"};
inline constexpr std::array<const char*, 8> kPresetNames = {"None", "R3Mix", "Studio", "HiFi",
                                                            "Tape", "Radio", "Voice",  "Phone"};
inline constexpr std::array<const char*, 6> kAltPresetNames = {
    "None", "Fast Standard", "Standard", "Fast Extreme", "Extrene", "Insane"};
inline constexpr std::array<const char*, 4> kVbrMethodNames = {"None", "Default", "MTRH", "ABR"};
inline constexpr std::array<const char*, 4> kAthControlNames = {"default", "only", "disabled",
                                                                "only for short blocks"};
inline constexpr std::array<const char*, 3> kEmphasisNames = {"default", "0/15 microseconds",
                                                              "citt j.17"};

enum class ChannelMode { Mono, Stereo, JointStereo, ForcedJointStereo, DualChannels };
enum class VbrMethod { None, Default, Mtrh, Abr };

struct Mp3Settings {
    int frequencyIndex = 3;                  // cmbFrequency: 16 000 Hz
    ChannelMode mode = ChannelMode::Mono;    // cmbChMode
    int bitRateIndex = 3;                    // sldrBitrate: 32 kbit
    int quality = 5;                         // sldrQuality, 0 better .. 9 faster
    int preset = 0;                          // opPreset
    int altPreset = 0;                       // opAltPreset
    VbrMethod vbr = VbrMethod::None;         // cmbVBRCodingMethod
    int vbrQuality = 4;                      // txtVbrQuality, 0..9
    int vbrMaxBitRateIndex = 14;             // sldrVbrBitrate
    int abrBitRate = 64;                     // txtAbrBitrate, kbit
    bool writeVbrHeader = true;              // chWriteVBRHeader
    bool strictlyEnforceMinBitRate = false;  // chStrictlyEnforceMinBitrate
    int athControl = 0;                      // cmbATHControl
    int emphasis = 0;                        // cmbEmphasis
    bool strictIso = false;                  // chStrictlyISOCompliance
    bool shortBlocks = true;                 // chShortBlocks
    bool bitReservoir = true;                // chBitReservoir
    bool blockType = false;                  // chBlockType: all blocks of one type
    bool errorProtection = false;            // chErrorProtection
    bool highPass = false;                   // chHFilt
    int highPassFrequency = 100;
    int highPassWidth = 0;
    bool lowPass = false;  // chLFilt
    int lowPassFrequency = 7000;
    int lowPassWidth = 0;

    bool operator==(const Mp3Settings&) const = default;
};

// The MP3 encoder's settings kept in the data folder; defaults when there are none.
Mp3Settings loadMp3Settings(const std::string& dataFolder);
// False when the file could not be written.
bool storeMp3Settings(const std::string& dataFolder, const Mp3Settings& settings);

// The Ogg Vorbis options of the editor's Save As: the rate and channels, and a
// quality or a nominal bit rate (with bounds when the rate may vary).
inline constexpr std::array<int, 12> kOggBitRates = {32,  48,  64,  80,  96,  112,
                                                     128, 160, 192, 224, 256, 320};
struct OggSettings {
    int frequencyIndex = 7;  // into kMp3Frequencies: 44 100 Hz
    bool stereo = true;
    bool qualityEnabled = true;
    int quality = 3;  // 0..10
    bool vbrEnabled = false;
    int bitRateIndex = 6;     // 128 kbit
    int minBitRateIndex = 4;  // 96 kbit
    int maxBitRateIndex = 8;  // 192 kbit

    bool operator==(const OggSettings&) const = default;
};
OggSettings loadOggSettings(const std::string& dataFolder);
platform::Result<void> storeOggSettings(const std::string& dataFolder, const OggSettings& settings);

int loadVoxFrequencyIndex(const std::string& dataFolder);
platform::Result<void> storeVoxFrequencyIndex(const std::string& dataFolder, int frequencyIndex);

}  // namespace ovd::settings
