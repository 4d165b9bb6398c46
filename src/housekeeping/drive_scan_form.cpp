#include "housekeeping/drive_scan_form.h"

#include <algorithm>

#include "platform/files.h"
#include "platform/text.h"

namespace ovd::housekeeping {

namespace {

int indexIn(const settings::ConfigVariant& value, int count, int firstNumber) {
    if (const auto number = value.toNumber()) {
        const int index = static_cast<int>(*number) - firstNumber;
        if (index >= 0 && index < count) return index;
    }
    return -1;
}

}  // namespace

const std::vector<std::string>& scanDayNames() {
    static const std::vector<std::string> names = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                                   "Friday", "Saturday", "Sunday"};
    return names;
}

DriveScanForm::DriveScanForm(DriveScanFormParts parts) : parts_(std::move(parts)) {}

Day DriveScanForm::today() const { return localDayOf(parts_.loop.now()); }

void DriveScanForm::Form_Load() {
    const LoadedScanSettings loaded = LoadScanSettings(parts_.dataFolder);
    damage = loaded.damage;
    loaded_ = loaded.settings;
    folder = loaded_.DestPath.toText();
    const auto& days = scanDayNames();
    const std::string day = loaded_.FileScanDay.toText();
    const auto named = std::find(days.begin(), days.end(), day);
    if (named != days.end()) {
        dayIndex = static_cast<int>(named - days.begin());
    } else {
        dayIndex = std::max(0, indexIn(loaded_.FileScanDay, 7, 1));
    }
    if (const int hour = indexIn(loaded_.FileScanHour, 12, 1); hour >= 0) hourIndex = hour;
    if (const int minute = indexIn(loaded_.FileScanMinute, 60, 0); minute >= 0)
        minuteIndex = minute;
    morning = loaded_.FileScanAMPM.toText() == "AM";
    daysText = loaded_.DeleteDays.toText();
    calendarDay = today();
    setDaysText(daysText);
}

void DriveScanForm::setDaysText(const std::string& text) {
    daysText = text;
    if (const auto days = daysToKeep(settings::ConfigVariant(platform::trim(text)))) {
        calendarDay = today() - std::chrono::days(*days);
    }
}

void DriveScanForm::setCalendarDay(Day day) {
    calendarDay = std::min(day, today());
    daysText = std::to_string((today() - calendarDay).count());
}

bool DriveScanForm::Command2() {
    ScanSettings settings = loaded_;
    settings.DestPath = folder;
    settings.FileScanDay = scanDayNames()[static_cast<std::size_t>(std::clamp(dayIndex, 0, 6))];
    settings.FileScanHour = std::clamp(hourIndex, 0, 11) + 1;
    settings.FileScanMinute = std::clamp(minuteIndex, 0, 59);
    settings.FileScanAMPM = morning ? "AM" : "PM";
    const std::string days = platform::trim(daysText);
    if (const auto number = daysToKeep(settings::ConfigVariant(days))) {
        settings.DeleteDays = *number;
    } else {
        settings.DeleteDays = days;  // kept as typed; the scan deletes nothing by it
    }
    if (auto saved = SaveScanSettings(parts_.dataFolder, settings); !saved) {
        parts_.prompts.showMessage("The drive scan settings could not be saved: " + saved.error(),
                                   settings::kProductTitle, platform::Severity::Warning);
        return false;
    }
    loaded_ = settings;
    damage.clear();
    return true;
}

void DriveScanForm::Command4() {
    if (!parts_.prompts.askYesNo(kAreYouSure, settings::kProductTitle, platform::Answer::No))
        return;
    useFolder(defaultScanFolder(parts_.dataFolder));
}

void DriveScanForm::Command5() {
    const auto chosen = parts_.prompts.chooseFolder({"Drive Scan Folder", folder});
    if (!chosen) {
        parts_.prompts.showMessage(kUserCancelled);
        return;
    }
    useFolder(chosen->empty() ? defaultScanFolder(parts_.dataFolder) : *chosen);
    parts_.config.record.LastFolderOpened = folder;
    parts_.config.WriteConfig();
}

void DriveScanForm::useFolder(const std::string& chosen) {
    folder = chosen;
    if (auto made = platform::createFolder(folder); !made) {
        parts_.prompts.showMessage(made.error(), settings::kProductTitle,
                                   platform::Severity::Warning);
    }
}

}  // namespace ovd::housekeeping
