#pragma once
// What support's dump of the globals shows of a running station: the work-file
// names, whether each timer of the main window runs, the dictation's flags and
// every setting.

#include "dictation/dictation.h"
#include "settings/debug_trace.h"

namespace ovd::dictation {

settings::GlobalsSnapshot snapshotOf(const dictation::Dictation& dictation,
                                     const settings::SettingsRecord& record);

}  // namespace ovd::dictation
