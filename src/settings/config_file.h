#pragma once
// DigitalRecorder.cfg in the data folder: the settings in force, loaded once at
// start and after each reset of the recorder, and written whole at every change
// so that a crash loses nothing that has been set.

#include <functional>
#include <optional>
#include <string>

#include "platform/prompts.h"
#include "settings/record_grammar.h"
#include "settings/settings_record.h"

namespace ovd::settings {

inline constexpr const char* kConfigFileName = "DigitalRecorder.cfg";
inline constexpr const char* kConfigMissingMessage =
    "Configuration File is missing. Program will not run.";
inline constexpr const char* kProductTitle = "Orvane Voice Desk";

// What the start-up does about work files found in the temporary folder.
enum class RecoveryAtStart {
    Nothing,        // recovery is off, or there is nothing to recover
    LetBeThisOnce,  // the last run ended normally: leave the files this time
    OpenRecovery,   // the last run did not end normally: offer to recover
};

class ConfigFile {
  public:
    explicit ConfigFile(std::string dataFolder);

    // The settings in force; every setter changes a field here and calls WriteConfig().
    SettingsRecord record;

    [[nodiscard]] const std::string& dataFolder() const { return dataFolder_; }
    [[nodiscard]] const std::string& path() const { return path_; }
    // How many times the record was written since this object was made.
    [[nodiscard]] int writeCount() const { return writeCount_; }

    // Loads the record. A missing, short or damaged file is no error: what can't be
    // read keeps its value, and a damaged file is copied aside before anything is
    // written over it. Then the two fill-ins: an empty ScreenSize becomes
    // "Regular", an empty CaptureFilePath the Recordings folder of the data folder,
    // each followed by its own write. A folder setting never names a folder of the
    // current directory: a relative one lies below the data folder.
    // While the record can't be written, the settings in memory are the ones in
    // force, and a load keeps them rather than going back to the stale file.
    void ReadConfig();
    // Writes the whole record beside the file and puts it in place, so that the
    // file holds either the old record or the new one; Port 0 is stored as 1.
    // False when the write failed: the settings are then in force in memory only,
    // and onWriteFailed hears why (once until a write succeeds again).
    bool WriteConfig();
    std::function<void(const std::string& reason)> onWriteFailed;
    [[nodiscard]] bool writeFailing() const { return unwritten_.has_value(); }
    // What the first load found wrong with the file, and where its copy was kept.
    [[nodiscard]] const std::optional<RecordDamage>& damage() const { return damage_; }
    [[nodiscard]] const std::string& damagedCopy() const { return damagedCopy_; }
    // Back to a clean "Ready" state: write, clear the working fields of the
    // recorder (and, through the callback, the dictation's own working state),
    // then load again, so the file is the authority for every setting.
    void ResetRecorderState(const std::function<void()>& clearWorkingState = {});

    // Start-up, as far as this file goes. False, after the message, when the file is
    // missing or empty and the station must not run.
    [[nodiscard]] bool startUp(platform::Prompts& prompts);
    // A recording device not yet known is taken from the sound system's current one.
    void takeRecordingDevice(const std::string& index, const std::string& name);
    [[nodiscard]] RecoveryAtStart recoveryAtStart(bool workFilesPresent);
    // A window position never stored is taken from where the window is (in memory;
    // the next write of the record stores it).
    void takeWindowPosition(int left, int top);

  private:
    void keepDamagedCopy();
    void resolveFolderSettings();

    std::string dataFolder_;
    std::string path_;
    int writeCount_ = 0;
    std::optional<SettingsRecord> unwritten_;  // the record a failed write could not store
    std::optional<RecordDamage> damage_;
    bool damageTold_ = false;
    std::string damagedCopy_;
};

// What the user is told when the settings file was damaged.
[[nodiscard]] std::string damagedSettingsText(const std::string& path, const RecordDamage& damage,
                                              const std::string& copy);

}  // namespace ovd::settings
