#include "second_editor/file_info.h"

#include <cmath>
#include <cstdio>

#include "platform/files.h"

namespace ovd::second_editor {

std::string lengthText(double seconds) {
    const auto centis = static_cast<long long>(std::llround(std::max(0.0, seconds) * 100));
    char text[32];
    std::snprintf(text, sizeof text, "%lld:%02lld:%02lld.%02lld", centis / 360000,
                  centis / 6000 % 60, centis / 100 % 60, centis % 100);
    return text;
}

InfoLines fileInformation(const engine::WaveEditor& editor, const std::string& fileName) {
    if (!editor.hasDocument()) return {{"File", "No recording is open"}};
    InfoLines lines;
    lines.emplace_back("File", fileName.empty() ? "New recording (not saved)" : fileName);
    const std::string format = editor.FormatName();
    lines.emplace_back("Format", format.empty() ? "PCM" : format);
    lines.emplace_back("Sample rate", std::to_string(editor.SamplesPerSecond()) + " Hz");
    lines.emplace_back("Channels", editor.Channels() == 1   ? "Mono"
                                   : editor.Channels() == 2 ? "Stereo"
                                                            : std::to_string(editor.Channels()));
    const int rate = editor.SamplesPerSecond();
    lines.emplace_back("Length",
                       lengthText(rate > 0 ? static_cast<double>(editor.Length()) / rate : 0));
    lines.emplace_back("Samples", std::to_string(editor.Length()));
    if (!fileName.empty()) {
        const auto size = platform::fileSize(fileName);
        lines.emplace_back("File size", size ? std::to_string(*size) + " bytes" : "not on disk");
    }
    return lines;
}

}  // namespace ovd::second_editor
