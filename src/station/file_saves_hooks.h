#pragma once
// What the file-save settings ask of the dictation in hand, the same from the
// window and from anything else that changes them: whether a take records, whether
// the letter holds changes not yet saved, and, when the settings change under a
// take, the take stopped, the letter closed and saved, and the next one opened.

#include "configuration/file_saves_form.h"
#include "dictation/dictation.h"

namespace ovd::station {

// The hooks of the dictation; the window adds its own (setup windows, volumes, close).
configuration::FileSavesHooks fileSavesHooksFor(dictation::Dictation& dictation);

}  // namespace ovd::station
