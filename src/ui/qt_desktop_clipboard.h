#pragma once
// The desktop's clipboard for the second editor: audio goes out as a wave file
// under "audio/wav" and comes in under any of the names programs give wave data.

#include "second_editor/desktop_clipboard.h"

namespace ovd::ui {

inline constexpr const char* kWavMimeType = "audio/wav";

class QtDesktopClipboard : public second_editor::DesktopClipboard {
  public:
    [[nodiscard]] std::optional<std::string> wavAudio() const override;
    void setWavAudio(const std::string& wavBytes) override;
};

}  // namespace ovd::ui
