// Pictures of the speaker list and of the main window with the letter details
// open, for the README, on a real X display. The dictation runs on the virtual
// clock with a steady tone for a microphone.
//
//   speaker_screenshots OUTPUT_FOLDER     (DISPLAY must name a running X server)

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPixmap>
#include <QThread>
#include <iostream>

#include "configuration/speaker_list_form.h"
#include "dictation/dictation.h"
#include "engine/virtual_backend.h"
#include "engine/wave_editor.h"
#include "platform/files.h"
#include "screenshot_shots.h"
#include "settings/debug_trace.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"
#include "ui/letter_details_panel.h"
#include "ui/speaker_list_window.h"
#include "ui/station_window.h"

namespace {

using namespace ovd;

struct NoPeer : dictation::PeerNotices {
    [[nodiscard]] bool linkOn() const override { return false; }
    bool send(const std::string&, const std::string&) override { return false; }
};

bool shoot(QWidget& window, const std::string& path) {
    ovd::testing::settleWindows(200);
    const bool saved = window.grab().save(QString::fromStdString(path));
    std::cout << (saved ? "wrote " : "could not write ") << path << '\n';
    return saved;
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const auto outputFolder = ovd::testing::screenshotFolder(argc, argv, "speaker_screenshots");
    if (!outputFolder) return 2;
    const std::string& out = *outputFolder;
    ovd::testing::TempFolder folder;
    ovd::testing::VirtualEventLoop loop{ovd::testing::localTime(2026, 3, 9, 9, 30, 0)};
    settings::ConfigFile config{folder.path()};
    if (const auto done = platform::writeWholeFile(
            config.path(), *platform::readWholeFile(OVD_TEST_ASSETS "/DigitalRecorder.cfg"));
        !done) {
        std::cerr << done.error() << "\n";
        return 1;
    }
    config.ReadConfig();
    config.record.CaptureFilePath = folder.file("Recordings");
    config.record.FormatType = "WAV";
    config.record.QDUDisconnected = true;
    config.record.FileLabelActive = true;
    config.record.FileLabelText = "AB";
    config.record.AddNameToFile = true;
    config.record.CurrentSpeaker = "Dr Ames";
    if (const auto done = platform::createFolder(folder.file("Recordings")); !done) {
        std::cerr << done.error() << "\n";
        return 1;
    }
    settings::EventLog log{loop, folder.path(), config.record};
    ovd::testing::ScriptedPrompts prompts;
    settings::SpeakersTable speakers{folder.path()};
    for (const auto& [name, active] : std::vector<std::pair<const char*, bool>>{
             {"Dr Ames", true}, {"Dr Brown", true}, {"J. Carter", false}, {"M. Duval", true}}) {
        speakers.addSpeaker(name, active);
    }
    engine::VirtualBackend backend{loop, {}};
    auto clipboard = std::make_shared<engine::Clipboard>();
    engine::WaveEditor editor1{loop, backend, clipboard, "AudioEditor1"};
    engine::WaveEditor editor21{loop, backend, clipboard, "AudioEditor21"};
    engine::PromptPlayer voice{backend, OVD_TEST_ASSETS "/prompts"};
    NoPeer peer;
    dictation::Dictation dictation(
        {loop, config, log, prompts, editor1, editor21, voice, speakers, peer, folder.path()});
    dictation.start();
    dictation.naming.ComboFill();
    settings::DebugTrace trace{loop};
    ui::StationWindow window({config, log, dictation, editor1, editor21, trace, prompts,
                              OVD_TEST_ASSETS, backend.name()});
    window.Form_Load();
    ovd::testing::settleWindows(800);

    bool allSaved = true;
    {
        configuration::SpeakerListForm model(config, speakers, log, prompts, {});
        model.load();
        model.selectRow(1);
        ui::SpeakerListWindow list(model, nullptr);
        allSaved = shoot(list, out + "/speaker-list.png") && allSaved;
    }

    dictation.newLetter();
    dictation.recordTake();
    for (int done = 0; done < 4000; done += 50) loop.advance(platform::Milliseconds(50));
    dictation.stop();
    dictation.setLetterDetails({{"Y-Author", "Dr Ames"},
                                {"Y-Priority", "High"},
                                {"Y-Reference", "Case 12/B"},
                                {"SF-Meeting Name", "Ward round"},
                                {"SF-Meeting Date", "2026-03-09"}});
    auto* panel = window.findChild<ui::LetterDetailsPanel*>("frameLetterDetails");
    if (panel != nullptr) panel->setOpen(true);
    window.render();
    ovd::testing::settleWindows(400);
    window.adjustSize();
    allSaved = shoot(window, out + "/letter-details.png") && allSaved;
    return allSaved ? 0 : 1;
}
