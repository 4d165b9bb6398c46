#pragma once
// The option windows of the recording formats as data: MP3 encoder options, VOX
// and RAW sample layouts, and the sample type a recording is converted to. Opened
// from the file-save settings for one of its two format groups, a window writes
// its choice back into that group's boxes when it applies.

#include <array>
#include <functional>
#include <optional>
#include <string>

#include "configuration/mp3_options.h"
#include "settings/encoder_options.h"

namespace ovd::configuration {

// The ten rates of the VOX, RAW and conversion windows (F1..F10, opFq 0..9).
inline constexpr const std::array<int, 10>& kDialogFrequencies = settings::kLayoutFrequencies;
inline constexpr std::array<const char*, 3> kRawCompressionNames = {"8-bit mu-Law ", "8-bit A-Law ",
                                                                    "16-bit PCM"};

// Which format group of the file-save settings a window works on, if any.
enum class WorkingOnDefault {
    None,
    Normal,  // WorkingOnDefault1
    Other,   // WorkingOnDefault2
};

// What a window writes back into the file-save settings' boxes of its group:
// (other conditions, frequency, bit rate, channels).
using WriteBack = std::function<void(bool otherConditions, const FormatBoxValues& values)>;

// frmMP3
class Mp3OptionsDialog {
  public:
    Mp3OptionsDialog(std::string dataFolder, WorkingOnDefault working, WriteBack writeBack);

    Mp3Settings settings;  // the controls

    // "None" switches the whole VBR group off.
    [[nodiscard]] bool vbrGroupEnabled() const { return settings.vbr != VbrMethod::None; }
    [[nodiscard]] std::string bitRateLabel() const { return bitRateCaption(settings.bitRateIndex); }
    [[nodiscard]] std::string commandLine() const { return lameCommandLine(settings); }
    // cmdApply: the encoder takes the controls (kept in the data folder) and the
    // window stays; the boxes of the group worked on follow. False when the
    // settings could not be kept.
    bool apply();
    // cmdOK: apply, then the window closes.
    bool ok() { return apply(); }

  private:
    std::string dataFolder_;
    WorkingOnDefault working_;
    WriteBack writeBack_;
};

// frmVOX ("Set VOX Format") and frmRAW ("Set RAW Format"): what a VOX or RAW take
// is saved as, kept in the data folder beside the MP3 options.
using settings::loadRawLayout;
using settings::loadVoxFrequencyIndex;
using settings::RawLayout;
using settings::storeRawLayout;
using settings::storeVoxFrequencyIndex;

// frmConvert ("Convert Sample Type"): opened on the current file's rate and
// channels; a rate not in the list selects no rate button.
struct ConvertChoice {
    std::optional<int> frequencyIndex;  // opFq
    int channels = 1;                   // opCh
};
ConvertChoice convertChoiceFor(int samplesPerSecond, int channels);
// The rate of a choice; nothing when no rate button is chosen.
std::optional<int> convertRate(const ConvertChoice& choice);

// The window's logic, for whichever editor opens it: it knows the current file's
// rate and channels and hands the choice to the conversion it is given.
class ConvertDialog {
  public:
    using Convert = std::function<void(int samplesPerSecond, int channels)>;
    ConvertDialog(int samplesPerSecond, int channels, Convert convert);

    ConvertChoice choice;  // the controls

    // OK: the conversion gets the choice; false, with nothing done, while no
    // rate is chosen.
    bool ok();

  private:
    Convert convert_;
};

}  // namespace ovd::configuration
