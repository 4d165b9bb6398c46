// The save of the file-save settings window, in its fixed order. A check that
// refuses ends the save with the window open, and what the steps before it put in
// force stays so.

#include <cmath>

#include "configuration/file_saves_form.h"
#include "configuration/file_saves_texts.h"
#include "configuration/number_text.h"
#include "platform/files.h"
#include "settings/company_records.h"
#include "settings/delivery_defaults.h"
#include "settings/delivery_startup_checks.h"
#include "settings/email_receivers_form.h"
#include "settings/email_sites_tables.h"

namespace ovd::configuration {

namespace {

void warn(platform::Prompts& prompts, const std::string& text) {
    prompts.showMessage(text, settings::kProductTitle, platform::Severity::Warning);
}

// The loader turns "1" and "2" back into a channel count, so a box holding the
// digit it was loaded with stays mono.
std::string storedChannels(const std::string& box) {
    return box == "MONO" || box == "1" ? "1" : "2";
}

// The receiver chosen for the e-mail delivery becomes the default one: its
// address and the key its files are enciphered with.
void writeDefaultReceiver(const std::string& dataFolder, const settings::CompanyRecords& records,
                          const std::string& company) {
    for (const settings::EmailReceiver& receiver :
         settings::EmailReceiversTable(dataFolder).receivers()) {
        if (receiver.EmailCompanyName != company) continue;
        const settings::IniStore defaults = records.defaults();
        (void)defaults.WriteKey(settings::kDefaultEmailSection, "DefaultRecEMail",
                                receiver.EmailEmailAddress);
        // The key agreed with the transcriber of that address, as delivery reads
        // it back; the receiver's own key where no transcriber has the address.
        std::string key = settings::LoadDefaultEmail(records).RECEncryptKey;
        if (key.empty()) key = receiver.EmailEncryptKey;
        (void)defaults.WriteKey(settings::kDefaultEmailSection, "RECEncryptKey", key);
        return;
    }
}

}  // namespace

bool FileSavesForm::emailStep() {
    settings::SettingsRecord& r = config_.record;
    FileSavesControls& c = controls_;
    if (!c.autoEmail) {
        r.AutoEmail = false;
        return true;
    }
    const auto deactivate = [&](const char* text) {
        warn(prompts_, text);
        r.AutoEmail = false;
        c.autoEmail = false;
        enableEmailGroup(false);
    };
    const settings::CompanyRecords records(config_.dataFolder());
    const settings::DefaultEmail defaults = settings::LoadDefaultEmail(records);
    if (defaults.DefaultEmail.empty()) {
        if (prompts_.askYesNo(settings::kEmailNotSetUpQuestion, settings::kProductTitle)) {
            if (hooks_.emailSetup) hooks_.emailSetup();
            return false;
        }
        deactivate(settings::kEmailDeactivatedMessage);
        return true;
    }
    r.AutoEmail = true;
    if (settings::EmailReceiversTable(config_.dataFolder()).receivers().empty()) {
        if (prompts_.askYesNo(kNoReceiverQuestion, settings::kProductTitle)) {
            if (hooks_.emailSetup) hooks_.emailSetup();
            return false;
        }
        deactivate(settings::kNoReceiverDeactivatedMessage);
        return true;
    }
    if (!c.chosenReceiverCompany.empty()) {
        r.AutoEmailName = c.chosenReceiverCompany;
        c.autoEmailName = c.chosenReceiverCompany;
        writeDefaultReceiver(config_.dataFolder(), records, c.chosenReceiverCompany);
        return true;
    }
    // CheckDefaultReceiver decides whether the option stays.
    if (defaults.DefaultRecEMail.empty()) {
        if (prompts_.askYesNo(settings::kNoDefaultReceiverQuestion, settings::kProductTitle)) {
            if (hooks_.emailSetup) hooks_.emailSetup();
            return false;
        }
        deactivate(settings::kNoReceiverDeactivatedMessage);
    }
    return true;
}

bool FileSavesForm::ftpStep() {
    settings::SettingsRecord& r = config_.record;
    FileSavesControls& c = controls_;
    if (!c.autoFtp) {
        r.AutoFTP = false;
        return true;
    }
    const settings::CompanyRecords records(config_.dataFolder());
    const auto site = settings::LoadDefaultFTP(records);
    const auto server = site.find("FTPServer");
    if (server != site.end() && !server->second.empty()) {
        r.AutoFTP = true;
        r.AutoFTPName = c.autoFtpName;
        return true;
    }
    if (prompts_.askYesNo(settings::kNoDefaultFtpQuestion, settings::kProductTitle)) {
        if (hooks_.ftpSetup) hooks_.ftpSetup();
        return false;
    }
    warn(prompts_, settings::kFtpDeactivatedMessage);
    r.AutoFTP = false;
    c.autoFtp = false;
    enableFtpGroup(false);
    return true;
}

bool FileSavesForm::numberingStep() {
    settings::SettingsRecord& r = config_.record;
    FileSavesControls& c = controls_;
    if (!r.FileLabelActive) return true;
    if (!c.sequential) {
        r.SequentialNumbering = false;
        return true;
    }
    r.SequentialNumbering = true;
    if (c.startingNumber.empty()) {
        warn(prompts_, kFillStartingNumber);
        return false;
    }
    if (c.places.empty()) {
        warn(prompts_, kFillPlaces);
        return false;
    }
    const auto number = wholeNumber(c.startingNumber);
    const auto places = wholeNumber(c.places);
    if (!number || !places || c.startingNumber.front() == '0' ||
        c.startingNumber.size() > static_cast<std::size_t>(*places)) {
        // A number the box would not have let through as typed: the leaving rule
        // tells why and puts the box right before anything is stored.
        leaveStartingNumber();
        return false;
    }
    if (c.startingNumber != r.FileNameIncrement.toText()) {
        const bool changed = hooks_.fileChanged && hooks_.fileChanged();
        const double stored = r.FileNameIncrement.toNumber().value_or(0);
        if (changed || static_cast<double>(*number) >= stored) {
            r.FileNameIncrementStartingNum = static_cast<double>(*number);
            r.FileNameIncrement = static_cast<double>(*number);
        }
    }
    r.Places = static_cast<std::int16_t>(*places);
    return true;
}

void FileSavesForm::fillEmptyFormatValues() {
    settings::SettingsRecord& r = config_.record;
    if (r.FormatType != "DSP") {
        if (r.Frequency.empty()) r.Frequency = "44100";
        if (r.FormatType != "VOX") {
            if (r.Channel.empty()) r.Channel = "2";
            if (r.FileBit.empty()) r.FileBit = "128";
        }
    }
    if (r.FormatType2 != "DSP") {
        if (r.Frequency2.empty()) r.Frequency2 = "44100";
        if (r.FormatType2 != "VOX") {
            // "STEREO" here and "2" above, as the station always stored them: the
            // loader reads both as two channels.
            if (r.Channel2.empty()) r.Channel2 = "STEREO";
            if (r.FileBit2.empty()) r.FileBit2 = "128";
        }
    }
}

SaveOutcome FileSavesForm::save() {
    settings::SettingsRecord& r = config_.record;
    FileSavesControls& c = controls_;
    const bool scrolling = kind_ == FormKind::Scrolling;

    // The settings file is written whole from memory: changes made to it by hand
    // while the window was open are replaced, and the user hears so first.
    const auto onDisk = platform::readWholeFile(config_.path());
    if (settingsOnDisk_ && onDisk && std::string(*onDisk) != *settingsOnDisk_) {
        warn(prompts_, kSettingsChangedOnDisk);
    }

    // 1. A jump back the transport could not use is refused before anything is stored.
    const auto jumpBack = wholeNumber(c.jumpBackSeconds);
    if (!jumpBack || *jumpBack < 1 || *jumpBack > 99) {
        warn(prompts_, kJumpBackRange);
        return SaveOutcome::StoppedAtStep;
    }
    r.JumpBackSecs = static_cast<std::int16_t>(*jumpBack);
    r.TCPDelay = static_cast<std::int16_t>(c.tcpDelay);
    r.NoLogging = c.noLogging;
    if (scrolling) r.OneTapRecPause = c.oneTapRecordPause;
    r.DFStopRec = c.stopRecordingWhenDiskFull;
    r.FileSaveAtStop = c.saveAtStop;

    // 2, 3.
    if (!emailStep()) return SaveOutcome::SetupOpened;
    if (!ftpStep()) return SaveOutcome::SetupOpened;

    // 4.
    if (!c.autoRewind) {
        c.autoInsert = false;
        c.autoOverwrite = false;
    }
    r.AutoRewind = c.autoRewind;
    r.AutoInsert = c.autoInsert;
    r.AutoOverwrite = c.autoOverwrite;

    // 5. A take under way is saved in the settings it was begun with.
    if (hooks_.recording && hooks_.recording()) {
        prompts_.showMessage(kRecordingSavedNow, settings::kProductTitle);
        if (hooks_.saveTakeAndOpenNext) hooks_.saveTakeAndOpenNext();
    }

    // 6.
    r.AutoFileDeltion = c.autoDelete;
    r.AutoSend1 = c.destinations[0].on;
    r.AutoSend2 = c.destinations[1].on;
    if (scrolling) r.AutoSend3 = c.destinations[2].on;

    // 7.
    const bool buttonsWereMessages = r.TCPButtonScreen;
    r.TCP = c.tcp;
    r.TCPIP = c.hostIp;
    r.TCPPort = c.hostPort;
    r.TCPButtonScreen = c.tcp && c.buttonScreen;
    if (r.TCPButtonScreen != buttonsWereMessages) {
        const auto& labels = r.TCPButtonScreen ? kMessageButtonLabels : kStandardButtonLabels;
        std::string* actions[] = {&r.BUT1, &r.BUT2, &r.BUT3, &r.BUT4,
                                  &r.BUT5, &r.BUT6, &r.BUT7, &r.BUT8};
        for (std::size_t i = 0; i < labels.size(); ++i) *actions[i] = labels[i];
    }

    // 8. The sequential choice wins over an unticked label box.
    if (c.sequential && !c.addLabel) {
        r.FileLabelActive = true;
        c.addLabel = true;
        c.labelTextEnabled = true;
    }
    if (!c.addLabel) {
        r.FileLabelActive = false;
        r.SequentialNumbering = false;
        c.sequential = false;
        c.numberingEnabled = false;
    } else {
        r.FileLabelActive = true;
    }

    // 9.
    r.RecoveryModule = c.recovery;

    // 10.
    if (!numberingStep()) return SaveOutcome::StoppedAtStep;

    // 11.
    r.sldrVolumeInpSelStart = c.recordingVolume;
    r.sldrVolumeOutSelStart = c.playingVolume;
    if (hooks_.volumes) hooks_.volumes(c.recordingVolume, c.playingVolume);

    // 12.
    writeSettings();

    // 13.
    r.FileLabelText = c.labelText;
    r.FileLabelActive = c.addLabel;
    if (const auto places = wholeNumber(c.places)) r.Places = static_cast<std::int16_t>(*places);
    r.SuppressWarnings = c.suppressWarnings;
    r.OverwriteToEnd = c.overwriteToEnd;
    r.FormatType = c.normal.format;
    r.FormatType2 = c.other.format;
    r.Frequency = c.normal.frequency;
    r.Frequency2 = c.other.frequency;
    r.Channel = c.normal.channels.empty() ? "" : storedChannels(c.normal.channels);
    r.Channel2 = c.other.channels.empty() ? "" : storedChannels(c.other.channels);
    r.CaptureFilePath = c.recordingsFolder;

    // 14.
    if (!r.FileLabelActive && !c.sequential) {
        c.addLabel = true;
        r.FileLabelActive = true;
    }
    r.SequentialNumbering = c.sequential;

    // 15.
    if (!c.recordingsFolder.empty() && !platform::createFolder(c.recordingsFolder)) {
        // No message here: the next start tells that the folder can't hold takes
        // and records into the data folder's own.
    }

    // 16.
    r.FormatType = c.normal.format;
    r.FormatType2 = c.other.format;
    r.FileBit = c.normal.bitRate;
    r.FileBit2 = c.other.bitRate;

    // 17.
    fillEmptyFormatValues();

    // 18.
    if (scrolling) r.PromptBarCode = c.promptBarCode;

    // 19.
    writeSettings();
    if (hooks_.close) hooks_.close();
    return SaveOutcome::Saved;
}

}  // namespace ovd::configuration
