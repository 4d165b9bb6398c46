// The load of the station, in its fixed order. Each step writes what it did to
// the event log, so that support can see how far a station came up.

#include <unistd.h>

#include "conversion/letter_notes.h"
#include "dictation/hand_off.h"
#include "platform/files.h"
#include "platform/text.h"
#include "station/device_choice.h"
#include "station/station.h"

namespace ovd::station {

namespace {
constexpr const char* kSoundOutputFailed = "Unable to start DirectSound";

// A folder the station can keep takes in: it exists (or was made) and a file can be made in it.
bool usableFolder(const std::string& folder) {
    if (folder.empty() || folder.front() != '/' || !platform::createFolder(folder)) return false;
    return ::access(folder.c_str(), W_OK | X_OK) == 0;
}
}  // namespace

void Station::tellWhenSettingsCantBeWritten() {
    parts_.config.onWriteFailed = [this](const std::string& reason) {
        const std::string path = parts_.config.path();
        parts_.log.trace("WriteConfig failed: " + path + ": " + reason);
        const std::string text =
            "The settings could not be saved to " + path + " (" + reason +
            "). The station goes on with the settings in memory and numbers the next files on from "
            "the last one, but changes made now are lost when it ends. Please free some space on "
            "that disk or make the folder writable.";
        // Told after the step that wrote, never in the middle of it.
        parts_.loop.postFromAnyThread([this, text] {
            parts_.prompts.showMessage(text, settings::kProductTitle, platform::Severity::Warning);
        });
    };
}

std::string Station::recordingsFolderInUse() {
    settings::SettingsRecord& record = parts_.config.record;
    const std::string chosen = record.CaptureFilePath.toText();
    if (usableFolder(chosen) && usableFolder(platform::joinPath(chosen, "Temp"))) return chosen;
    // Takes must have somewhere to go: the recordings folder of the data folder.
    const std::string fallback = platform::joinPath(parts_.dataFolder, "Recordings");
    const std::string text =
        "The recordings folder " + chosen +
        " can't be used: it is not a folder the station can write in. The "
        "recordings go to " +
        fallback + " instead; choose another folder in the file-save settings if you wish.";
    parts_.log.trace("Loading: recordings folder " + chosen + " can't be used; using " + fallback);
    parts_.prompts.showMessage(text, settings::kProductTitle, platform::Severity::Warning);
    record.CaptureFilePath = fallback;
    if (auto made = platform::createFolder(fallback); !made)
        parts_.log.trace("Loading: " + made.error());
    parts_.config.WriteConfig();
    return fallback;
}

LoadResult Station::Form_Load() {
    dictation::Dictation& d = *dictation_;
    settings::SettingsRecord& record = parts_.config.record;
    settings::EventLog& log = parts_.log;

    log.trace("Loading: program folder " + parts_.programFolder + ", data folder " +
              parts_.dataFolder);
    d.beginLoad(parts_.commandFileName);
    d.loadScreen();
    log.trace("Loading: " + std::to_string(d.view().Reopen.size()) + " recent files");

    tellWhenSettingsCantBeWritten();
    if (!parts_.config.startUp(parts_.prompts)) return LoadResult::EndProgram;
    log.trace("Loading: settings read from " + parts_.config.path());

    const std::string recordings = recordingsFolderInUse();
    log.trace("Loading: recordings in " + recordings);

    if (record.TCP) {
        // A station that can't hear its peer's orders must not run: the user was told.
        if (!peerLink_.start()) return LoadResult::EndProgram;
    } else {
        record.TCPButtonScreen = false;
    }

    if (!loadRecordingDevice()) {
        d.loadAbandoned();
        if (onLoadDone) onLoadDone();
        return LoadResult::NothingReady;
    }
    d.SetParam("load");
    d.takeSettings();
    log.trace("Loading: work files in " + platform::joinPath(recordings, "Temp") +
              ", saving every " + std::to_string(d.saveInterval()) + " ms, crash protection " +
              platform::boolText(record.FileSaveAtStop));

    if (parts_.sound.playbackDevices().Count() == 0) {
        log.trace(kSoundOutputFailed);
        parts_.prompts.showMessage(kSoundOutputFailed, settings::kProductTitle,
                                   platform::Severity::Critical);
        return LoadResult::EndProgram;
    }
    const bool workFiles = conversion::anyWorkFileIn(platform::joinPath(recordings, "Temp"));
    switch (parts_.config.recoveryAtStart(workFiles)) {
        case settings::RecoveryAtStart::Nothing:
            break;
        case settings::RecoveryAtStart::LetBeThisOnce:
            log.trace(
                "Loading: work files of an earlier run left for the next start, which "
                "recovers them (Tools > Scan/Convert does it now)");
            break;
        case settings::RecoveryAtStart::OpenRecovery:
            log.trace("Loading: recovering the work files of a run that did not end in order");
            // Nothing else starts until the work files are taken care of: no pedal, no
            // new file. The load goes on from the loop once the recovery is over.
            openScanConvert(conversion::ScanMode::Recovery);
            scanConvert_->onRecovered = [this] { loadOnAfterRecovery_.setEnabled(true); };
            return LoadResult::Recovering;
    }
    loadPedalsAndDelivery();
    return LoadResult::Ready;
}

void Station::loadPedalsAndDelivery() {
    dictation::Dictation& d = *dictation_;
    settings::SettingsRecord& record = parts_.config.record;
    settings::EventLog& log = parts_.log;

    // Only now, with the work files of a crashed run recovered: the cleans keep
    // away from takes, and a take still waiting to be recovered is one.
    housekeeping_->runAtStart();
    d.beforePedalsStart();
    handsFree_->start();
    log.trace("Loading: pedals USB " + platform::boolText(record.UserSelectUSB) + ", game port " +
              platform::boolText(record.UserSelectGame) + ", serial " +
              platform::boolText(record.UserSelectSerial));
    createDestinationFolders();
    settings::checkDeliveryOptions(parts_.config.record,
                                   settings::CompanyRecords(parts_.dataFolder), parts_.prompts,
                                   setupWindows);
    loadAutoSend();

    if (record.QDUDisconnected) d.showDeskUnitMissing();
    d.finishLoad(record.HandsFreeEdition);
    d.naming.ComboFill();
    housekeeping_->startClock();
    log.trace("Loading: done, view " + record.ScreenSize);
    if (onLoadDone) onLoadDone();
}

void Station::loadOnAfterRecovery() {
    loadOnAfterRecovery_.setEnabled(false);
    // Later recoveries are the user's, from the menu: the load is not theirs to go on with.
    scanConvert_->onRecovered = nullptr;
    if (unloaded_) return;
    parts_.log.trace("Loading: recovery done");
    loadPedalsAndDelivery();
}

conversion::ScanConvert& Station::openScanConvert(conversion::ScanMode mode) {
    if (!scanConvert_) {
        scanConvert_ = std::make_unique<conversion::ScanConvert>(
            conversion::ScanConvertParts{parts_.loop, parts_.config, parts_.log, parts_.prompts});
    }
    if (onShowScanConvert) onShowScanConvert(*scanConvert_);
    scanConvert_->Form_Load(mode);
    return *scanConvert_;
}

void Station::openScanConvertByHand() {
    if (scanConvert_ && scanConvert_->working()) return;
    openScanConvert(conversion::ScanMode::ByHand);
}

bool Station::loadRecordingDevice() {
    const int chosen = chooseRecordingDevice(AudioEditor1.RecordingDevices(), parts_.config);
    if (chosen < 0) {
        parts_.log.trace("Loading: no recording device; nothing can be recorded");
        return false;
    }
    parts_.log.trace("Loading: recording device " + AudioEditor1.RecordingDevices().Name(chosen));
    return true;
}

void Station::createDestinationFolders() {
    const settings::SettingsRecord& record = parts_.config.record;
    for (const std::string& folder : {record.SendToOne, record.SendToTwo, record.SendToThree}) {
        if (folder.empty()) continue;
        // The delivery says so again when a copy can't go there.
        if (auto made = platform::createFolder(folder); !made)
            parts_.log.trace("Loading: " + made.error());
    }
}

void Station::loadAutoSend() {
    const settings::SettingsRecord& record = parts_.config.record;
    const std::string recordings = record.CaptureFilePath.toText();
    if (!record.AutoFTP && !record.AutoEmail) {
        autoSendMenu_.tmchkAutoSend.setEnabled(false);
        companion_.stop();
        autoSendMenu_.Caption = delivery::kManuallyStartAutoSend;
        parts_.log.trace("Loading: automatic sending off");
        return;
    }
    autoSendMenu_.tmchkAutoSend.setEnabled(true);
    if (companion_.running()) {
        autoSendMenu_.refresh();
        return;
    }
    const auto makeStagingFolder = [&](const char* name) {
        if (auto made = platform::createFolder(platform::joinPath(recordings, name)); !made)
            parts_.log.trace("Loading: " + made.error());
    };
    if (record.AutoFTP) makeStagingFolder("FTPTemp");
    if (record.AutoEmail) makeStagingFolder("EmailTemp");
    autoSend_->LaunchCompanion();
}

}  // namespace ovd::station
