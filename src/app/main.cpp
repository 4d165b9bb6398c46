// orvane-voice-desk: the dictation station.

#include <QApplication>
#include <QCoreApplication>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/command_line.h"
#include "crypto/decrypt_command.h"
#include "dictation/hand_off.h"
#include "engine/backend_choice.h"
#include "platform/files.h"
#include "platform/headless_prompts.h"
#include "platform/instance_lock.h"
#include "platform/processes.h"
#include "platform/termination_signals.h"
#include "settings/config_file.h"
#include "settings/debug_trace.h"
#include "settings/event_log.h"
#include "station/station.h"
#include "ui/desk_unit_panel.h"
#include "ui/ftp_setup_window.h"
#include "ui/hot_key_hook.h"
#include "ui/qt_event_loop.h"
#include "ui/qt_prompts.h"
#include "ui/reconnection_dialog.h"
#include "ui/records_windows.h"
#include "ui/scan_convert_window.h"
#include "ui/second_editor_window.h"
#include "ui/station_window.h"
#include "ui/window_placement.h"

namespace {

constexpr const char* kVersion = "0.1.0";

bool displayAvailable() {
    const char* x11 = std::getenv("DISPLAY");
    const char* wayland = std::getenv("WAYLAND_DISPLAY");
    return (x11 != nullptr && *x11 != '\0') || (wayland != nullptr && *wayland != '\0');
}

// A name with a folder is taken from where the second process was started; a bare
// name is dictated into the recordings folder.
std::string absoluteFileName(const std::string& name) {
    if (name.find('/') == std::string::npos) return name;
    std::error_code error;
    const auto absolute = std::filesystem::absolute(name, error);
    return error ? name : absolute.lexically_normal().string();
}

// The running station is found by its window or its process number here: there is
// no task bar list or task list to point the user at, so those steps say how it ends.
std::string alreadyRunningText(std::optional<long> runningProcess) {
    const std::string howToEnd =
        runningProcess ? "type kill " + std::to_string(*runningProcess) +
                             " in a terminal (the running station's process number is " +
                             std::to_string(*runningProcess) + ")"
                       : "find its process number with ps -C orvane-voice-desk -o pid,args in a "
                         "terminal and type kill and that number";
    return "This program is already running! Please locate the other Orvane Voice Desk program "
           "that is already running. You can do this by looking on your desktop for the Orvane "
           "Voice Desk window and choosing File > Exit there. If you can't locate the Orvane Voice "
           "Desk application already running, please " +
           howToEnd +
           ", and the running station ends in order. Once this is done, you can then try "
           "re-starting the Orvane Voice Desk program.  ";
}

std::unique_ptr<ovd::platform::Prompts> makePrompts(bool headless,
                                                    std::function<void(const std::string&)> trace) {
    if (headless)
        return std::make_unique<ovd::platform::HeadlessPrompts>(std::move(trace), std::cerr);
    return std::make_unique<ovd::ui::QtPrompts>();
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    ovd::app::StationOptions options = ovd::app::parseCommandLine(arguments);
    // The decryptor is a plain command: Ctrl-C stops it as it stops any other.
    if (options.error.empty() && !options.decryptFile.empty()) {
        return ovd::crypto::runDecryptCommand(
            {options.decryptFile, options.keyName, options.keyText, options.keyTextGiven,
             options.outputFile,
             options.dataFolder.empty() ? ovd::platform::defaultDataFolder() : options.dataFolder},
            std::cout, std::cerr);
    }
    // Before Qt starts any thread, so that every thread has these signals blocked.
    ovd::platform::TerminationSignals terminationSignals;
    if (!options.error.empty()) {
        std::cerr << "orvane-voice-desk: " << options.error << "\n\n"
                  << ovd::app::usageText("orvane-voice-desk");
        return 2;
    }
    if (options.showHelp) {
        std::cout << ovd::app::usageText("orvane-voice-desk");
        return 0;
    }
    if (options.showVersion) {
        std::cout << "orvane-voice-desk " << kVersion << '\n';
        return 0;
    }
    if (!options.headless && !displayAvailable()) {
        std::cerr << "orvane-voice-desk: no display; running headless\n";
        options.headless = true;
    }

    const std::string dataFolder =
        options.dataFolder.empty() ? ovd::platform::defaultDataFolder() : options.dataFolder;
    if (!ovd::platform::createFolder(dataFolder)) {
        std::cerr << "orvane-voice-desk: the data folder " << dataFolder
                  << " does not exist and can't be made\n";
        return 1;
    }

    std::unique_ptr<QCoreApplication> application;
    if (options.headless) {
        application = std::make_unique<QCoreApplication>(argc, argv);
    } else {
        application = std::make_unique<QApplication>(argc, argv);
    }
    QCoreApplication::setApplicationName("orvane-voice-desk");
    QCoreApplication::setApplicationVersion(kVersion);

    // One station per data folder. A second one started for a file hands the name
    // to the running one and ends without a word; started bare, it says why it ends.
    const auto instanceLock = ovd::platform::InstanceLock::take(dataFolder);
    if (!instanceLock) {
        if (!options.fileName.empty()) {
            const auto written = ovd::dictation::writeHandOff(
                dataFolder,
                {absoluteFileName(options.fileName), ovd::platform::thisProcessNumber()});
            if (written) return 0;
            std::cerr << "The running station could not be given the file: " << written.error()
                      << "\n";
            return 1;
        }
        // The running station owns the day's event log: this one writes nothing there.
        const auto prompts = makePrompts(options.headless, [](const std::string&) {});
        prompts->showMessage(alreadyRunningText(ovd::platform::InstanceLock::holder(dataFolder)),
                             ovd::settings::kProductTitle, ovd::platform::Severity::Warning);
        return 1;
    }

    ovd::ui::QtEventLoop loop;
    ovd::settings::ConfigFile config(dataFolder);
    ovd::settings::EventLog eventLog(loop, dataFolder, config.record);
    eventLog.start();

    auto prompts = makePrompts(options.headless,
                               [&eventLog](const std::string& line) { eventLog.trace(line); });
    if (options.headless && !options.answersFile.empty()) {
        const auto rules = ovd::platform::readWholeFile(options.answersFile);
        if (!rules) {
            std::cerr << "orvane-voice-desk: can't read the answers file " << options.answersFile
                      << '\n';
            return 2;
        }
        static_cast<ovd::platform::HeadlessPrompts&>(*prompts).loadRules(*rules);
    }

    auto sound = ovd::engine::openAudioBackend(ovd::engine::parseBackendChoice(options.audio)
                                                   .value_or(ovd::engine::BackendChoice::Automatic),
                                               loop, options.virtualInput);
    eventLog.trace(sound.logLine);
    if (!sound.backend) {
        std::cerr << "orvane-voice-desk: " << sound.logLine << '\n';
        prompts->showMessage(sound.logLine, ovd::settings::kProductTitle,
                             ovd::platform::Severity::Critical);
        eventLog.SaveEventLog();
        return 1;
    }
    const std::string programFolder = ovd::platform::programShareFolder();
    const std::string commandFileName =
        options.fileName.empty() ? std::string() : absoluteFileName(options.fileName);
    ovd::station::Station station({loop, config, eventLog, *prompts, *sound.backend, dataFolder,
                                   ovd::platform::joinPath(programFolder, "prompts"), programFolder,
                                   ovd::platform::executableFolder(), commandFileName,
                                   options.orderPort});
    station.onExit = [] { QCoreApplication::quit(); };
    ovd::settings::DebugTrace debugTrace(loop);
    station.handsFree().usb.trace = &debugTrace;
    // The end-of-letter hot key: heard from every program on X11, or only in the
    // station's windows (headless: its terminal). Set from the settings once read.
    ovd::ui::HotKeyHook hotKeyHook(station.handsFree().hotKeys, config.record, loop,
                                   options.headless);
    hotKeyHook.note = [&eventLog](const std::string& line) { eventLog.trace(line); };
    station.handsFree().hotKeySystemUnavailable = hotKeyHook.systemUnavailableReason();
    station.handsFree().onHotKeySettingsChanged = [&hotKeyHook] { hotKeyHook.apply(); };

    std::unique_ptr<ovd::ui::StationWindow> window;
    std::unique_ptr<ovd::ui::ScanConvertWindow> scanConvertWindow;
    if (!options.headless) {
        station.onShowScanConvert = [&scanConvertWindow,
                                     &window](ovd::conversion::ScanConvert& scan) {
            if (!scanConvertWindow)
                scanConvertWindow =
                    std::make_unique<ovd::ui::ScanConvertWindow>(scan, window.get());
            if (!scanConvertWindow->isVisible())
                ovd::ui::keepAboveStation(*scanConvertWindow, window.get());
            scanConvertWindow->show();
            scanConvertWindow->raise();
        };
        window = std::make_unique<ovd::ui::StationWindow>(ovd::ui::StationWindowParts{
            config, eventLog, station.dictation(), station.recordingEditor(),
            station.scratchEditor(), debugTrace, *prompts, programFolder, sound.backend->name(),
            &station.handsFree(), &station.housekeeping()});
        window->onExit = [&station] { station.exitFromMenu(); };
        window->onRestartNeeded = [&station] { station.exitFromMenu(); };
        window->onScanConvert = [&station] { station.openScanConvertByHand(); };
        window->onAutoSend = [&station] { station.autoSendMenu().mnAutoSend_Click(); };
        window->autoSendCaption = [&station] { return station.autoSendMenu().Caption; };
        ovd::ui::attachSecondEditorWindow(*window, station.secondEditor(), dataFolder);
        static_cast<ovd::ui::QtPrompts&>(*prompts).setMainWindow(window.get());
        const auto setup = [&window, &config, &prompts, dataFolder](ovd::ui::RecordsWindow which) {
            return [&window, &config, &prompts, dataFolder, which] {
                ovd::ui::showRecordsWindow(which, window.get(), dataFolder, *prompts,
                                           config.record);
            };
        };
        station.setupWindows.emailSetup = setup(ovd::ui::RecordsWindow::EmailReceivers);
        station.setupWindows.ftpSetup = [&window, &prompts, dataFolder] {
            ovd::ui::showFtpSetupWindow(ovd::ui::FtpWindowFace::Automatic, window.get(), dataFolder,
                                        *prompts);
        };
        // The window owns its dialog.
        auto* reconnection =
            new ovd::ui::ReconnectionDialogWindow(station.peerLink(), window.get());
        station.peerLink().onDialogChanged = [reconnection] { reconnection->render(); };
    } else {
        ovd::ui::answerReconnectionHeadless(station.peerLink(), loop);
        std::cerr << "orvane-voice-desk: running headless on " << dataFolder
                  << "; Ctrl-C or SIGTERM ends the station in order\n";
    }

    bool terminationRequested = false;
    if (terminationSignals.fd() >= 0) {
        loop.watchFd(terminationSignals.fd(), ovd::platform::FdEvent::Readable,
                     [&terminationSignals, &terminationRequested, &options, &station] {
                         if (terminationSignals.take() == 0) return;
                         // Asked for during the load, the end is remembered and the main loop is
                         // never entered; a box waiting for an answer takes its default.
                         terminationRequested = true;
                         // A routine waiting on an answer or on the disk sees the end coming and
                         // lets go.
                         station.dictation().beginShutdown();
                         QCoreApplication::quit();
                         if (!options.headless) {
                             if (QWidget* box = QApplication::activeModalWidget()) box->close();
                         }
                     });
    }
    // The window takes its face, place and devices from the settings read by the
    // load; the desk unit's buttons are named by them.
    station.onLoadDone = [&window, &station, &config] {
        if (!window) return;
        window->addDeskUnit(new ovd::ui::DeskUnitPanel(station.handsFree().switchModel,
                                                       station.dictation().view(), config.record));
        window->Form_Load();
    };
    if (station.Form_Load() == ovd::station::LoadResult::EndProgram) {
        eventLog.SaveEventLog();  // the refusal stays on record for support
        return 1;
    }
    hotKeyHook.apply();
    const int status = terminationRequested ? 0 : QCoreApplication::exec();
    station.Form_Unload();
    scanConvertWindow.reset();
    window.reset();
    return status;
}
