#pragma once
// The MP3 encoder's options window as data, and the encoder settings it keeps in
// the data folder (EncoderOptions.ini) from one run to the next. The settings are
// shown as the command line of the command-line encoder that makes the same file.

#include <array>
#include <string>
#include <string_view>

namespace ovd::configuration {

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

// The encoder settings kept in the data folder; defaults when there are none.
Mp3Settings loadMp3Settings(const std::string& dataFolder);
// False when the file could not be written.
bool storeMp3Settings(const std::string& dataFolder, const Mp3Settings& settings);

// "Current bitrate: 32 kbit"
std::string bitRateCaption(int bitRateIndex);
// The slider position of a rate of the format boxes; the nearest lower rate where
// the slider lacks it (40 and 80 can't be set on the slider).
int sliderIndexOfBitRate(int kbit);
int frequencyIndexOf(int hz);

// txtCommLine: the command-line encoder's arguments that make the same file from
// "in.wav" into "out.mp3", the program name first.
std::string lameCommandLine(const Mp3Settings& settings, std::string_view in = "in.wav",
                            std::string_view out = "out.mp3");

// The values the window writes back into a format group of the file-save
// settings: frequency, bit rate and channel count, as the boxes hold them.
struct FormatBoxValues {
    std::string frequency;
    std::string bitRate;
    std::string channels;
};
FormatBoxValues formatBoxValues(const Mp3Settings& settings);

}  // namespace ovd::configuration
