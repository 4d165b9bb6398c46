#pragma once
// The INI text form every settings file of the station but DigitalRecorder.cfg
// uses: "[Section]" lines, then "key=value" lines. Section and key names are found
// without regard to case, a write keeps every other line where and as it was (blank
// lines, comments, lines we can't read), a new key goes at the end of its section and
// a new section at the end of the file, and a write of nothing removes the key.
// Files are written with CR LF and read with CR LF or LF.
//
// Nothing is cached: every read goes to the file again, so what one window saves
// the next reader sees at once.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/result.h"

namespace ovd::settings {

struct IniEntry {
    std::string key;
    std::string value;
    bool operator==(const IniEntry&) const = default;
};

// The lines of one INI text, with the reading and editing rules above. A name or
// value handed in is taken up to its first NUL, CR or LF: one entry is one line.
class IniDocument {
  public:
    IniDocument() = default;
    static IniDocument parse(std::string_view text);
    // Every line ended by CR LF.
    [[nodiscard]] std::string serialise() const;

    [[nodiscard]] const std::vector<std::string>& lines() const { return lines_; }
    [[nodiscard]] bool hasSection(std::string_view section) const;
    // The value with the blanks around it trimmed; nothing when the key is not there.
    [[nodiscard]] std::optional<std::string> value(std::string_view section,
                                                   std::string_view key) const;
    // Section names in file order, as the section lines spell them.
    [[nodiscard]] std::vector<std::string> sectionNames() const;
    // The "key=value" lines of a section; blank lines, comments and lines without
    // "=" are not entries.
    [[nodiscard]] std::vector<IniEntry> sectionEntries(std::string_view section) const;

    // Each returns whether the text changed.
    bool setValue(std::string_view section, std::string_view key, std::string_view value);
    bool removeKey(std::string_view section, std::string_view key);
    bool removeSection(std::string_view section);

  private:
    struct Span {
        std::size_t header;  // index of the "[name]" line
        std::size_t end;     // one past the section's last line
    };
    [[nodiscard]] std::optional<Span> findSection(std::string_view section) const;
    [[nodiscard]] std::optional<std::size_t> findKey(const Span& span, std::string_view key) const;

    std::vector<std::string> lines_;
};

// Files holding passwords or keys are created readable by their owner only.
enum class FileAccess { Shared, OwnerOnly };

// One INI file on disk, read and written with the rules of IniDocument.
class IniStore {
  public:
    // What ReadKey gives back at most: the station has always read settings into a
    // buffer of 100 characters, so longer values come back cut, on purpose.
    static constexpr std::size_t kReadKeyLimit = 99;

    explicit IniStore(std::string path, FileAccess access = FileAccess::Shared);

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] bool exists() const;

    // The value, cut at its first NUL and at 99 characters; a missing file, section
    // or key reads as the empty text.
    [[nodiscard]] std::string ReadKey(std::string_view section, std::string_view key) const;
    // The whole value, or nothing when the key is not there.
    [[nodiscard]] std::optional<std::string> readValue(std::string_view section,
                                                       std::string_view key) const;
    // Writes "key=value" (an empty text writes "key="); nothing removes the key. A
    // missing file is created. Callers that have nothing to tell the user about a
    // failed write say so with (void).
    platform::Result<void> WriteKey(std::string_view section, std::string_view key,
                                    std::optional<std::string_view> value) const;
    platform::Result<void> deleteSection(std::string_view section) const;

    [[nodiscard]] IniDocument load() const;
    [[nodiscard]] std::vector<std::string> sectionNames() const;
    [[nodiscard]] std::vector<IniEntry> sectionEntries(std::string_view section) const;

  private:
    platform::Result<void> save(const IniDocument& document) const;

    std::string path_;
    FileAccess access_;
};

// The lines of a text file without their CR LF or LF endings; none when it can't be
// read. For the readers that walk a settings file line by line.
std::vector<std::string> readTextLines(const std::string& path);

// The text after the first "=" of a line; the whole line when it has none.
std::string textAfterFirstEquals(std::string_view line);

}  // namespace ovd::settings
