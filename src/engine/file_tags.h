#pragma once
// What a saved letter carries about itself besides its audio: the station's
// comment, and the letter's details (author, priority, reference, the meeting
// and segment of a recorded meeting...). Containers with tags carry them inside
// (ID3v2 for MP3 and MP2, LIST/INFO for 16-bit wave files, ASF for WMA); the
// other formats get a small text file beside them, "<name>.txt", that travels
// with the letter. Reading a letter's details looks in the same two places.

#include <string>
#include <utility>
#include <vector>

#include "engine/audio_format.h"
#include "platform/result.h"

namespace ovd::engine {

// The detail keys a letter may carry, in the order the panel shows them.
inline constexpr const char* kLetterDetailKeys[] = {
    "Y-Author",          "Y-Priority",         "Y-Reference",     "Y-Comments",
    "Y-TaskId",          "SF-Meeting Name",    "SF-Meeting Date", "SF-Meeting Start Time",
    "SF-Segment Number", "SF-Speaker Name(s)", "SF-Notes",        "SF-Segment Start",
    "SF-Segment Starts", "SF-Segment End",     "SF-Duration",
};

struct FileTag {
    std::string key;
    std::string value;
    bool operator==(const FileTag&) const = default;
};
using LetterDetails = std::vector<FileTag>;

struct FileTags {
    FileTags() = default;
    // A bare comment, as most saves (conversions, scratch takes) write.
    FileTags(std::string text) : comment(std::move(text)) {}  // NOLINT: a comment is tags
    FileTags(const char* text) : comment(text) {}             // NOLINT: a comment is tags
    FileTags(std::string text, LetterDetails letterDetails)
        : comment(std::move(text)), details(std::move(letterDetails)) {}

    std::string comment;
    // Only keys of kLetterDetailKeys with a value; others are not written.
    LetterDetails details;
    bool operator==(const FileTags&) const = default;
};

// The details kept: known keys with a non-blank value, in the keys' order.
[[nodiscard]] LetterDetails tidyDetails(const LetterDetails& details);

// The RIFF INFO field a detail is written to in a wave file; empty for another key.
[[nodiscard]] std::string riffInfoId(const std::string& key);

// Whether a file of this format carries the details inside; otherwise they go
// into the text file beside it.
[[nodiscard]] bool formatCarriesDetails(const TargetFormat& target);

// "AB0007.RAW" -> "AB0007.txt", in the same folder.
[[nodiscard]] std::string detailsFilePath(const std::string& letter);
// The text of the file beside a letter, and the details read back from it.
[[nodiscard]] std::string detailsFileText(const LetterDetails& details);
[[nodiscard]] LetterDetails detailsFromText(const std::string& text);
// Writes the details beside the letter; with no details a file of ours that is
// there goes, so that details cleared by the author do not come back.
platform::Result<void> writeDetailsFile(const std::string& letter, const LetterDetails& details);

// Copies the details file beside a letter to beside its copy, where the letter
// has one of the station's; nothing to do otherwise.
platform::Result<void> copyDetailsFile(const std::string& letter, const std::string& copy);

// The same when the letter has been renamed: the details file takes the new name too.
platform::Result<void> moveDetailsFile(const std::string& letter, const std::string& renamed);

// An ID3v2.4 tag holding the comment and details as text frames, for a stream
// (MP2) whose writer puts none at its front.
[[nodiscard]] std::vector<unsigned char> id3v2Tag(const FileTags& tags);

// The details of a saved letter: from its own tags, or from the file beside it
// when the letter has none there. Nothing when it carries none.
[[nodiscard]] LetterDetails readLetterDetails(const std::string& letter);

}  // namespace ovd::engine
