#pragma once
// The one clipboard of the station's two wave editors: audio cut or copied in the
// dictation can be pasted into the scratch take and back.

#include "engine/audio_document.h"

namespace ovd::engine {

struct Clipboard {
    PcmFormat format;
    PieceList pieces;
    [[nodiscard]] bool empty() const { return pieces.empty(); }
};

}  // namespace ovd::engine
