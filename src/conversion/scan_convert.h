#pragma once
// The recovery window: it turns the work files a crash left in the recordings'
// Temp folder into finished recordings in the format in force, throws away what
// holds nothing, and keeps copies in BACK. The same window converts one chosen
// file by hand. This is its logic and its screen as data; the desktop draws it.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "engine/audio_converter.h"
#include "engine/audio_format.h"
#include "platform/event_loop.h"
#include "platform/prompts.h"
#include "platform/timer.h"
#include "settings/config_file.h"
#include "settings/event_log.h"

namespace ovd::conversion {

// The colours of the RESTORE button: red while a folder is being worked through,
// green once a conversion has ended.
inline constexpr int kWorkingColour = 255;
inline constexpr int kDoneColour = 65280;

inline constexpr const char* kRecoveryCaption = "Recover Temporary Files";
// The window's own caption when opened by hand; the misspelling is its own.
inline constexpr const char* kByHandCaption = "Recover Termporary Files";
inline constexpr const char* kRecoveredText = "Temporary Files RECOVERED";
inline constexpr const char* kEmptyFileDeleted =
    "It appears because of the file size, that this file has not been recorded on.  File will be "
    "deleted.";
// Below this many bytes a file holds nothing but a header: it is deleted.
inline constexpr std::uintmax_t kMinimumFileBytes = 1025;

struct OperationRow {
    std::string Time;  // "hh:mm:ss"
    std::string Operation;
};

// The four folders the window shows, each with its list box.
enum class FileBox {
    Save,        // saveFiles: "Save", where the BACKUP copies of temporaries go
    Temp,        // tempFiles: the work files
    Recordings,  // recordingFiles: the recordings folder itself
    Back,        // backFiles: "BACK", a copy of every recovered file
};

struct ScanConvertView {
    std::string caption = kByHandCaption;
    std::string tempFolderText;               // Label1: the Temp folder
    std::string recordingsFolderText;         // Label2: the recordings folder
    std::string backFolderText;               // Label3: the BACK folder
    std::string saveFolderText;               // Label4: the Save folder
    std::string recoveredNotice;              // Label5: "Temporary Files RECOVERED"
    std::string currentFileText;              // Label6: the file being made
    std::vector<std::string> saveFiles;       // fileBox1
    std::vector<std::string> tempFiles;       // fileBox2
    std::vector<std::string> recordingFiles;  // fileBox3
    std::vector<std::string> backFiles;       // fileBox4
    std::vector<std::string> finishedFiles;
    std::vector<OperationRow> viewEvent;
    int restoreButtonColour = 0;  // Command2's
    // The RESTORE button: hidden while the window recovers by itself.
    bool restoreButtonVisible = true;
    bool workingSign = false;  // Image1: shown while a folder is worked through
    int ProgressConvert = 0;
    bool busy = false;
    unsigned long revision = 0;
};

enum class ScanMode {
    Recovery,  // opened at start for the work files of a run that did not end in order
    ByHand,    // opened from the menu
};

struct ScanConvertParts {
    platform::EventLoop& loop;
    settings::ConfigFile& config;
    settings::EventLog& log;
    platform::Prompts& prompts;
};

class ScanConvert {
  public:
    explicit ScanConvert(ScanConvertParts parts);
    ScanConvert(const ScanConvert&) = delete;
    ScanConvert& operator=(const ScanConvert&) = delete;

    // Makes the four folders, fills the lists, and when the last run did not end in
    // order starts the recovery a moment later (recoveryDelay), so the window shows first.
    void Form_Load(ScanMode mode);
    void recoveryDelayTick();  // Timer1_Timer

    void cancelClicked();   // Command1_Click: "Cancel", the conversion under way stops
    void restoreClicked();  // Command2_Click: "RESTORE Temporary Files"
    void exitClicked();     // Command3_Click: "Exit"
    // A click on a list shows the folder of its file; a double click on the work
    // files offers the size test for that one file.
    void fileBoxClick(FileBox box);
    void tempFileDoubleClicked(const std::string& name);  // fileBox2_DblClick
    // The plain conversion: a file the user chooses becomes a recording of the format
    // in force in the recordings folder; the chosen file stays as it was.
    void ConvertChosenFile();

    // The target format from the group in force.
    void SetConverterFormat();
    // Works through Temp, then BACK; the crash state is cleared at the end.
    void RecoverAll();
    // Works through one folder until nothing is left in it, or a file in use or a
    // file that is no work file ends the round.
    void RecoverFolder(const std::string& folder);
    // Removes what saves cut short by a crash left beside the letters whose takes
    // wait in Temp: the half-written file and an empty letter.
    void clearInterruptedSaves();

    // The recovery was asked for or runs: the main window takes no commands meanwhile.
    [[nodiscard]] bool working() const { return view.busy || recoveryDelay.Enabled(); }
    [[nodiscard]] const engine::TargetFormat& converterFormat() const { return format_; }
    [[nodiscard]] const std::string& formatWord() const { return gFormatType_; }

    ScanConvertView view;
    platform::Timer recoveryDelay;  // Timer1
    // Called after every change of the view.
    std::function<void()> onViewChanged;
    // The window is to close.
    std::function<void()> onClose;
    // The recovery is over: the main window takes commands again.
    std::function<void()> onRecovered;

  private:
    // The folders under the recordings folder.
    [[nodiscard]] std::string recordings() const;
    [[nodiscard]] std::string folderFor(FileBox box) const;
    void refreshLists();
    void LogEvent(const std::string& text);
    void changed();

    // One round of RecoverFolder on its first file; false when the round ends the procedure.
    bool recoverFirstFile(const std::string& folder);
    // The name a recovered take starts with: its letter's, or the fallback.
    [[nodiscard]] std::string recoveredStem(const std::string& workFile,
                                            const std::string& fallback) const;
    // After a failed conversion: true, after telling the user, when the disk has no
    // room for the take; the work file then stays as it is.
    bool shortOfRoomFor(const std::string& path);
    void RenameTemporary(const std::string& path);
    // The conversion of one file into TempName's target in the format in force;
    // the target made, or nothing when the conversion failed or was cancelled.
    std::optional<std::string> convertToFormatInForce(const std::string& source);
    bool ConvertToDSP(const std::string& source);
    bool ConvertToMP2(const std::string& source);
    bool ConvertToMP3(const std::string& source, const std::string& target);
    bool ConvertToRAW(const std::string& source);
    bool ConvertToVOX(const std::string& source);
    bool ConvertToPCM(const std::string& source, const std::string& target);
    bool runConverter(const std::string& routine, const std::string& source,
                      const std::string& target, const engine::TargetFormat& format);
    // Lets events run until the conversion is complete; false on an error or a cancel.
    bool WaitForConverter(const std::string& target);

    ScanConvertParts parts_;
    engine::AudioConverter converter;  // AudioConvert1
    std::string gFormatType_;
    engine::TargetFormat format_;
    std::string currentFile_;
    std::string TempName;  // the target's name without extension
    bool UserCanceled = false;
    bool spaceShort_ = false;
};

// True when the folder holds a work file (a temporary) that waits for the recovery.
[[nodiscard]] bool anyWorkFileIn(const std::string& folder);

}  // namespace ovd::conversion
