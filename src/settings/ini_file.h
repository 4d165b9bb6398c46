#pragma once
// clsIniFile: a general INI file object, set to one file and one current section,
// through which the help window reads Help.INI. Every file operation first checks
// that both the file and the section are known; if not it shows the logic-error box
// and does nothing more, so a window that forgot to set them up shows it at once.
//
// UseWinINI points the object at the system-wide "WIN.INI". This system keeps that
// file in a folder given at construction (the station passes its data folder), since
// Linux has no system folder of its own to find it in.

#include <string>
#include <string_view>
#include <vector>

#include "platform/prompts.h"
#include "settings/ini_store.h"

namespace ovd::settings {

inline constexpr const char* kIniLogicErrorText =
    "[Section] and FileName Not Registered in Private.Ini!";
inline constexpr const char* kIniLogicErrorTitle = "IniFile Logic Error";
inline constexpr const char* kMainIniName = "WIN.INI";

// Which part of a file name ExtractName gives.
enum class NamePart { Name = 1, Extension = 2 };

class clsIniFile {
  public:
    clsIniFile(platform::Prompts& prompts, std::string mainIniFolder,
               FileAccess access = FileAccess::Shared);

    // The private file, as set through FullPath, whichever file is in use.
    [[nodiscard]] const std::string& PrivPath() const { return privatePath_; }
    void UseWinINI(bool use) { useWinIni_ = use; }
    [[nodiscard]] bool UseWinINI() const { return useWinIni_; }
    // Setting trims the path; reading gives the file the operations use: WIN.INI
    // while UseWinINI is on, the private file otherwise. The file is always opened
    // by this path as written: names differ by case here, so the capitals of
    // filepath and FileExt are for showing and comparing only.
    void FullPath(std::string_view path);
    [[nodiscard]] std::string FullPath() const;
    // Blanks are trimmed; an empty name leaves no section known.
    void SectionName(std::string_view name);
    [[nodiscard]] const std::string& SectionName() const { return section_; }
    [[nodiscard]] std::string filepath() const { return ExtractPath(FullPath()); }
    [[nodiscard]] std::string FileExt() const {
        return ExtractName(FullPath(), NamePart::Extension);
    }

    // The name part of a path (after its last "/"), without extension or the
    // extension alone, in capitals. Linux paths have no drive letter to skip.
    [[nodiscard]] static std::string ExtractName(std::string_view path, NamePart part);
    // The folder part of a path up to and with its last "/"; the current folder when
    // there is none. In capitals.
    [[nodiscard]] static std::string ExtractPath(std::string_view path);

    void DeleteStrEntry(std::string_view key);
    void DeleteNumEntry(std::string_view key);
    void DeleteSection();
    // The number the value starts with (0 when it starts with none); the default
    // when the key is missing or empty.
    [[nodiscard]] int GetInt(std::string_view key, int defaultValue) const;
    // The keys of the current section.
    [[nodiscard]] std::vector<std::string> GetSectEntries() const;
    // The keys of the current section with their values.
    [[nodiscard]] std::vector<IniEntry> GetSectEntriesEx() const;
    // Every section name, each followed by a NUL: the lines that begin with "[" and
    // end with "]", read as they stand.
    [[nodiscard]] std::string GetSections() const;
    [[nodiscard]] std::vector<std::string> GetSectionsEx() const;
    [[nodiscard]] std::string GetString(std::string_view key, std::string_view defaultValue) const;
    // YES, Y, TRUE, T, ON, 1, -1 are true; NO, N, FALSE, F, OFF, 0 false; any other
    // text, or none, gives the default.
    [[nodiscard]] bool GetTF(std::string_view key, bool defaultValue) const;
    // Every write goes to the file at once, so there is nothing held back to flush.
    void FlushCache() const;
    [[nodiscard]] std::string IniRead(std::string_view section, std::string_view key,
                                      std::string_view defaultValue) const;
    platform::Result<void> IniWrite(std::string_view section, std::string_view key,
                                    std::string_view value);
    void PutInt(std::string_view key, int value);
    void PutString(std::string_view key, std::string_view value);
    void PutTF(std::string_view key, bool value);
    // Whether the section is among GetSections, compared in capitals.
    [[nodiscard]] bool SectExist(std::string_view section) const;

  private:
    // False, after the logic-error box, when the file or the section is not known.
    [[nodiscard]] bool registered() const;
    [[nodiscard]] IniStore store() const { return IniStore(FullPath(), access_); }
    [[nodiscard]] std::vector<std::string> sectionLines() const;

    platform::Prompts& prompts_;
    std::string mainIniPath_;
    FileAccess access_;
    std::string privatePath_;
    std::string section_;
    bool useWinIni_ = false;
};

}  // namespace ovd::settings
