#pragma once
// The desktop's own clipboard, as the second editor trades audio with other
// programs through it: a WAV file's bytes in, a WAV file's bytes out. The window
// gives the real one; tests give their own.

#include <optional>
#include <string>

namespace ovd::second_editor {

class DesktopClipboard {
  public:
    virtual ~DesktopClipboard() = default;
    // The audio the clipboard holds as a WAV file's bytes; nothing when it holds no audio.
    [[nodiscard]] virtual std::optional<std::string> wavAudio() const = 0;
    virtual void setWavAudio(const std::string& wavBytes) = 0;
};

}  // namespace ovd::second_editor
