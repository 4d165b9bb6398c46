// orvane-voice-desk: the dictation station.

#include <QApplication>
#include <QCoreApplication>

#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "app/command_line.h"
#include "app/station.h"
#include "engine/backend_choice.h"
#include "platform/files.h"
#include "platform/headless_prompts.h"
#include "platform/termination_signals.h"
#include "settings/config_file.h"
#include "settings/event_log.h"
#include "ui/qt_event_loop.h"
#include "ui/desk_unit_panel.h"
#include "ui/qt_prompts.h"
#include "ui/station_window.h"

namespace {

constexpr const char* kVersion = "0.1.0";

bool displayAvailable() {
    const char* x11 = std::getenv("DISPLAY");
    const char* wayland = std::getenv("WAYLAND_DISPLAY");
    return (x11 != nullptr && *x11 != '\0') || (wayland != nullptr && *wayland != '\0');
}

// What every way out of the station does last: the next start knows this run
// ended in order, and the day's log holds everything.
void endInOrder(ovd::settings::ConfigFile& config, ovd::settings::EventLog& eventLog) {
    config.record.gNormalShutDown = true;
    config.WriteConfig();
    eventLog.SaveEventLog();
}

}  // namespace

int main(int argc, char** argv) {
    // Before Qt starts any thread, so that every thread has these signals blocked.
    ovd::platform::TerminationSignals terminationSignals;

    const std::vector<std::string> arguments(argv + 1, argv + argc);
    ovd::app::StationOptions options = ovd::app::parseCommandLine(arguments);
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

    ovd::ui::QtEventLoop loop;
    ovd::settings::ConfigFile config(dataFolder);
    ovd::settings::EventLog eventLog(loop, dataFolder, config.record);

    std::unique_ptr<ovd::platform::Prompts> prompts;
    if (options.headless) {
        auto headless = std::make_unique<ovd::platform::HeadlessPrompts>(
            [&eventLog](const std::string& line) { eventLog.trace(line); }, std::cerr);
        if (!options.answersFile.empty()) {
            const auto rules = ovd::platform::readWholeFile(options.answersFile);
            if (!rules) {
                std::cerr << "orvane-voice-desk: can't read the answers file "
                          << options.answersFile << '\n';
                return 2;
            }
            headless->loadRules(*rules);
        }
        prompts = std::move(headless);
    } else {
        prompts = std::make_unique<ovd::ui::QtPrompts>();
    }

    if (!config.startUp(*prompts)) {
        eventLog.SaveEventLog();  // the refusal stays on record for support
        return 1;
    }
    eventLog.start();

    auto sound = ovd::engine::openAudioBackend(
        ovd::engine::parseBackendChoice(options.audio).value_or(ovd::engine::BackendChoice::Automatic),
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
    ovd::app::Station station({loop, config, eventLog, *prompts, *sound.backend, dataFolder,
                               ovd::platform::joinPath(programFolder, "prompts"), programFolder});
    station.onExit = [] { QCoreApplication::quit(); };

    std::unique_ptr<ovd::ui::StationWindow> window;
    if (!options.headless) {
        window = std::make_unique<ovd::ui::StationWindow>(config, eventLog);
        window->addDeskUnit(new ovd::ui::DeskUnitPanel(station.handsFree().switchModel,
                                                       station.dictation().view, config.record));
        window->show();
    } else {
        std::cerr << "orvane-voice-desk: running headless on " << dataFolder
                  << "; Ctrl-C or SIGTERM ends the station in order\n";
    }

    if (terminationSignals.fd() >= 0) {
        loop.watchFd(terminationSignals.fd(), ovd::platform::FdEvent::Readable, [&terminationSignals] {
            if (terminationSignals.take() != 0) QCoreApplication::quit();
        });
    }
    station.start();
    const int status = QCoreApplication::exec();
    station.shutDown();
    window.reset();
    endInOrder(config, eventLog);
    return status;
}
