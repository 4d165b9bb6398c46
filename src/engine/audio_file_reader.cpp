// Opening a recording whatever it was saved as. Files with a header say what
// they are; RAW and VOX files don't, and are read with the layout the station
// was told to use for them.

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <optional>
#include <string_view>

#include "engine/codec_backends.h"

namespace ovd::engine {

namespace {

std::string lowerExtension(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    if (!extension.empty()) extension.erase(0, 1);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

std::optional<FormatWord> headerlessKind(const std::string& extension) {
    if (extension == "vox") return FormatWord::VOX;
    if (extension == "raw") return FormatWord::RAW;
    return std::nullopt;
}

bool isHeaderless(FormatWord word) { return word == FormatWord::RAW || word == FormatWord::VOX; }

// Names under which a file always carries a header, whatever format is chosen
// for saving: such a file is never taken for headerless samples.
bool hasHeaderedExtension(const std::string& extension) {
    constexpr std::array<std::string_view, 12> kHeadered = {
        "wav", "mp3", "mp2", "wma", "asf", "ogg", "flac", "aif", "aiff", "au", "m4a", "tmp"};
    return std::find(kHeadered.begin(), kHeadered.end(), extension) != kHeadered.end();
}

// Both libraries begin their reasons with the same "can't read <path>: ".
std::string joinReasons(const std::string& first, const std::string& second,
                        const std::string& path) {
    const std::string prefix = "can't read " + path + ": ";
    const std::string tail = second.rfind(prefix, 0) == 0 ? second.substr(prefix.size()) : second;
    return first + "; " + tail;
}

}  // namespace

platform::Result<std::unique_ptr<AudioFileReader>> AudioFileReader::open(const std::string& path,
                                                                         const TargetFormat* hint) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec))
        return platform::failure("can't read " + path + ": no such file");
    const std::string extension = lowerExtension(path);
    if (const auto kind = headerlessKind(extension)) {
        if (!hint) {
            return platform::failure("can't read " + path + ": a " + formatWordText(*kind) +
                                     " file needs its rate and channels");
        }
        return openHeaderless(path, *kind, *hint);
    }
    auto sndfile = openWithSndfile(path);
    if (sndfile) {
        // The sound-file library counts the pad byte after an odd-sized GSM data
        // chunk as one more block, 40 ms that were never said: the codec library
        // reads those files to the sample.
        if ((*sndfile)->formatName() == formatWordText(FormatWord::DSP)) {
            if (auto exact = openWithFfmpeg(path)) return exact;
        }
        return sndfile;
    }
    if (hint && isHeaderless(hint->word) && !hasHeaderedExtension(extension)) {
        return openHeaderless(path, hint->word, *hint);
    }
    auto ffmpeg = openWithFfmpeg(path);
    if (ffmpeg) return ffmpeg;
    return platform::failure(joinReasons(sndfile.error(), ffmpeg.error(), path));
}

std::int64_t fileLengthMilliseconds(const std::string& path, const TargetFormat* hint) {
    const auto opened = AudioFileReader::open(path, hint);
    if (!opened || (*opened)->format().sampleRate <= 0) return -1;
    return (*opened)->frames() * 1000 / (*opened)->format().sampleRate;
}

}  // namespace ovd::engine
