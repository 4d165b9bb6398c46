#pragma once
// File and folder helpers in the station's terms: paths joined with the separator
// rule the settings files use, whole-file reads and writes, and the folders where
// the station keeps its data and finds its own shipped files.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/result.h"

namespace ovd::platform {

// Writes every byte to the descriptor, going on after interruptions; the failure is
// the system's words for why, for the caller to say what it was writing.
Result<void> writeAll(int fd, const void* data, std::size_t bytes);

// folder + "/" + name, the "/" added only when the folder does not already end in one.
std::string joinPath(const std::string& folder, const std::string& name);
// The file's own name, without its folder.
std::string withoutFolder(const std::string& path);
// The folder part of a path; empty for a bare name.
std::string folderOf(const std::string& path);
// The file's own name without folder or extension: how the peer and the log name a file.
std::string baseNameOf(const std::string& path);

bool fileExists(const std::string& path);
bool folderExists(const std::string& path);
// Creates the folder and its parents; an existing folder is a success.
Result<void> createFolder(const std::string& path);
Result<std::uintmax_t> fileSize(const std::string& path);
// The names of the files in the folder, in order; its subfolders are not listed.
std::vector<std::string> filesInFolder(const std::string& folder);
// Copies the file over any of that name; the failure is the system's words for why.
Result<void> copyFileOver(const std::string& from, const std::string& to);

Result<std::string> readWholeFile(const std::string& path);
// Replaces the file with the text.
Result<void> writeWholeFile(const std::string& path, const std::string& text);
// Same, and the file is created readable and writable by its owner only.
Result<void> writePrivateFile(const std::string& path, const std::string& text);
// Writes the text beside the file and moves it over the file, so that a crash in the
// middle of a write leaves the old file rather than half of a new one. The scratch
// name carries the process id, so the station and its companion never share one.
Result<void> replaceFile(const std::string& path, const std::string& text, bool ownerOnly = false);

// $XDG_DATA_HOME/orvane-voice-desk, else ~/.local/share/orvane-voice-desk.
std::string defaultDataFolder();

// The installed share folder of the programs (prompt sounds, Button.cfg, the
// first DigitalRecorder.cfg), found next to the executable.
std::string programShareFolder();

}  // namespace ovd::platform
