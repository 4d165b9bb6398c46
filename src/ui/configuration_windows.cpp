#include "ui/configuration_windows.h"

#include "configuration/end_of_letter_options.h"
#include "configuration/file_saves_form.h"
#include "configuration/format_dialogs.h"
#include "dictation/dictation.h"
#include "settings/config_file.h"
#include "station/device_choice.h"
#include "station/file_saves_hooks.h"
#include "ui/end_of_letter_options_window.h"
#include "ui/file_saves_window.h"
#include "ui/format_windows.h"
#include "ui/ftp_setup_window.h"
#include "ui/records_windows.h"
#include "ui/station_window.h"
#include "ui/window_placement.h"

namespace ovd::ui {

void showFileSaves(StationWindow& window, StationWindowParts& parts) {
    const std::string dataFolder = parts.config.dataFolder();
    FileSavesWindow* shown = nullptr;
    configuration::FileSavesHooks hooks = station::fileSavesHooksFor(parts.dictation);
    hooks.emailSetup = [&window, &parts, dataFolder] {
        showRecordsWindow(RecordsWindow::EmailReceivers, &window, dataFolder, parts.prompts,
                          parts.config.record);
    };
    hooks.ftpSetup = [&window, &parts, dataFolder] {
        showFtpSetupWindow(FtpWindowFace::Automatic, &window, dataFolder, parts.prompts);
    };
    hooks.volumes = [&window](int recording, int playing) {
        station::DeviceChoice& devices = window.deviceChoice();
        devices.sldrVolumeInp_Change(recording);
        devices.sldrVolumeInp_MouseUp();
        devices.sldrVolumeOut_Change(playing);
        devices.sldrVolumeOut_MouseUp();
        window.showDeviceChoice();
    };
    hooks.close = [&shown] {
        if (shown != nullptr) shown->closeFromModel();
    };
    configuration::FileSavesForm form(parts.config, parts.prompts, hooks,
                                      window.tabbedFileSaves()
                                          ? configuration::FormKind::Tabbed
                                          : configuration::FormKind::Scrolling);
    form.load();
    const auto formatOptions = [&form, &shown, dataFolder](bool other, const std::string& format) {
        const auto working = other ? configuration::WorkingOnDefault::Other
                                   : configuration::WorkingOnDefault::Normal;
        if (format == "MP3") {
            configuration::Mp3OptionsDialog model(
                dataFolder, working,
                [&form, &shown](bool otherConditions, const configuration::FormatBoxValues& v) {
                    form.takeFromFormatDialog(otherConditions, v.frequency, v.bitRate, v.channels);
                    shown->refresh();
                });
            Mp3OptionsWindow(model, shown).exec();
        } else if (format == "VOX") {
            // VOX takes a frequency only; its box follows the window.
            LayoutWindow(
                LayoutWindow::Kind::Vox, dataFolder,
                [&form, &shown, other](int frequency, int) {
                    form.setFrequency(other, std::to_string(frequency));
                    shown->refresh();
                },
                shown)
                .exec();
        } else if (format == "RAW") {
            LayoutWindow(LayoutWindow::Kind::Raw, dataFolder, nullptr, shown).exec();
        }
    };
    FileSavesWindow dialog(form, formatOptions, &window);
    shown = &dialog;
    placeOverStation(dialog, &window);
    dialog.exec();
    shown = nullptr;
    window.render();
}

void showMp3Options(StationWindow& window, StationWindowParts& parts) {
    configuration::Mp3OptionsDialog model(parts.config.dataFolder(),
                                          configuration::WorkingOnDefault::None, nullptr);
    Mp3OptionsWindow dialog(model, &window);
    placeOverStation(dialog, &window);
    dialog.exec();
}

void showEndOfLetterOptions(StationWindow& window, StationWindowParts& parts,
                            devices::HotKeyOptionsForm& hotKeys) {
    configuration::EndOfLetterOptions model(parts.config);
    EndOfLetterOptionsWindow dialog(model, hotKeys, &window);
    placeOverStation(dialog, &window);
    dialog.exec();
}

}  // namespace ovd::ui
