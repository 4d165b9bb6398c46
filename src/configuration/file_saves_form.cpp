#include "configuration/file_saves_form.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "configuration/file_saves_texts.h"
#include "configuration/number_text.h"
#include "platform/files.h"
#include "settings/company_records.h"
#include "settings/delivery_defaults.h"
#include "settings/delivery_startup_checks.h"
#include "settings/email_sites_tables.h"

namespace ovd::configuration {

namespace {

constexpr int kVolumeMax = 65535;

int storedVolume(const settings::ConfigVariant& stored) {
    return std::clamp(static_cast<int>(stored.toNumber().value_or(0)), 0, kVolumeMax);
}

// The boxes show a channel count as a digit.
std::string channelDigit(const std::string& stored) {
    if (stored == "MONO") return "1";
    if (stored == "STEREO") return "2";
    return stored;
}

}  // namespace

FileSavesForm::FileSavesForm(settings::ConfigFile& config, platform::Prompts& prompts,
                             FileSavesHooks hooks, FormKind kind)
    : config_(config), prompts_(prompts), hooks_(std::move(hooks)), kind_(kind) {}

void FileSavesForm::load() {
    settings::SettingsRecord& r = config_.record;
    FileSavesControls& c = controls_;
    loading_ = true;

    c.noLogging = r.NoLogging;
    c.oneTapRecordPause = r.OneTapRecPause;
    c.tcpDelay = std::clamp<int>(r.TCPDelay, 0, 2);
    c.jumpBackSeconds = std::to_string(r.JumpBackSecs);
    c.stopRecordingWhenDiskFull = r.DFStopRec;
    c.saveAtStop = r.FileSaveAtStop;

    c.recovery = r.RecoveryModule;
    c.tcp = r.TCP;
    c.hostIp = r.TCPIP;
    c.hostPort = r.TCPPort;
    c.hostEnabled = r.TCP;
    c.buttonScreen = r.TCP && r.TCPButtonScreen;

    c.autoDelete = r.AutoFileDeltion;
    c.autoRewind = r.AutoRewind;
    c.autoInsert = r.AutoRewind && r.AutoInsert;
    c.autoOverwrite = r.AutoRewind && r.AutoOverwrite;
    c.autoEmail = r.AutoEmail;
    enableEmailGroup(r.AutoEmail);
    c.autoEmailName = r.AutoEmailName;
    if (r.AutoFTP) loadDeliveryDefaults();
    c.autoFtp = r.AutoFTP;
    enableFtpGroup(r.AutoFTP);
    c.autoFtpName = r.AutoFTPName;

    c.normal = {r.FormatType, r.Frequency, channelDigit(r.Channel), r.FileBit};
    c.other = {r.FormatType2, r.Frequency2, channelDigit(r.Channel2), r.FileBit2};

    c.places = r.Places >= 1 && r.Places <= 5 ? std::to_string(r.Places) : "";
    c.startingNumber = r.FileNameIncrement.toText();
    c.sequential = r.SequentialNumbering.toBool();
    c.numberingEnabled = c.sequential;

    c.recordingsFolder = r.CaptureFilePath.toText();
    c.labelText = r.FileLabelText.toText();
    c.addLabel = r.FileLabelActive;
    c.labelTextEnabled = r.FileLabelActive;
    c.suppressWarnings = r.SuppressWarnings;
    c.overwriteToEnd = r.OverwriteToEnd;

    enableFormatBoxes(c.normal);
    enableFormatBoxes(c.other);

    c.recordingVolume = storedVolume(r.sldrVolumeInpSelStart);
    c.playingVolume = storedVolume(r.sldrVolumeOutSelStart);
    // The colour scheme would follow the main window's colouring, which the
    // station's load always leaves off and nothing turns on: the form keeps the
    // colours of every other window.
    c.destinations = {DestinationControls{r.AutoSend1, r.SendToOne},
                      DestinationControls{r.AutoSend2, r.SendToTwo},
                      DestinationControls{r.AutoSend3, r.SendToThree}};
    c.promptBarCode = r.PromptBarCode;
    c.receiverCompanies.clear();
    for (const settings::EmailReceiver& receiver :
         settings::EmailReceiversTable(config_.dataFolder()).receivers()) {
        c.receiverCompanies.push_back(receiver.EmailCompanyName);
    }
    checkAddNameToFile();
    rememberSettingsOnDisk();
    loading_ = false;
}

void FileSavesForm::loadDeliveryDefaults() {
    const settings::CompanyRecords records(config_.dataFolder());
    const std::map<std::string, std::string> site = settings::LoadDefaultFTP(records);
    const auto server = site.find("FTPServer");
    if (server != site.end() && !server->second.empty()) return;
    // CheckDefaultFTP: an FTP option with no default site is asked about at once.
    if (prompts_.askYesNo(settings::kNoDefaultFtpQuestion, settings::kProductTitle) &&
        hooks_.ftpSetup) {
        hooks_.ftpSetup();
        return;
    }
    prompts_.showMessage(settings::kFtpDeactivatedMessage, settings::kProductTitle,
                         platform::Severity::Warning);
    config_.record.AutoFTP = false;
}

void FileSavesForm::checkAddNameToFile() {
    // The tabbed window has neither the timer nor the notice.
    if (kind_ == FormKind::Tabbed) return;
    const bool addName = config_.record.AddNameToFile;
    controls_.namingShown = !addName;
    controls_.addNameNoticeShown = addName;
}

void FileSavesForm::enableEmailGroup(bool on) {
    controls_.emailGroupEnabled = on;
    controls_.emailMenuEnabled = on;
}

void FileSavesForm::enableFtpGroup(bool on) {
    controls_.ftpGroupEnabled = on;
    controls_.ftpMenuEnabled = on;
}

void FileSavesForm::enableFormatBoxes(FormatBoxes& boxes) {
    const std::string& f = boxes.format;
    const bool free = f == "MP3" || f == "MP2" || f == "WAV" || f == "WMA";
    boxes.bitRateEnabled = free;
    boxes.channelsEnabled = free;
    boxes.frequencyEnabled = free || f == "VOX";
    // A box a format fixes by itself is shown empty.
    if (!boxes.bitRateEnabled) boxes.bitRate.clear();
    if (!boxes.channelsEnabled) boxes.channels.clear();
    if (!boxes.frequencyEnabled) boxes.frequency.clear();
}

bool FileSavesForm::writeSettings() {
    const bool written = config_.WriteConfig();
    rememberSettingsOnDisk();
    return written;
}

void FileSavesForm::rememberSettingsOnDisk() {
    settingsOnDisk_.reset();
    if (auto text = platform::readWholeFile(config_.path())) settingsOnDisk_ = std::string(*text);
}

bool FileSavesForm::folderUsable(const std::string& folder, bool forRecordings) {
    if (!platform::createFolder(folder)) {
        // Asked once more, for the system's own words for why.
        std::error_code why;
        std::filesystem::create_directories(folder, why);
        const std::string reason = why ? why.message() : "not a folder";
        prompts_.showMessage(std::string(kFolderCantBeMade) + folder + " (" + reason + ")",
                             settings::kProductTitle, platform::Severity::Warning);
        return false;
    }
    if (forRecordings && ::access(folder.c_str(), W_OK | X_OK) != 0) {
        const std::string reason = std::strerror(errno);
        prompts_.showMessage(std::string(kFolderCantBeWritten) + folder + " (" + reason + ")",
                             settings::kProductTitle, platform::Severity::Warning);
        return false;
    }
    return true;
}

// ---- Change rules ----

void FileSavesForm::setAutoRewind(bool on) {
    controls_.autoRewind = on;
    if (loading_) return;
    if (!on) {
        controls_.autoInsert = false;
        controls_.autoOverwrite = false;
        return;
    }
    controls_.autoInsert = config_.record.AutoInsert;
    controls_.autoOverwrite = config_.record.AutoOverwrite;
    prompts_.showMessage(kAutoRewindWarning, settings::kProductTitle, platform::Severity::Warning);
}

void FileSavesForm::setAutoInsert() {
    controls_.autoInsert = true;
    controls_.autoOverwrite = false;
}

void FileSavesForm::setAutoOverwrite() {
    controls_.autoOverwrite = true;
    controls_.autoInsert = false;
}

void FileSavesForm::setOneTapRecordPause(bool on) { controls_.oneTapRecordPause = on; }
void FileSavesForm::setJumpBackSeconds(const std::string& text) {
    controls_.jumpBackSeconds = text;
}

void FileSavesForm::leaveJumpBackSeconds() {
    const auto seconds = wholeNumber(controls_.jumpBackSeconds);
    if (!seconds || *seconds < 1 || *seconds > 99) {
        prompts_.showMessage(kJumpBackRange, settings::kProductTitle, platform::Severity::Warning);
    }
}

void FileSavesForm::setNoLogging(bool on) { controls_.noLogging = on; }
void FileSavesForm::setTcpDelay(int index) { controls_.tcpDelay = std::clamp(index, 0, 2); }
void FileSavesForm::setStopRecordingWhenDiskFull(bool on) {
    controls_.stopRecordingWhenDiskFull = on;
}

void FileSavesForm::setSaveAtStop(bool on) {
    controls_.saveAtStop = on;
    if (loading_ || !on) return;
    prompts_.showMessage(kSaveAtStopWarning, settings::kProductTitle, platform::Severity::Warning);
}

void FileSavesForm::setPromptBarCode(bool on) { controls_.promptBarCode = on; }

void FileSavesForm::setAddLabel(bool on) {
    controls_.addLabel = on;
    controls_.labelTextEnabled = on;
}

void FileSavesForm::setLabelText(const std::string& text) { controls_.labelText = text; }

void FileSavesForm::chooseDateTimeNaming() {
    controls_.sequential = false;
    controls_.numberingEnabled = false;
}

void FileSavesForm::chooseSequentialNaming() {
    controls_.sequential = true;
    controls_.numberingEnabled = true;
}

void FileSavesForm::setStartingNumber(const std::string& text) { controls_.startingNumber = text; }

void FileSavesForm::leaveStartingNumber() {
    FileSavesControls& c = controls_;
    if (!c.sequential) return;
    if (!c.startingNumber.empty() && c.startingNumber.front() == '0') c.startingNumber.clear();
    if (!c.startingNumber.empty() && !wholeNumber(c.startingNumber)) {
        // Letters can't number a file.
        c.startingNumber.clear();
        prompts_.showMessage(kEnterANumber, settings::kProductTitle, platform::Severity::Warning);
        return;
    }
    if (c.places.empty() && !c.startingNumber.empty()) c.places = "5";
    if (c.places.empty()) {
        prompts_.showMessage(kNoPlacesMessage, settings::kProductTitle,
                             platform::Severity::Warning);
        c.startingNumber.clear();
        c.places.clear();
        return;
    }
    const std::size_t places = static_cast<std::size_t>(wholeNumber(c.places).value_or(5));
    if (c.startingNumber.size() > 5) {
        prompts_.showMessage(kOverFivePositions, settings::kProductTitle,
                             platform::Severity::Warning);
        c.startingNumber = "1";
    } else if (c.startingNumber.size() > places) {
        prompts_.showMessage(kTooManyDigitsFront + c.places + kTooManyDigitsBack,
                             settings::kProductTitle, platform::Severity::Warning);
        c.startingNumber = "1";
        // Kept as the window has always done it: only a width of 4 or 5 shrinks to 1.
        if (places == 4 || places == 5) c.places = "1";
    }
    writeSettings();
}

void FileSavesForm::setPlaces(const std::string& text) {
    const auto places = wholeNumber(text);
    const bool leadingZero = !text.empty() && text.front() == '0';
    controls_.places = (!places || *places < 1 || *places > 5 || leadingZero) ? "" : text;
}

void FileSavesForm::resetNumbering() {
    FileSavesControls& c = controls_;
    const auto number = wholeNumber(c.startingNumber);
    if (!number) {
        prompts_.showMessage(kEnterANumber, settings::kProductTitle, platform::Severity::Warning);
        return;
    }
    settings::SettingsRecord& r = config_.record;
    r.FileNameIncrementStartingNum = static_cast<double>(*number);
    r.FileNameIncrement = static_cast<double>(*number);
    if (const auto places = wholeNumber(c.places)) r.Places = static_cast<std::int16_t>(*places);
    writeSettings();
}

void FileSavesForm::changeRecordingsFolder() {
    settings::SettingsRecord& r = config_.record;
    const auto chosen = prompts_.chooseFolder({"", r.LastFolderOpened});
    if (chosen) {
        // A folder no take could be written in is refused, so no take is lost to it.
        if (!folderUsable(*chosen, true)) return;
        r.CaptureFilePath = *chosen;
        controls_.recordingsFolder = *chosen;
        return;
    }
    prompts_.showMessage(kRecordingsFolderCancelled, settings::kProductTitle);
    if (r.CaptureFilePath.isBlank()) {
        r.CaptureFilePath = platform::joinPath(config_.dataFolder(), "Recordings");
        controls_.recordingsFolder = r.CaptureFilePath.toText();
        // A folder that can't be made is told when the settings are saved.
        (void)platform::createFolder(controls_.recordingsFolder);
    }
}

void FileSavesForm::restoreRecordingsFolder() {
    if (!prompts_.askYesNo(kAreYouSure, settings::kProductTitle, platform::Answer::No)) return;
    settings::SettingsRecord& r = config_.record;
    const std::string folder = platform::joinPath(config_.dataFolder(), "Recordings");
    r.CaptureFilePath = folder;
    controls_.recordingsFolder = folder;
    if (!platform::createFolder(folder)) {
        // The station tells at its next start that the folder can't hold takes.
    }
    writeSettings();
}

void FileSavesForm::setFormat(bool otherConditions, const std::string& format) {
    FormatBoxes& b = boxes(otherConditions);
    b.format = format;
    enableFormatBoxes(b);
}

void FileSavesForm::setFrequency(bool otherConditions, const std::string& frequency) {
    boxes(otherConditions).frequency = frequency;
}
void FileSavesForm::setChannels(bool otherConditions, const std::string& channels) {
    boxes(otherConditions).channels = channels;
}
void FileSavesForm::setBitRate(bool otherConditions, const std::string& bitRate) {
    boxes(otherConditions).bitRate = bitRate;
}

void FileSavesForm::resetFormatDefaults() {
    settings::SettingsRecord& r = config_.record;
    r.FormatType = "MP3";
    r.FormatType2 = "MP3";
    r.Frequency = "16000";
    r.Frequency2 = "32000";
    r.Channel = "MONO";
    r.Channel2 = "MONO";
    r.FileBit = "8";
    r.FileBit2 = "16";
    controls_.normal = {r.FormatType, r.Frequency, r.Channel, r.FileBit};
    controls_.other = {r.FormatType2, r.Frequency2, r.Channel2, r.FileBit2};
    enableFormatBoxes(controls_.normal);
    enableFormatBoxes(controls_.other);
}

void FileSavesForm::setRecordingVolume(int position) {
    controls_.recordingVolume = std::clamp(position, 0, kVolumeMax);
}
void FileSavesForm::setPlayingVolume(int position) {
    controls_.playingVolume = std::clamp(position, 0, kVolumeMax);
}
void FileSavesForm::setSuppressWarnings(bool on) { controls_.suppressWarnings = on; }

void FileSavesForm::setDestination(int destination, bool on) {
    if (destination < 1 || destination > 3) return;
    DestinationControls& d = controls_.destinations[static_cast<std::size_t>(destination - 1)];
    d.on = on;
    if (loading_) return;
    settings::SettingsRecord& r = config_.record;
    std::string& field = destination == 1   ? r.SendToOne
                         : destination == 2 ? r.SendToTwo
                                            : r.SendToThree;
    if (!on) {
        field.clear();
        d.folder.clear();
    } else if (const auto chosen = prompts_.chooseFolder({kChooseDestinationTitle, field});
               chosen && folderUsable(*chosen, false)) {
        field = *chosen;
        d.folder = *chosen;
        if (d.folder.empty()) d.on = false;
    } else {
        if (field.empty()) d.on = false;
        if (!chosen) prompts_.showMessage(kDestinationCanceled, settings::kProductTitle);
    }
    writeSettings();
}

void FileSavesForm::setAutoEmail(bool on) {
    controls_.autoEmail = on;
    if (loading_) return;
    enableEmailGroup(on);
    if (!on) return;
    // E-mail and FTP delivery exclude each other.
    if (controls_.autoFtp) setAutoFtp(false);
    prompts_.showMessage(kEmailMenuAvailable, settings::kProductTitle);
}

void FileSavesForm::chooseReceiverCompany(const std::string& company) {
    controls_.chosenReceiverCompany = company;
}

void FileSavesForm::setAutoFtp(bool on) {
    controls_.autoFtp = on;
    if (loading_) return;
    enableFtpGroup(on);
    if (!on) return;
    const std::string site = settings::CompanyRecords(config_.dataFolder()).defaultFtpClient();
    if (!site.empty()) controls_.autoFtpName = site;
    if (controls_.autoEmail) setAutoEmail(false);
    prompts_.showMessage(kFtpMenuAvailable, settings::kProductTitle);
}

void FileSavesForm::setRecovery(bool on) { controls_.recovery = on; }

void FileSavesForm::setTcp(bool on) {
    controls_.tcp = on;
    controls_.hostEnabled = on;
}

void FileSavesForm::setHostIp(const std::string& text) { controls_.hostIp = text; }
void FileSavesForm::setHostPort(const std::string& text) { controls_.hostPort = text; }
void FileSavesForm::setButtonScreen(bool on) { controls_.buttonScreen = on; }
void FileSavesForm::setAutoDelete(bool on) { controls_.autoDelete = on; }
void FileSavesForm::setOverwriteToEnd(bool on) { controls_.overwriteToEnd = on; }

void FileSavesForm::takeFromFormatDialog(bool otherConditions, const std::string& frequency,
                                         const std::string& bitRate, const std::string& channels) {
    FormatBoxes& b = boxes(otherConditions);
    b.frequency = frequency;
    b.bitRate = bitRate;
    b.channels = channels;
}

void FileSavesForm::cancel() {
    if (hooks_.close) hooks_.close();
}

}  // namespace ovd::configuration
