// Pictures of the second editor ("Insert Recording") for the README: a short
// spoken passage with a low hum under it, part of it selected, as a waveform and
// as a spectrogram, on a real X display.
//
//   second_editor_screenshots OUTPUT_FOLDER     (DISPLAY must name a running X server)

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QPainter>
#include <QPixmap>
#include <QThread>
#include <cmath>
#include <iostream>
#include <numbers>

#include "dictation/dictation_fixture.h"
#include "engine/virtual_backend.h"
#include "engine/wave_editor.h"
#include "platform/files.h"
#include "screenshot_shots.h"
#include "second_editor/second_editor.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"
#include "ui/second_editor_window.h"

namespace {

using namespace ovd;
using dictation::testing::kRate;

// Syllables with pauses over a 120 Hz hum, and a whistle rising through the middle.
std::string writePassage(const std::string& path, int seconds) {
    std::vector<std::int16_t> samples(static_cast<std::size_t>(seconds * kRate));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double t = static_cast<double>(i) / kRate;
        const double word = std::fmod(t, 1.3);
        const double syllable = std::sin(std::numbers::pi * std::fmod(t, 0.22) / 0.22);
        const double loud = word < 0.9 ? syllable * (0.35 + 0.25 * std::sin(t * 2.1)) : 0.0;
        const double voice = std::sin(2 * std::numbers::pi * 180 * t) +
                             0.5 * std::sin(2 * std::numbers::pi * 540 * t) +
                             0.25 * std::sin(2 * std::numbers::pi * 1260 * t);
        const double hum = 0.05 * std::sin(2 * std::numbers::pi * 120 * t);
        const double sweep =
            t > 2 && t < 4 ? 0.08 * std::sin(2 * std::numbers::pi * (800 + 600 * (t - 2)) * t) : 0;
        samples[i] = static_cast<std::int16_t>((loud * voice * 0.6 + hum + sweep) * 18000);
    }
    return dictation::testing::writeMonoWave(path, samples);
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const auto outputFolder =
        ovd::testing::screenshotFolder(argc, argv, "second_editor_screenshots");
    if (!outputFolder) return 2;
    const std::string& output = *outputFolder;
    ovd::testing::TempFolder folder;
    ovd::testing::VirtualEventLoop loop;
    ovd::testing::ScriptedPrompts prompts;
    engine::VirtualBackend backend{loop, {}};
    auto clipboard = std::make_shared<engine::Clipboard>();
    engine::WaveEditor editor{loop, backend, clipboard, "SecondEditor"};
    editor.setTempFileName(folder.file("work"));
    second_editor::SecondEditor second{
        second_editor::SecondEditorParts{loop,
                                         prompts,
                                         editor,
                                         clipboard,
                                         [] { return false; },
                                         [&] { return folder.path(); },
                                         [] {
                                             return engine::PcmFormat{kRate, 1};
                                         },
                                         {}}};
    const std::string passage = writePassage(folder.file("Passage for page 2.wav"), 6);
    if (!second.openFile(passage)) return 1;
    second.setSelectionStart(1.3);
    second.setSelectionEnd(2.2);

    ui::SecondEditorWindow window(second);
    window.resize(1180, 600);
    window.show();
    bool ok = ovd::testing::saveWithCaption(
        window, platform::joinPath(output, "second-editor-waveform.png"));
    window.action("mnuViewSpectral")->trigger();
    ok = ovd::testing::saveWithCaption(window,
                                       platform::joinPath(output, "second-editor-spectral.png")) &&
         ok;
    return ok ? 0 : 1;
}
