#include "station/device_choice.h"

#include <algorithm>
#include <cmath>

namespace ovd::station {

namespace {

std::vector<std::string> deviceNames(const engine::DeviceList& list) {
    std::vector<std::string> names;
    for (int i = 0; i < list.Count(); ++i) names.push_back(list.Name(i));
    return names;
}

std::vector<std::string> sourceNames(const engine::DeviceList& list) {
    std::vector<std::string> names;
    for (int i = 0; i < list.SourceCount(); ++i) names.push_back(list.SourceName(i));
    return names;
}

int storedVolume(const settings::ConfigVariant& stored, int fallback) {
    const auto number = stored.toNumber();
    if (!number) return fallback;
    return std::clamp(static_cast<int>(*number), 0, kVolumeMax);
}

}  // namespace

StoredPick pickStored(const std::vector<std::string>& names, const std::string& storedIndex,
                      const std::string& storedName) {
    if (names.empty()) return {};
    const int count = static_cast<int>(names.size());
    if (!storedName.empty()) {
        const auto named = std::find(names.begin(), names.end(), storedName);
        if (named != names.end()) {
            const int index = static_cast<int>(named - names.begin());
            return {index, std::to_string(index) != storedIndex};
        }
    }
    int index = -1;
    try {
        std::size_t used = 0;
        index = std::stoi(storedIndex, &used);
        if (used != storedIndex.size()) index = -1;
    } catch (const std::exception&) {
        index = -1;
    }
    if (index >= 0 && index < count) return {index, !storedName.empty()};
    return {count - 1, true};
}

StoredPick pickRecordingDevice(const std::vector<std::string>& names, int systemCurrent,
                               const std::string& storedIndex, const std::string& storedName) {
    if (names.empty()) return {};
    if (storedName.empty() || storedName == "0") return {std::max(systemCurrent, 0), true};
    return pickStored(names, storedIndex, storedName);
}

int chooseRecordingDevice(engine::DeviceList& recording, settings::ConfigFile& config) {
    settings::SettingsRecord& record = config.record;
    const StoredPick device = pickRecordingDevice(deviceNames(recording), recording.Current(),
                                                  record.kDeviceInput, record.InputDeviceName);
    if (device.index < 0) return -1;
    (void)recording.setCurrent(device.index);
    if (device.storeIt) {
        record.kDeviceInput = std::to_string(device.index);
        record.InputDeviceName = recording.Name(device.index);
        config.WriteConfig();
    }
    return device.index;
}

std::string volumeLabel(const char* what, int position) {
    const long percent = std::lround(static_cast<double>(position) / kVolumeMax * 100.0);
    return std::string(what) + " " + std::to_string(percent) + "%";
}

DeviceChoice::DeviceChoice(engine::DeviceList& recording, engine::DeviceList& playback,
                           settings::ConfigFile& config, platform::Prompts& prompts)
    : recording_(recording), playback_(playback), config_(config), prompts_(prompts) {}

bool DeviceChoice::load() {
    if (recording_.Count() == 0) return false;
    loading_ = true;
    loadInput();
    loadOutput();
    loading_ = false;
    return true;
}

void DeviceChoice::loadInput() {
    settings::SettingsRecord& record = config_.record;
    (void)chooseRecordingDevice(recording_, config_);
    if (fillInputSources()) {
        const int source = recording_.SourceCurrent();
        if (record.kSrcInput != std::to_string(source) ||
            record.InputSourceName != recording_.SourceName(source)) {
            record.kSrcInput = std::to_string(source);
            record.InputSourceName = recording_.SourceName(source);
            config_.WriteConfig();
        }
    }
    readInputLine();
    // The level the author left is the level the station records at.
    if (inputVolumeAvailable()) {
        sldrVolumeInp_Change(storedVolume(record.sldrVolumeInpSelStart, inputVolume_));
    }
}

void DeviceChoice::loadOutput() {
    settings::SettingsRecord& record = config_.record;
    if (playback_.Count() == 0) return;
    if (record.kDeviceOutput != kLeaveOutputAlone) {
        const StoredPick device = pickStored(deviceNames(playback_), record.kDeviceOutput, "");
        (void)playback_.setCurrent(device.index);
        if (device.storeIt) {
            record.kDeviceOutput = std::to_string(device.index);
            config_.WriteConfig();
        }
        if (record.kSrcOutput != kLeaveOutputAlone) {
            const StoredPick source = pickStored(sourceNames(playback_), record.kSrcOutput, "");
            if (source.index >= 0) (void)playback_.setSourceCurrent(source.index);
            if (source.storeIt && source.index >= 0) {
                record.kSrcOutput = std::to_string(source.index);
                config_.WriteConfig();
            }
        }
    }
    const int line = playback_.SourceCurrent();
    outputVolume_ = line >= 0 && playback_.HasVolume(line) ? playback_.Volume(line) : 0;
    if (outputVolumeAvailable()) {
        sldrVolumeOut_Change(storedVolume(record.sldrVolumeOutSelStart, outputVolume_));
    }
}

bool DeviceChoice::fillInputSources() {
    const settings::SettingsRecord& record = config_.record;
    const StoredPick source =
        pickStored(sourceNames(recording_), record.kSrcInput, record.InputSourceName);
    const bool filled = source.index >= 0 && recording_.setSourceCurrent(source.index);
    if (filled) {
        failedSourceFills_ = 0;
        return true;
    }
    if (++failedSourceFills_ > kSourceFillsBorne) {
        prompts_.showMessage(kLineInputMissing, settings::kProductTitle,
                             platform::Severity::Critical);
        if (onRestartNeeded) onRestartNeeded();
    }
    return false;
}

void DeviceChoice::readInputLine() {
    const int line = recording_.SourceCurrent();
    if (line < 0 || !recording_.HasVolume(line)) return;
    inputVolume_ = recording_.Volume(line);
    inputBalance_ = recording_.Balance(line);
    inputMute_ = recording_.Mute(line);
}

void DeviceChoice::devicesChanged() {
    readInputLine();
    const int line = playback_.SourceCurrent();
    if (line >= 0 && playback_.HasVolume(line)) outputVolume_ = playback_.Volume(line);
}

std::vector<std::string> DeviceChoice::inputDevices() const { return deviceNames(recording_); }
std::vector<std::string> DeviceChoice::inputSources() const { return sourceNames(recording_); }
std::vector<std::string> DeviceChoice::outputDevices() const { return deviceNames(playback_); }
std::vector<std::string> DeviceChoice::outputSources() const { return sourceNames(playback_); }

bool DeviceChoice::inputVolumeAvailable() const {
    const int line = recording_.SourceCurrent();
    return line >= 0 && recording_.HasVolume(line);
}

bool DeviceChoice::outputVolumeAvailable() const {
    const int line = playback_.SourceCurrent();
    return line >= 0 && playback_.HasVolume(line);
}

void DeviceChoice::cmbDevInput_Click(int index) {
    if (loading_ || index < 0 || index >= recording_.Count()) return;
    (void)recording_.setCurrent(index);
    settings::SettingsRecord& record = config_.record;
    record.kDeviceInput = std::to_string(index);
    record.InputDeviceName = recording_.Name(index);
    config_.WriteConfig();
    if (fillInputSources()) readInputLine();
}

void DeviceChoice::cmbSrcInput_Click(int index) {
    if (loading_ || index < 0 || index >= recording_.SourceCount()) return;
    (void)recording_.setSourceCurrent(index);
    readInputLine();
    settings::SettingsRecord& record = config_.record;
    record.kSrcInput = std::to_string(index);
    record.InputSourceName = recording_.SourceName(index);
    config_.WriteConfig();
}

void DeviceChoice::cmbDevOutput_Click(int index) {
    if (loading_ || index < 0 || index >= playback_.Count()) return;
    (void)playback_.setCurrent(index);
    config_.record.kDeviceOutput = std::to_string(index);
    config_.WriteConfig();
    const int line = playback_.SourceCurrent();
    if (line >= 0 && playback_.HasVolume(line)) outputVolume_ = playback_.Volume(line);
}

void DeviceChoice::cmbSrcOutput_Click(int index) {
    if (loading_ || index < 0 || index >= playback_.SourceCount()) return;
    (void)playback_.setSourceCurrent(index);
    config_.record.kSrcOutput = std::to_string(index);
    config_.WriteConfig();
    if (playback_.HasVolume(index)) outputVolume_ = playback_.Volume(index);
}

void DeviceChoice::sldrVolumeInp_Change(int position) {
    inputVolume_ = std::clamp(position, 0, kVolumeMax);
    if (inputVolumeAvailable())
        (void)recording_.setVolume(recording_.SourceCurrent(), inputVolume_);
}

void DeviceChoice::sldrVolumeOut_Change(int position) {
    outputVolume_ = std::clamp(position, 0, kVolumeMax);
    if (outputVolumeAvailable())
        (void)playback_.setVolume(playback_.SourceCurrent(), outputVolume_);
}

void DeviceChoice::sldrVolumeInp_MouseUp() {
    config_.record.sldrVolumeInpSelStart = inputVolume_;
    config_.WriteConfig();
}

void DeviceChoice::sldrVolumeOut_MouseUp() {
    config_.record.sldrVolumeOutSelStart = outputVolume_;
    config_.WriteConfig();
}

}  // namespace ovd::station
