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
#include <cstring>
#include <iostream>

#include "devices/letter_actions.h"
#include "devices/switch_model.h"
#include "dictation/dictation.h"
#include "engine/virtual_backend.h"
#include "engine/wave_editor.h"
#include "platform/files.h"
#include "settings/debug_trace.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"
#include "ui/desk_unit_panel.h"
#include "ui/station_window.h"

namespace {

using namespace ovd;

constexpr int kRate = 16000;

// Words of a few syllables with pauses between them, as a voice shows in a waveform.
std::string writeSpeech(const std::string& path, int seconds) {
    const std::uint32_t frames = static_cast<std::uint32_t>(seconds * kRate);
    std::string bytes(44 + frames * 2, '\0');
    const auto put32 = [&](std::size_t at, std::uint32_t v) { std::memcpy(&bytes[at], &v, 4); };
    const auto put16 = [&](std::size_t at, std::uint16_t v) { std::memcpy(&bytes[at], &v, 2); };
    std::memcpy(&bytes[0], "RIFF", 4);
    put32(4, 36 + frames * 2);
    std::memcpy(&bytes[8], "WAVEfmt ", 8);
    put32(16, 16);
    put16(20, 1);
    put16(22, 1);
    put32(24, kRate);
    put32(28, kRate * 2);
    put16(32, 2);
    put16(34, 16);
    std::memcpy(&bytes[36], "data", 4);
    put32(40, frames * 2);
    for (std::uint32_t i = 0; i < frames; ++i) {
        const double t = static_cast<double>(i) / kRate;
        const double word = std::fmod(t, 1.3);                   // a word every 1.3 s
        const double syllable = std::sin(M_PI * std::fmod(t, 0.22) / 0.22);
        const double loud = word < 0.9 ? syllable * (0.35 + 0.25 * std::sin(t * 2.1)) : 0.0;
        const double voice = std::sin(2 * M_PI * 140 * t) + 0.5 * std::sin(2 * M_PI * 420 * t);
        const auto v = static_cast<std::int16_t>(loud * voice * 18000);
        std::memcpy(&bytes[44 + i * 2], &v, 2);
    }
    platform::writeWholeFile(path, bytes);
    return path;
}

struct NoPeer : dictation::PeerNotices {
    [[nodiscard]] bool linkOn() const override { return false; }
    bool send(const std::string&, const std::string&) override { return false; }
};

struct NoLetters : devices::LetterActions {
    void beep() override {}
    void startEndOfLetter() override {}
    void endOfLetter() override {}
    bool exitRequested() const override { return false; }
    void startTimClose() override {}
    void exitProgram() override {}
    void destinationNotTried(int, const std::string&) override {}
    void sendToDestination(int, const std::string&, const devices::SendWording&) override {}
    void stageForSending(devices::Staging, const std::string&) override {}
};

// Lets the window manager and the window catch up, in real time.
void settle(int milliseconds) {
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < milliseconds) {
        QApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(10);
    }
}

// The window as grabbed, under a strip with its caption as a desktop's title bar
// shows it: the caption is where the station says what it is doing.
bool shoot(QWidget& window, const std::string& path) {
    settle(150);
    const QPixmap body = window.grab();
    const int strip = 26;
    QPixmap picture(body.width(), body.height() + strip);
    picture.fill(QColor(48, 56, 66));
    QPainter painter(&picture);
    painter.drawPixmap(0, strip, body);
    painter.setPen(Qt::white);
    QFont font = window.font();
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(QRect(10, 0, body.width() - 20, strip), Qt::AlignVCenter | Qt::AlignLeft,
                     window.windowTitle());
    painter.end();
    const bool saved = picture.save(QString::fromStdString(path));
    std::cout << (saved ? "wrote " : "could not write ") << path << '\n';
    return saved;
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (argc < 2) {
        std::cerr << "usage: window_screenshots OUTPUT_FOLDER\n";
        return 2;
    }
    const std::string out = argv[1];
    platform::createFolder(out);

    testing::TempFolder folder;
    testing::VirtualEventLoop loop{testing::localTime(2026, 3, 9, 9, 30, 0)};
    settings::ConfigFile config{folder.path()};
    platform::writeWholeFile(config.path(), *platform::readWholeFile(OVD_TEST_ASSETS "/DigitalRecorder.cfg"));
    config.ReadConfig();
    config.record.CaptureFilePath = folder.file("Recordings");
    config.record.FormatType = "WAV";
    config.record.QDUDisconnected = true;
    config.record.MainWindowLeft = 20;
    config.record.MainWindowTop = 30;
    platform::createFolder(folder.file("Recordings"));
    settings::EventLog log{loop, folder.path(), config.record};
    testing::ScriptedPrompts prompts;
    settings::SpeakersTable speakers{folder.path()};
    engine::VirtualBackend backend{loop, {440.0, 0.25, writeSpeech(folder.file("voice.wav"), 30)}};
    auto clipboard = std::make_shared<engine::Clipboard>();
    engine::WaveEditor editor1{loop, backend, clipboard, "AudioEditor1"};
    engine::WaveEditor editor21{loop, backend, clipboard, "AudioEditor21"};
    engine::PromptPlayer voice{backend, OVD_TEST_ASSETS "/prompts"};
    NoPeer peer;
    dictation::Dictation dictation({loop, config, log, prompts, editor1, editor21, voice, speakers, peer,
                                    folder.path()});
    dictation.start();
    NoLetters letters;
    devices::ButtonMessages messages;
    devices::SwitchModel switchModel({dictation, editor1, config, log, prompts, peer, messages, letters});
    settings::DebugTrace trace{loop};

    ui::StationWindow window({config, log, dictation, editor1, editor21, trace, prompts, OVD_TEST_ASSETS,
                              backend.name()});
    window.addDeskUnit(new ui::DeskUnitPanel(switchModel, dictation.view, config.record));
    window.Form_Load();
    settle(800);

    const auto run = [&](int milliseconds) {
        for (int done = 0; done < milliseconds; done += 50) {
            loop.advance(platform::Milliseconds(50));
            window.render();
        }
    };
    bool allSaved = true;
    for (const ui::Face face : {ui::Face::Regular, ui::Face::Thin, ui::Face::SuperThin}) {
        window.setFace(face);
        settle(600);
        const std::string stem = out + "/" + ui::faceSetting(face);
        window.render();
        allSaved = shoot(window, stem + "-no-file.png") && allSaved;

        dictation.Image2_Click();
        dictation.MMControl1_RecordClick();
        run(7200);  // the lamps are lit in the second half of each second
        allSaved = shoot(window, stem + "-recording.png") && allSaved;

        dictation.MMControl1_StopClick();
        dictation.MMControl1_PrevClick();
        dictation.CaseStepForward();  // a few seconds in, where the author listens back
        dictation.CaseStepForward();
        run(100);
        allSaved = shoot(window, stem + "-stopped.png") && allSaved;
        dictation.Image10_Click();
        run(100);
    }
    return allSaved ? 0 : 1;
}
