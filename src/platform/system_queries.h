#pragma once
// What the station asks of the machine: which programs run, how much room is
// left on a disk, how much a folder holds, and whether a file is free (nobody is
// still writing it).

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ovd::platform {

// Names of the running processes, as the kernel keeps them (/proc/<pid>/comm).
std::vector<std::string> processNames();

// True when a process of that name runs; an ending ".exe" and case are ignored.
bool ProcessRunning(const std::string& name);

// Bytes free to an ordinary user on the file system holding the path.
std::optional<std::uint64_t> freeDiskBytes(const std::string& path);

// Bytes of every regular file under the folder and all its subfolders; 0 when
// the folder is missing. Symbolic links are not followed; unreadable entries are skipped.
std::uint64_t folderBytes(const std::string& folder);

// True when the file exists and can be opened for writing with an exclusive lock
// at once: a file our own writers still hold, or another program has locked, is not free.
bool FileAvailable(const std::string& path);

}  // namespace ovd::platform
