#pragma once
// The file-save settings window as data: how recordings are named, where they go,
// the two recording formats, and what end of letter delivers. The controls hold a
// copy of the settings; they go back into the settings in force at the save, in
// its fixed order, except where a control writes at once (the delivery folders,
// the numbering). The scrolling and the tabbed window both render this one model.

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/prompts.h"
#include "settings/config_file.h"

namespace ovd::configuration {

// Which window shows the model: the tabbed one lacks a few controls, and the
// settings behind those keep their values.
enum class FormKind {
    Scrolling,  // frmcfgFileSaves
    Tabbed,     // frmcfgFileSavesTab
};

// One recording format: the four boxes and which of them take a value.
struct FormatBoxes {
    std::string format;     // cboFormat
    std::string frequency;  // cboFreq
    std::string channels;   // cboChan
    std::string bitRate;    // cboBits
    bool frequencyEnabled = true;
    bool channelsEnabled = true;
    bool bitRateEnabled = true;
};

struct DestinationControls {
    bool on = false;     // chkSend1..3
    std::string folder;  // Label24, Label25, Label30
};

struct FileSavesControls {
    bool autoRewind = false;                 // chkAutoRewind
    bool autoInsert = false;                 // optIns
    bool autoOverwrite = false;              // optOver
    bool oneTapRecordPause = false;          // chkOneTapRecPause (scrolling only)
    std::string jumpBackSeconds;             // Text5
    bool noLogging = false;                  // chkNoLog
    int tcpDelay = 0;                        // opsecs 0..2
    bool stopRecordingWhenDiskFull = false;  // chkDFStopRec
    bool saveAtStop = false;                 // chkFileSave
    bool promptBarCode = false;              // chksufix (scrolling only)
    bool addLabel = false;                   // Check1
    std::string labelText;                   // Text3
    bool labelTextEnabled = false;
    bool sequential = false;                          // Option2; Option1 (date and time) when false
    std::string startingNumber;                       // Text2
    std::string places;                               // Text4
    bool numberingEnabled = false;                    // Text2, Text4 and Command4
    std::string recordingsFolder;                     // Text1
    FormatBoxes normal;                               // Normal Conditions
    FormatBoxes other;                                // Other Conditions
    int recordingVolume = 0;                          // sldrVolumeInp, 0..65535
    int playingVolume = 0;                            // sldrVolumeOut, 0..65535
    bool suppressWarnings = false;                    // Check2
    std::array<DestinationControls, 3> destinations;  // the third on the scrolling form only
    bool autoEmail = false;                           // chkAutoEmail
    std::string autoEmailName;                        // lblAutoEmail
    std::vector<std::string> receiverCompanies;       // cboCompanyName
    std::string chosenReceiverCompany;                // cboCompanyName's entry
    bool emailGroupEnabled = false;  // lblAvailableEMail, cboCompanyName, lblCurrEmail...
    bool autoFtp = false;            // chkAutoFTP
    std::string autoFtpName;         // lblAutoFTP
    bool ftpGroupEnabled = false;
    bool recovery = false;        // chkRecover
    bool tcp = false;             // chkTCP
    std::string hostIp;           // txtIP
    std::string hostPort;         // txtPort
    bool hostEnabled = false;     // txtIP and txtPort
    bool buttonScreen = false;    // chkButtonScreen
    bool autoDelete = false;      // chkAutoDelete
    bool overwriteToEnd = false;  // Check3
    // timCheckSeeIfNameAddIsOn: the automatic naming frame and its companions are
    // hidden while the speaker's name goes into file names, and the notice shows.
    bool namingShown = true;
    bool addNameNoticeShown = false;  // frmAddNameIsOn
    bool emailMenuEnabled = false;    // mnemail
    bool ftpMenuEnabled = false;      // mnFTP
};

// The desk unit's eight button actions (BUT1..BUT8), by what the buttons mean.
inline constexpr std::array<const char*, 8> kMessageButtonLabels = {"MSG1", "MSG2", "MSG3", "MSG4",
                                                                    "MSG5", "MSG6", "MSG7", "MSG8"};
inline constexpr std::array<const char*, 8> kStandardButtonLabels = {
    "New", "RenameFile", "Previous", "Next", "AudioSRC", "SendToOne", "SendToTwo", "EraseFile"};

// What the window reaches outside the settings.
struct FileSavesHooks {
    // The letter in hand is recording.
    std::function<bool()> recording;
    // The take is stopped, the letter closed and saved as the old settings say, and
    // the next letter opened, unrecorded, in the new ones.
    std::function<void()> saveTakeAndOpenNext;
    // The setup windows a delivery check opens on Yes; each returns when it closes.
    std::function<void()> emailSetup;
    std::function<void()> ftpSetup;
    // The letter in hand holds changes not yet saved.
    std::function<bool()> fileChanged;
    // The main window's volume sliders and the lines' volumes follow the defaults.
    std::function<void(int recording, int playing)> volumes;
    // The window showing the model closes.
    std::function<void()> close;
};

// How a save ended.
enum class SaveOutcome {
    Saved,          // every step ran and the window closed
    StoppedAtStep,  // a check refused; the steps before it stay in force, the window stays
    SetupOpened,    // a setup window was opened on the way, and the save ends there
};

class FileSavesForm {
  public:
    FileSavesForm(settings::ConfigFile& config, platform::Prompts& prompts, FileSavesHooks hooks,
                  FormKind kind);

    // Fills the controls from the settings in force, in the window's fixed order.
    void load();
    [[nodiscard]] const FileSavesControls& controls() const { return controls_; }
    [[nodiscard]] FormKind kind() const { return kind_; }
    // LoadingForm: true while load() fills the controls.
    [[nodiscard]] bool loading() const { return loading_; }

    // ---- What the window's controls call ----
    void setAutoRewind(bool on);  // chkAutoRewind_Click
    void setAutoInsert();         // optIns
    void setAutoOverwrite();      // optOver
    void setOneTapRecordPause(bool on);
    void setJumpBackSeconds(const std::string& text);
    void leaveJumpBackSeconds();  // Text5_LostFocus
    void setNoLogging(bool on);
    void setTcpDelay(int index);
    void setStopRecordingWhenDiskFull(bool on);
    void setSaveAtStop(bool on);  // chkFileSave_Click
    void setPromptBarCode(bool on);
    void setAddLabel(bool on);  // Check1_Click
    void setLabelText(const std::string& text);
    void chooseDateTimeNaming();    // Option1_Click
    void chooseSequentialNaming();  // Option2_Click
    void setStartingNumber(const std::string& text);
    void leaveStartingNumber();                                       // Text2_LostFocus
    void setPlaces(const std::string& text);                          // Text4_Change
    void resetNumbering();                                            // Command4_Click
    void changeRecordingsFolder();                                    // Command3_Click
    void restoreRecordingsFolder();                                   // Command1_Click
    void setFormat(bool otherConditions, const std::string& format);  // cboFormat_Click
    void setFrequency(bool otherConditions, const std::string& frequency);
    void setChannels(bool otherConditions, const std::string& channels);
    void setBitRate(bool otherConditions, const std::string& bitRate);
    void resetFormatDefaults();  // Command5_Click
    void setRecordingVolume(int position);
    void setPlayingVolume(int position);
    void setSuppressWarnings(bool on);
    void setDestination(int destination, bool on);  // chkSend1..3_Click, 1-based
    void setAutoEmail(bool on);                     // chkAutoEmail_Click
    void chooseReceiverCompany(const std::string& company);
    void setAutoFtp(bool on);  // chkAutoFTP_Click
    void setRecovery(bool on);
    void setTcp(bool on);  // chkTCP_Click
    void setHostIp(const std::string& text);
    void setHostPort(const std::string& text);
    void setButtonScreen(bool on);
    void setAutoDelete(bool on);
    void setOverwriteToEnd(bool on);
    // timCheckSeeIfNameAddIsOn_Timer: the window's timer while it is open.
    void checkAddNameToFile();

    // Command9: the save and exit. Command2 (Cancel) is a close with no step.
    SaveOutcome save();
    void cancel();

    // What a format dialog opened from here for a default writes back: the boxes of
    // the group it worked on (WorkingOnDefault1 or WorkingOnDefault2).
    void takeFromFormatDialog(bool otherConditions, const std::string& frequency,
                              const std::string& bitRate, const std::string& channels);

  private:
    void loadDeliveryDefaults();
    void enableEmailGroup(bool on);
    void enableFtpGroup(bool on);
    void enableFormatBoxes(FormatBoxes& boxes);
    bool writeSettings();
    void rememberSettingsOnDisk();
    bool emailStep();
    bool ftpStep();
    bool numberingStep();
    void fillEmptyFormatValues();
    // A folder a choice gives: made when missing and writable, or refused with the reason.
    bool folderUsable(const std::string& folder, bool forRecordings);
    FormatBoxes& boxes(bool otherConditions) {
        return otherConditions ? controls_.other : controls_.normal;
    }

    settings::ConfigFile& config_;
    platform::Prompts& prompts_;
    FileSavesHooks hooks_;
    FormKind kind_;
    FileSavesControls controls_;
    bool loading_ = false;
    // The settings file as the station last left it, to see a change made behind its back.
    std::optional<std::string> settingsOnDisk_;
};

}  // namespace ovd::configuration
