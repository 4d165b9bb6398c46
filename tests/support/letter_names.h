#pragma once
// Settings that name letters AB0001, AB0002… in a recordings folder of the
// test's own, as most dictation scenarios want them.

#include <string>

#include "settings/settings_record.h"

namespace ovd::testing {

inline void nameLettersAB(settings::SettingsRecord& r, const std::string& recordings,
                          int nextNumber) {
    r.CaptureFilePath = recordings;
    r.FileLabelActive = true;
    r.FileLabelText = "AB";
    r.SequentialNumbering = true;
    r.FileNameIncrement = nextNumber;
    r.FileNameIncrementStartingNum = nextNumber;
    r.Places = 4;
}

}  // namespace ovd::testing
