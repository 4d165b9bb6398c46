#include "housekeeping/scan_settings.h"

#include <cmath>

#include "platform/files.h"
#include "settings/record_grammar.h"

namespace ovd::housekeeping {

namespace {

constexpr std::size_t kLongestPath = 4095;
constexpr std::size_t kLongestValue = 255;
// A record is one short line; anything much longer is not this file.
constexpr std::size_t kLongestRecord = 2 * kLongestPath + 8 * kLongestValue;

void fillIn(ScanSettings& settings, const std::string& dataFolder) {
    if (settings.FileScanAMPM.isBlank()) settings.FileScanAMPM = "PM";
    if (settings.DestPath.isBlank()) settings.DestPath = defaultScanFolder(dataFolder);
}

bool fits(const settings::ConfigVariant& value, std::size_t longest) {
    if (!value.isText()) return true;
    const std::string text = value.toText();
    if (text.size() > longest) return false;
    for (const char c : text) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) return false;
    }
    return true;
}

}  // namespace

std::optional<std::string> readScanRecord(const std::string& content, ScanSettings& out) {
    if (content.size() > kLongestRecord)
        return "it holds " + std::to_string(content.size()) + " bytes, not one short record";
    const auto tokens = settings::tokenizeRecord(content);
    if (tokens.size() != kScanSettingsFields) {
        return "it holds " + std::to_string(tokens.size()) + " fields where " +
               std::to_string(kScanSettingsFields) + " belong";
    }
    auto userPath = settings::readTextField(tokens[0], kLongestPath);
    if (!userPath) return "its first field is no path";
    ScanSettings read;
    read.UserPath = std::move(*userPath);
    settings::ConfigVariant* fields[] = {
        &read.DestPath,     &read.FileScanDay,  &read.FileScanHour, &read.FileScanMinute,
        &read.FileScanAMPM, &read.FileScanFlag, &read.DeleteDays};
    for (std::size_t i = 0; i < std::size(fields); ++i) {
        *fields[i] = settings::readVariantField(tokens[i + 1]);
        if (!fits(*fields[i], i == 0 ? kLongestPath : kLongestValue))
            return "field " + std::to_string(i + 2) + " holds text no setting can take";
    }
    if (!read.DestPath.isBlank() && !read.DestPath.isText()) return "its folder is no path";
    out = std::move(read);
    return std::nullopt;
}

std::string formatScanRecord(ScanSettings settings) {
    if (settings.FileScanAMPM.isBlank()) settings.FileScanAMPM = "PM";
    std::string line = settings::formatTextField(settings.UserPath);
    for (const settings::ConfigVariant* field :
         {&settings.DestPath, &settings.FileScanDay, &settings.FileScanHour,
          &settings.FileScanMinute, &settings.FileScanAMPM, &settings.FileScanFlag,
          &settings.DeleteDays}) {
        line += ',' + settings::formatVariantField(*field);
    }
    return line + "\r\n";
}

std::string scanSettingsPath(const std::string& dataFolder) {
    return platform::joinPath(dataFolder, kScanSettingsFileName);
}

std::string defaultScanFolder(const std::string& dataFolder) {
    return platform::joinPath(dataFolder, "Recordings");
}

LoadedScanSettings LoadScanSettings(const std::string& dataFolder) {
    LoadedScanSettings loaded;
    const std::string path = scanSettingsPath(dataFolder);
    if (platform::fileExists(path)) {
        loaded.fileFound = true;
        const auto content = platform::readWholeFile(path);
        if (!content) {
            loaded.damage = content.error();
        } else if (auto wrong = readScanRecord(*content, loaded.settings)) {
            loaded.damage = *wrong;
        }
    }
    fillIn(loaded.settings, dataFolder);
    return loaded;
}

platform::Result<void> SaveScanSettings(const std::string& dataFolder, ScanSettings settings) {
    return platform::replaceFile(scanSettingsPath(dataFolder),
                                 formatScanRecord(std::move(settings)));
}

std::optional<int> daysToKeep(const settings::ConfigVariant& DeleteDays) {
    const auto number = DeleteDays.isBool() ? std::nullopt : DeleteDays.toNumber();
    if (!number || *number < 0 || *number > 100000 || std::floor(*number) != *number)
        return std::nullopt;
    return static_cast<int>(*number);
}

}  // namespace ovd::housekeeping
