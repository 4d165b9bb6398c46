#pragma once
// The two cleans of a recordings folder: the drive scan, which walks a folder tree
// and deletes what is dated on or before a day, and the weekly purge, which
// deletes from one folder what is older than twice the age set. Both leave alone
// what the station has in hand (see kept_files.h), note every file they delete in
// the event log, and go on past a file they can't delete, noting why.

#include <functional>
#include <string>

#include "housekeeping/calendar_day.h"
#include "housekeeping/kept_files.h"

namespace ovd::housekeeping {

// Where the cleans note what they did: a line of the event log.
using LogLine = std::function<void(const std::string&)>;

struct CleanSummary {
    int deleted = 0;
    int kept = 0;    // the station's own files, left whatever their date
    int inUse = 0;   // held by a program, left until the next clean
    int failed = 0;  // could not be deleted; the reason is in the log
};

// The drive scan: folder and every folder below it; a file whose date (local, by
// its time of last change) is not after `lastDayToDelete` goes.
CleanSummary ScanAndDelete(const std::string& folder, Day lastDayToDelete, const KeptFiles& kept,
                           const LogLine& log);

// The weekly purge of the recordings folder: its own files only, never the folders
// below it. With PurgeDays 0 nothing goes. A file dated before today less twice
// PurgeDays goes; one of that very day stays.
CleanSummary PurgescandirFilesInPath(const std::string& CaptureFilePath, int PurgeDays, Day today,
                                     const KeptFiles& kept, const LogLine& log);

}  // namespace ovd::housekeeping
