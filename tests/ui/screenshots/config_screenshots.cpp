// Pictures of the settings windows for the README: both file-save settings windows,
// the format option windows and the end-of-letter options, on a real X display.
//
//   config_screenshots OUTPUT_FOLDER     (DISPLAY must name a running X server)

#include <QApplication>
#include <QPixmap>
#include <QTabWidget>
#include <iostream>

#include "configuration/end_of_letter_options.h"
#include "configuration/file_saves_form.h"
#include "configuration/format_dialogs.h"
#include "platform/files.h"
#include "screenshot_shots.h"
#include "settings/config_file.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "ui/end_of_letter_options_window.h"
#include "ui/file_saves_window.h"
#include "ui/format_windows.h"

namespace {

using namespace ovd;

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const auto folder = testing::screenshotFolder(argc, argv, "config_screenshots");
    if (!folder) return 2;
    const std::string& output = *folder;
    testing::TempFolder data;
    testing::ScriptedPrompts prompts;
    settings::ConfigFile config(data.path());
    settings::SettingsRecord& r = config.record;
    r.CaptureFilePath = data.file("Recordings");
    r.FileLabelActive = true;
    r.FileLabelText = "AB";
    r.SequentialNumbering = true;
    r.FileNameIncrement = 7;
    r.Places = 4;
    r.FormatType = "MP3";
    r.Frequency = "16000";
    r.Channel = "MONO";
    r.FileBit = "32";
    r.FormatType2 = "WAV";
    r.Frequency2 = "44100";
    r.Channel2 = "STEREO";
    r.FileBit2 = "16";
    r.JumpBackSecs = 3;
    r.AutoSend1 = true;
    r.SendToOne = "/srv/dictation/outgoing";
    r.RecoveryModule = true;
    r.TCPIP = "127.0.0.1";
    r.TCPPort = "2011";
    r.sldrVolumeInpSelStart = 49151;
    r.sldrVolumeOutSelStart = 32768;

    for (const bool tabbed : {false, true}) {
        configuration::FileSavesForm form(
            config, prompts, {},
            tabbed ? configuration::FormKind::Tabbed : configuration::FormKind::Scrolling);
        form.load();
        ui::FileSavesWindow window(form, nullptr, nullptr);
        if (tabbed) window.findChild<QTabWidget*>("tabControl")->setCurrentIndex(2);
        testing::saveScreenshot(window, output,
                                tabbed ? "config-file-saves-tabbed.png" : "config-file-saves.png");
    }
    {
        configuration::Mp3OptionsDialog model(data.path(), configuration::WorkingOnDefault::Normal,
                                              nullptr);
        model.settings.vbr = configuration::VbrMethod::Mtrh;
        ui::Mp3OptionsWindow window(model, nullptr);
        testing::saveScreenshot(window, output, "config-mp3.png");
    }
    {
        configuration::OggOptionsDialog model(data.path());
        model.settings.qualityEnabled = false;
        model.settings.vbrEnabled = true;
        ui::OggOptionsWindow window(model, nullptr);
        testing::saveScreenshot(window, output, "config-ogg.png");
    }
    {
        ui::LayoutWindow window(ui::LayoutWindow::Kind::Vox, data.path(), nullptr, nullptr);
        testing::saveScreenshot(window, output, "config-vox.png");
    }
    {
        ui::LayoutWindow window(ui::LayoutWindow::Kind::Raw, data.path(), nullptr, nullptr);
        testing::saveScreenshot(window, output, "config-raw.png");
    }
    {
        configuration::EndOfLetterOptions model(config);
        devices::HotKeyOptionsForm hotKeys(config, prompts, "Orvane Voice Desk", "");
        ui::EndOfLetterOptionsWindow window(model, hotKeys, nullptr);
        testing::saveScreenshot(window, output, "config-end-of-letter.png");
    }
    return 0;
}
