// orvane-autosend: the companion sender. It delivers what the station stages in
// FTPTemp and EmailTemp, one instance per data folder, until SIGTERM or --stop.

#include <unistd.h>

#include <QCoreApplication>
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "autosend/companion.h"
#include "autosend/companion_settings.h"
#include "delivery/companion_lock.h"
#include "delivery/peer_link.h"
#include "ftp/client_for_site.h"
#include "mail/staged_email_sender.h"
#include "platform/files.h"
#include "platform/headless_prompts.h"
#include "platform/termination_signals.h"
#include "settings/config_file.h"
#include "settings/event_log.h"
#include "ui/qt_event_loop.h"

namespace {

constexpr int kStopWaitMs = 10000;

constexpr const char* kUsage =
    "usage: orvane-autosend [--data-folder DIR] [--stop]\n"
    "  Sends the letters the station stages in FTPTemp and EmailTemp of its recordings\n"
    "  folder. --stop ends the companion running on the data folder.\n";

struct Options {
    std::string dataFolder = ovd::platform::defaultDataFolder();
    bool stop = false;
};

bool parse(int argc, char** argv, Options& options) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--stop") {
            options.stop = true;
        } else if (argument == "--data-folder" && i + 1 < arguments.size()) {
            options.dataFolder = arguments[++i];
        } else if (argument.rfind("--data-folder=", 0) == 0) {
            options.dataFolder = argument.substr(14);
        } else {
            return false;
        }
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    if (!parse(argc, argv, options)) {
        std::cerr << kUsage;
        return 2;
    }
    if (options.stop) {
        auto stopped = ovd::delivery::stopCompanion(options.dataFolder, kStopWaitMs);
        if (!stopped) {
            std::cerr << "orvane-autosend: " << stopped.error() << "\n";
            return 1;
        }
        return 0;
    }
    // Before any thread starts, so that every thread leaves the signals to the loop.
    ovd::platform::TerminationSignals terminationSignals;
    auto lock = ovd::delivery::CompanionLock::take(options.dataFolder);
    if (!lock) {
        // The station starts it once for each kind of sending: the second start ends here.
        std::cerr << "orvane-autosend: " << lock.error() << "\n";
        return 0;
    }

    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("orvane-autosend");
    ovd::ui::QtEventLoop loop;

    ovd::settings::ConfigFile config(options.dataFolder);
    config.record = ovd::autosend::readStationSettings(options.dataFolder);
    ovd::settings::EventLog log(loop, options.dataFolder, config.record);
    log.start();
    ovd::platform::HeadlessPrompts prompts([&log](const std::string& line) { log.trace(line); },
                                           std::cerr);
    ovd::delivery::PeerLink peer({loop, config, log, prompts});
    // The mail sender works on a thread of its own: what it has to say reaches the
    // day's log through the loop, the only thread that writes there.
    const auto traceFromSender = [&loop, &log](const std::string& line) {
        loop.postFromAnyThread([&log, line] { log.trace(line); });
    };
    ovd::platform::HeadlessPrompts senderPrompts(traceFromSender, std::cerr);
    ovd::mail::StagedEmailSender emailSender(options.dataFolder, senderPrompts);
    emailSender.setTrace(traceFromSender);

    ovd::autosend::Companion companion({
        .loop = loop,
        .dataFolder = options.dataFolder,
        .config = config,
        .log = log,
        .prompts = prompts,
        .peer = peer,
        .makeClient = &ovd::ftp::clientFor,
        .sendEmail = [&emailSender](const std::string& staged) { return emailSender.send(staged); },
        .cancelEmail = [&emailSender] { emailSender.cancel(); },
        .soundFolder = ovd::platform::programShareFolder(),
        .rescanInterval = ovd::autosend::rescanInterval(options.dataFolder),
    });

    int signalNumber = 0;
    const auto signalWatch =
        loop.watchFd(terminationSignals.fd(), ovd::platform::FdEvent::Readable, [&] {
            signalNumber = terminationSignals.take();
            QCoreApplication::quit();
        });
    log.trace("orvane-autosend started (process " + std::to_string(::getpid()) + ")");
    companion.start();
    QCoreApplication::exec();
    loop.unwatchFd(signalWatch);
    companion.stop();
    log.trace("orvane-autosend ended" +
              (signalNumber != 0 ? " on signal " + std::to_string(signalNumber) : std::string()));
    log.SaveEventLog();
    return 0;
}
