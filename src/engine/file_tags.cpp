#include "engine/file_tags.h"

#include <cerrno>
#include <cstdio>
#include <memory>

#include "engine/wave_header.h"
#include "platform/files.h"
#include "platform/text.h"

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
}

namespace ovd::engine {

namespace {

// The heading that marks a text file beside a letter as the station's own.
constexpr const char* kDetailsHeading = "[Letter details]";

struct RiffField {
    const char* key;
    const char* id;
    // How the codec library names the field when it reads it back, where it renames it.
    const char* readAs;
};

// The author is the wave file's artist, so players show who dictated; the rest
// have no standard field and take IDs of their own.
constexpr RiffField kRiffFields[] = {
    {"Y-Author", "IART", "artist"},         {"Y-Priority", "IYPR", nullptr},
    {"Y-Reference", "IYRF", nullptr},       {"Y-Comments", "IYCM", nullptr},
    {"Y-TaskId", "IYTK", nullptr},          {"SF-Meeting Name", "ISMN", nullptr},
    {"SF-Meeting Date", "ISMD", nullptr},   {"SF-Meeting Start Time", "ISMS", nullptr},
    {"SF-Segment Number", "ISSN", nullptr}, {"SF-Speaker Name(s)", "ISSP", nullptr},
    {"SF-Notes", "ISNO", nullptr},          {"SF-Segment Start", "ISS1", nullptr},
    {"SF-Segment Starts", "ISSS", nullptr}, {"SF-Segment End", "ISSE", nullptr},
    {"SF-Duration", "ISDU", nullptr},
};

const char* knownKey(const std::string& name) {
    for (const char* key : kLetterDetailKeys) {
        if (platform::equalsIgnoreCase(key, name)) return key;
    }
    for (const RiffField& field : kRiffFields) {
        if (platform::equalsIgnoreCase(field.id, name) ||
            (field.readAs != nullptr && platform::equalsIgnoreCase(field.readAs, name)))
            return field.key;
    }
    return nullptr;
}

// Line breaks of a value (notes of several lines) are kept as "\n" on one line.
std::string escaped(const std::string& value) {
    std::string out;
    for (const char c : value) {
        if (c == '\\') {
            out += "\\\\";
        } else if (c == '\n') {
            out += "\\n";
        } else if (c != '\r') {
            out += c;
        }
    }
    return out;
}

std::string unescaped(const std::string& value) {
    std::string out;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '\\' && i + 1 < value.size()) {
            out += value[i + 1] == 'n' ? '\n' : value[i + 1];
            ++i;
        } else {
            out += value[i];
        }
    }
    return out;
}

void putSyncSafe(std::vector<unsigned char>& out, std::size_t at, std::size_t value) {
    for (int i = 0; i < 4; ++i) {
        out[at + static_cast<std::size_t>(i)] =
            static_cast<unsigned char>((value >> (7 * (3 - i))) & 0x7F);
    }
}

void addId3Frame(std::vector<unsigned char>& out, const char* id, const std::string& body) {
    const std::size_t at = out.size();
    out.insert(out.end(), id, id + 4);
    out.resize(out.size() + 6, 0);  // size, then two bytes of flags
    putSyncSafe(out, at + 4, body.size());
    out.insert(out.end(), body.begin(), body.end());
}

struct InputCloser {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};

LetterDetails detailsFromContainer(const std::string& letter) {
    AVFormatContext* opened = nullptr;
    if (avformat_open_input(&opened, letter.c_str(), nullptr, nullptr) < 0) return {};
    const std::unique_ptr<AVFormatContext, InputCloser> input(opened);
    LetterDetails found;
    const AVDictionaryEntry* entry = nullptr;
    while ((entry = av_dict_get(input->metadata, "", entry, AV_DICT_IGNORE_SUFFIX)) != nullptr) {
        if (const char* key = knownKey(entry->key)) found.push_back({key, entry->value});
    }
    return tidyDetails(found);
}

}  // namespace

LetterDetails tidyDetails(const LetterDetails& details) {
    LetterDetails tidy;
    for (const char* key : kLetterDetailKeys) {
        for (const FileTag& tag : details) {
            if (tag.key != key || platform::trim(tag.value).empty()) continue;
            tidy.push_back({key, tag.value});
            break;
        }
    }
    return tidy;
}

std::string riffInfoId(const std::string& key) {
    for (const RiffField& field : kRiffFields) {
        if (key == field.key) return field.id;
    }
    return {};
}

bool formatCarriesDetails(const TargetFormat& target) {
    return waveWrittenByUs(target) || target.word == FormatWord::MP3 ||
           target.word == FormatWord::MP2 || target.word == FormatWord::WMA;
}

std::string detailsFilePath(const std::string& letter) {
    const std::size_t slash = letter.find_last_of('/');
    const std::size_t dot = letter.find_last_of('.');
    const bool hasExtension =
        dot != std::string::npos && (slash == std::string::npos || dot > slash);
    return (hasExtension ? letter.substr(0, dot) : letter) + ".txt";
}

std::string detailsFileText(const LetterDetails& details) {
    std::string text = std::string(kDetailsHeading) + "\r\n";
    for (const FileTag& tag : tidyDetails(details)) {
        text += tag.key + "=" + escaped(tag.value) + "\r\n";
    }
    return text;
}

LetterDetails detailsFromText(const std::string& text) {
    const std::vector<std::string> lines = platform::splitLines(text);
    if (lines.empty() || platform::trim(lines.front()) != kDetailsHeading) return {};
    LetterDetails found;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::size_t equals = lines[i].find('=');
        if (equals == std::string::npos) continue;
        if (const char* key = knownKey(platform::trim(lines[i].substr(0, equals)))) {
            found.push_back({key, unescaped(lines[i].substr(equals + 1))});
        }
    }
    return tidyDetails(found);
}

platform::Result<void> writeDetailsFile(const std::string& letter, const LetterDetails& details) {
    const std::string path = detailsFilePath(letter);
    if (tidyDetails(details).empty()) {
        // Only a file the station wrote goes: a text of the author's own under the
        // same name stays as it is.
        const auto existing = platform::readWholeFile(path);
        if (existing && platform::splitLines(*existing).size() > 0 &&
            platform::trim(platform::splitLines(*existing).front()) == kDetailsHeading) {
            std::remove(path.c_str());
        }
        return platform::Result<void>::success();
    }
    return platform::replaceFile(path, detailsFileText(details));
}

platform::Result<void> copyDetailsFile(const std::string& letter, const std::string& copy) {
    const auto text = platform::readWholeFile(detailsFilePath(letter));
    if (!text || detailsFromText(*text).empty()) return platform::Result<void>::success();
    return platform::copyFileOver(detailsFilePath(letter), detailsFilePath(copy));
}

platform::Result<void> moveDetailsFile(const std::string& letter, const std::string& renamed) {
    const auto text = platform::readWholeFile(detailsFilePath(letter));
    if (!text || detailsFromText(*text).empty()) return platform::Result<void>::success();
    if (std::rename(detailsFilePath(letter).c_str(), detailsFilePath(renamed).c_str()) != 0)
        return platform::systemFailure("can't rename " + detailsFilePath(letter), errno);
    return platform::Result<void>::success();
}

std::vector<unsigned char> id3v2Tag(const FileTags& tags) {
    std::vector<unsigned char> out = {'I', 'D', '3', 4, 0, 0, 0, 0, 0, 0};
    constexpr char kUtf8 = 3;
    if (!tags.comment.empty()) {
        addId3Frame(out, "COMM", std::string(1, kUtf8) + "eng" + '\0' + tags.comment);
    }
    for (const FileTag& tag : tidyDetails(tags.details)) {
        addId3Frame(out, "TXXX", std::string(1, kUtf8) + tag.key + '\0' + tag.value);
    }
    if (out.size() == 10) return {};
    putSyncSafe(out, 6, out.size() - 10);
    return out;
}

LetterDetails readLetterDetails(const std::string& letter) {
    LetterDetails inside = detailsFromContainer(letter);
    if (!inside.empty()) return inside;
    const auto text = platform::readWholeFile(detailsFilePath(letter));
    return text ? detailsFromText(*text) : LetterDetails{};
}

}  // namespace ovd::engine
