// The converter's format and the conversions of the recovery window, each named
// in the list of operations as it starts and stops.

#include <algorithm>
#include <filesystem>

#include "conversion/format_in_force.h"
#include "conversion/scan_convert.h"
#include "engine/format_selection.h"
#include "platform/files.h"

namespace ovd::conversion {

namespace {
// A rate the converter does not know is taken as the telephone rate.
constexpr int kUnknownRate = 8000;
constexpr platform::Milliseconds kProgressPoll{50};

// The rate of the list the stored frequency names (a number of the list or a
// legacy rate name); anything else is unknown.
int listedRate(const std::string& stored) {
    const int rate = engine::normaliseFrequency(stored);
    const bool asNumber = stored == std::to_string(rate);
    const bool asName = stored.rfind("FQ_", 0) == 0 && rate > 0;
    return asNumber || asName ? rate : kUnknownRate;
}

int listedBitrate(const std::string& stored) {
    for (const int rate : engine::kBitRates) {
        if (stored == std::to_string(rate)) return rate;
    }
    return 0;
}

int channelsOf(const std::string& stored) {
    if (stored == "MONO") return 1;
    if (stored == "STEREO") return 2;
    return stored == "2" ? 2 : 1;
}
}  // namespace

void ScanConvert::SetConverterFormat() {
    const engine::FormatGroup group = chosenFormatGroup(parts_.config.record);
    gFormatType_ = group.FormatType;
    format_ = engine::TargetFormat{};
    format_.sampleRate = listedRate(group.Frequency);
    format_.channels = channelsOf(group.Channel);
    // Without a bit rate of the list the encoder's own default stays.
    format_.bitrateKbps = listedBitrate(group.FileBit);
}

std::optional<std::string> ScanConvert::convertToFormatInForce(const std::string& source) {
    bool converted = false;
    std::string target;
    if (gFormatType_ == "DSP") {
        target = TempName + "_DSP.wav";
        converted = ConvertToDSP(source);
    } else if (gFormatType_ == "MP2") {
        target = TempName + ".mp2";
        converted = ConvertToMP2(source);
    } else if (gFormatType_ == "MP3") {
        target = TempName + ".MP3";
        converted = ConvertToMP3(source, target);
    } else if (gFormatType_ == "RAW") {
        target = TempName + ".RAW";
        converted = ConvertToRAW(source);
    } else if (gFormatType_ == "VOX") {
        target = TempName + ".VOX";
        converted = ConvertToVOX(source);
    } else {
        // Everything else passes through an MP3 on its way to a plain wave file,
        // as the converter has always made them.
        const std::string intermediate = TempName + ".MP3";
        target = TempName + ".WAV";
        converted = ConvertToMP3(source, intermediate) && ConvertToPCM(intermediate, target);
        std::error_code error;
        std::filesystem::remove(intermediate, error);
    }
    if (!converted) {
        // A target cut short (a full disk, a cancel) is not a recording.
        std::error_code error;
        std::filesystem::remove(target, error);
        return std::nullopt;
    }
    return target;
}

bool ScanConvert::ConvertToDSP(const std::string& source) {
    engine::TargetFormat format = format_;
    format.word = engine::FormatWord::DSP;
    format.TrueSpeech = true;
    return runConverter("ConvertToDSP", source, TempName + "_DSP.wav", format);
}

bool ScanConvert::ConvertToMP2(const std::string& source) {
    engine::TargetFormat format = format_;
    format.word = engine::FormatWord::MP2;
    return runConverter("ConvertToMP2", source, TempName + ".mp2", format);
}

bool ScanConvert::ConvertToMP3(const std::string& source, const std::string& target) {
    engine::TargetFormat format = format_;
    format.word = engine::FormatWord::MP3;
    return runConverter("ConvertToMP3", source, target, format);
}

bool ScanConvert::ConvertToRAW(const std::string& source) {
    engine::TargetFormat format = format_;
    format.word = engine::FormatWord::RAW;
    format.raw = engine::RawEncoding::Pcm16;
    return runConverter("ConvertToRAW", source, TempName + ".RAW", format);
}

bool ScanConvert::ConvertToVOX(const std::string& source) {
    engine::TargetFormat format = format_;
    format.word = engine::FormatWord::VOX;
    format.channels = 1;
    return runConverter("ConvertToVOX", source, TempName + ".VOX", format);
}

bool ScanConvert::ConvertToPCM(const std::string& source, const std::string& target) {
    engine::TargetFormat format = format_;
    format.word = engine::FormatWord::WAV;
    format.bitsPerSample = 16;
    format.bitrateKbps = 0;
    return runConverter("ConvertToPCM", source, target, format);
}

bool ScanConvert::runConverter(const std::string& routine, const std::string& source,
                               const std::string& target, const engine::TargetFormat& format) {
    LogEvent("Start " + routine);
    converter.setSource(source);
    converter.setTarget(target, format);
    converter.setComment(settings::kProductTitle);
    bool converted = false;
    if (const platform::Result<void> started = converter.start(); !started) {
        LogEvent("Error: " + started.error());
        view.restoreButtonColour = kDoneColour;
        refreshLists();
    } else {
        converted = WaitForConverter(target);
    }
    LogEvent("Stop " + routine);
    return converted;
}

bool ScanConvert::WaitForConverter(const std::string& target) {
    while (converter.busy()) {
        if (UserCanceled) converter.cancel();
        if (view.ProgressConvert != converter.progressPercent()) {
            view.ProgressConvert = converter.progressPercent();
            changed();
        }
        parts_.loop.wait(kProgressPoll);
    }
    converter.waitUntilDone();
    view.ProgressConvert = 0;
    if (UserCanceled) {
        LogEvent("Cancelled: " + platform::withoutFolder(target));
        refreshLists();
        return false;
    }
    if (const std::string error = converter.error(); !error.empty()) {
        LogEvent("Error: " + error);
        view.restoreButtonColour = kDoneColour;
        refreshLists();
        return false;
    }
    if (platform::fileExists(target)) view.finishedFiles.push_back(target);
    view.restoreButtonColour = kDoneColour;
    view.workingSign = true;
    refreshLists();
    return true;
}

}  // namespace ovd::conversion
