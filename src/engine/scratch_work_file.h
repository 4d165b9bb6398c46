#pragma once
// A work file for audio made by the editor itself (an effect's result, audio
// taken from the desktop's clipboard): gone from its folder as soon as it is
// made, so a crash leaves nothing the start-up would take for a lost take, and
// kept alive by the pieces that refer to it.

#include <memory>
#include <string>

#include "engine/work_file.h"

namespace ovd::engine {

platform::Result<std::shared_ptr<WorkFile>> scratchWorkFile(const std::string& folder,
                                                            const PcmFormat& format);

}  // namespace ovd::engine
