#pragma once
// One sound server, two windows that record and play: the main window's editors
// (the letter and the scratch take of an insert) and the second editor. The
// backend holds one capture at a time and a new one replaces the old, so
// whichever started last would silently take the microphone from the other, and
// a stop from the other would end its take. The letter's take always wins: the
// second editor is refused the microphone and the speakers while the letter
// records, it is stopped before a take of the letter begins, and a stop from an
// editor that does not hold the microphone touches nothing.

#include <functional>
#include <memory>

#include "engine/audio_backend.h"

namespace ovd::station {

class SharedSoundDevice {
  public:
    explicit SharedSoundDevice(engine::AudioBackend& sound);
    ~SharedSoundDevice();
    SharedSoundDevice(const SharedSoundDevice&) = delete;
    SharedSoundDevice& operator=(const SharedSoundDevice&) = delete;

    // What the letter's two editors record and play through.
    engine::AudioBackend& mainWindow();
    // What the second editor records and play through.
    engine::AudioBackend& secondEditor();

    // A take of the letter is about to begin: the second editor stops playing
    // and recording. Unset, nothing is stopped.
    std::function<void()> stopSecondEditor;

    // Who holds the microphone now.
    enum class Holder { Nobody, MainWindow, SecondEditor };
    [[nodiscard]] Holder captureHolder() const { return holder_; }

  private:
    class User;
    friend class User;

    engine::AudioBackend& sound_;
    Holder holder_ = Holder::Nobody;
    std::unique_ptr<User> main_;
    std::unique_ptr<User> second_;
};

}  // namespace ovd::station
