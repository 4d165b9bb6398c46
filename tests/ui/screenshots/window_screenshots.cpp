// Pictures of the main window for the README: each face with no file, during a
// take and stopped with a file, on a real X display with its window manager, so
// the captions are the ones the author sees. The dictation runs on the virtual
// clock with a microphone that speaks in syllables.
//
//   window_screenshots OUTPUT_FOLDER     (DISPLAY must name a running X server)

#include <QApplication>
#include <QElapsedTimer>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
#include <QThread>
#include <cmath>
#include <iostream>

#include "devices/switch_model.h"
#include "dictation/dictation_fixture.h"
#include "engine/virtual_backend.h"
#include "engine/wave_editor.h"
#include "platform/files.h"
#include "screenshot_shots.h"
#include "settings/debug_trace.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"
#include "ui/desk_unit_panel.h"
#include "ui/quiet_letters.h"
#include "ui/station_window.h"

namespace {

using namespace ovd;

using dictation::testing::kRate;

// Words of a few syllables with pauses between them, as a voice shows in a waveform.
std::string writeSpeech(const std::string& path, int seconds) {
    std::vector<std::int16_t> samples(static_cast<std::size_t>(seconds * kRate));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double t = static_cast<double>(i) / kRate;
        const double word = std::fmod(t, 1.3);  // a word every 1.3 s
        const double syllable = std::sin(M_PI * std::fmod(t, 0.22) / 0.22);
        const double loud = word < 0.9 ? syllable * (0.35 + 0.25 * std::sin(t * 2.1)) : 0.0;
        const double voice = std::sin(2 * M_PI * 140 * t) + 0.5 * std::sin(2 * M_PI * 420 * t);
        samples[i] = static_cast<std::int16_t>(loud * voice * 18000);
    }
    return dictation::testing::writeMonoWave(path, samples);
}

struct NoPeer : dictation::PeerNotices {
    [[nodiscard]] bool linkOn() const override { return false; }
    bool send(const std::string&, const std::string&) override { return false; }
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (argc < 2) {
        std::cerr << "usage: window_screenshots OUTPUT_FOLDER\n";
        return 2;
    }
    const std::string out = argv[1];
    if (const auto done = platform::createFolder(out); !done) {
        std::cerr << done.error() << "\n";
        return 1;
    }

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
    config.record.MainWindowLeft = 20;
    config.record.MainWindowTop = 30;
    if (const auto done = platform::createFolder(folder.file("Recordings")); !done) {
        std::cerr << done.error() << "\n";
        return 1;
    }
    settings::EventLog log{loop, folder.path(), config.record};
    ovd::testing::ScriptedPrompts prompts;
    settings::SpeakersTable speakers{folder.path()};
    engine::VirtualBackend backend{loop, {440.0, 0.25, writeSpeech(folder.file("voice.wav"), 30)}};
    auto clipboard = std::make_shared<engine::Clipboard>();
    engine::WaveEditor editor1{loop, backend, clipboard, "AudioEditor1"};
    engine::WaveEditor editor21{loop, backend, clipboard, "AudioEditor21"};
    engine::PromptPlayer voice{backend, OVD_TEST_ASSETS "/prompts"};
    NoPeer peer;
    dictation::Dictation dictation(
        {loop, config, log, prompts, editor1, editor21, voice, speakers, peer, folder.path()});
    dictation.start();
    ui::testing::QuietLetters letters;
    devices::ButtonMessages messages;
    devices::SwitchModel switchModel(
        {dictation, editor1, config, log, prompts, peer, messages, letters});
    settings::DebugTrace trace{loop};

    ui::StationWindow window({config, log, dictation, editor1, editor21, trace, prompts,
                              OVD_TEST_ASSETS, backend.name()});
    window.addDeskUnit(new ui::DeskUnitPanel(switchModel, dictation.view(), config.record));
    window.Form_Load();
    ovd::testing::settleWindows(800);

    const auto run = [&](int milliseconds) {
        for (int done = 0; done < milliseconds; done += 50) {
            loop.advance(platform::Milliseconds(50));
            window.render();
        }
    };
    bool allSaved = true;
    for (const ui::Face face : {ui::Face::Regular, ui::Face::Thin, ui::Face::SuperThin}) {
        window.setFace(face);
        ovd::testing::settleWindows(600);
        const std::string stem = out + "/" + ui::faceSetting(face);
        window.render();
        allSaved = ovd::testing::saveWithCaption(window, stem + "-no-file.png") && allSaved;

        dictation.newLetter();
        dictation.recordTake();
        run(7200);  // the lamps are lit in the second half of each second
        allSaved = ovd::testing::saveWithCaption(window, stem + "-recording.png") && allSaved;

        dictation.stop();
        dictation.goToBeginning();
        dictation.CaseStepForward();  // a few seconds in, where the author listens back
        dictation.CaseStepForward();
        run(100);
        allSaved = ovd::testing::saveWithCaption(window, stem + "-stopped.png") && allSaved;
        dictation.closeFile();
        run(100);
    }
    return allSaved ? 0 : 1;
}
