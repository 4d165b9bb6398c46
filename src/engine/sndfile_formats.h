#pragma once
// How the sound-file library is told each of our formats, shared by the whole
// encoding and the file that grows a stretch at a time, so both write the same
// file. Nothing of the library shows here.

#include "engine/audio_format.h"

namespace ovd::engine {

// The library's format code for a target it writes; 0 when it is not one of its own.
int sndfileFormatOf(const TargetFormat& target);
// Whether a file of this format carries the comment in its header.
bool sndfileCarriesComment(FormatWord word);

}  // namespace ovd::engine
