#pragma once
// What the dictation asks of a wave editor: one loaded document with its work
// file, a selection view, the device lists, a file format selector and the
// transport and editing operations. The station holds two of them: the file under
// dictation and the scratch take of an insert or overwrite. No sound or codec
// library is visible through this header.
//
// All calls come from the loop's thread. Operations start work and return; the
// end of work is seen by polling State(), which, like Length() and
// CursorPosition(), is a plain read (they are polled 40 times a second).

#include <functional>
#include <future>
#include <string>

#include "engine/audio_format.h"
#include "engine/file_tags.h"
#include "platform/result.h"

namespace ovd::engine {

// State() values.
enum class EditorState : int { Stopped = 0, Playing = 1, Recording = 2, Paused = 5 };

// Play() modes.
inline constexpr int kPlayToEnd = 2;
inline constexpr int kPlayLooped = 3;

// Recording or playback devices, and the source lines of the current device.
class DeviceList {
  public:
    virtual ~DeviceList() = default;

    [[nodiscard]] virtual int Count() const = 0;
    [[nodiscard]] virtual int Current() const = 0;  // -1 when there is none
    virtual platform::Result<void> setCurrent(int index) = 0;
    [[nodiscard]] virtual std::string Name(int index) const = 0;

    // Source lines of the current device.
    [[nodiscard]] virtual int SourceCount() const = 0;
    [[nodiscard]] virtual int SourceCurrent() const = 0;
    virtual platform::Result<void> setSourceCurrent(int index) = 0;
    [[nodiscard]] virtual std::string SourceName(int index) const = 0;
    [[nodiscard]] virtual bool HasVolume(int index) const = 0;
    [[nodiscard]] virtual int Volume(int index) const = 0;  // 0 to 65535
    virtual platform::Result<void> setVolume(int index, int volume) = 0;
    [[nodiscard]] virtual int Balance(int index) const = 0;  // -100 (left) to 100 (right)
    virtual platform::Result<void> setBalance(int index, int balance) = 0;
    [[nodiscard]] virtual bool Mute(int index) const = 0;
    virtual platform::Result<void> setMute(int index, bool mute) = 0;

    // Moves each time the devices listed (or the one in use) change under the
    // station, a microphone plugged in or taken away: whoever shows the list reads
    // it again when this is not what it was. A list that never changes stays at 0.
    [[nodiscard]] virtual unsigned long Changes() const { return 0; }
    // Called on the loop's thread each time Changes() moves, so whoever shows the
    // list need not keep looking. Unset, nobody is told.
    std::function<void()> onChanged;
};

// A long operation (open, save, paste, undo) starting or moving on.
struct BlockOperationEvent {
    enum class Phase { Start, Progress, End };
    Phase phase = Phase::Start;
    std::string name;  // "Saving", "Opening", "Pasting"...
    SampleCount position = 0;
    SampleCount range = 0;  // the operation runs from 0 to range
};

class AudioEditor {
  public:
    virtual ~AudioEditor() = default;

    // Selection view, in samples (frames) of the document.
    [[nodiscard]] virtual SampleCount Length() const = 0;
    [[nodiscard]] virtual SampleCount CursorPosition() const = 0;
    virtual void setCursorPosition(SampleCount position) = 0;
    [[nodiscard]] virtual bool SelectionActive() const = 0;
    virtual void setSelectionActive(bool active) = 0;
    [[nodiscard]] virtual SampleCount SelectionStart() const = 0;
    virtual void setSelectionStart(SampleCount position) = 0;
    [[nodiscard]] virtual SampleCount SelectionEnd() const = 0;
    virtual void setSelectionEnd(SampleCount position) = 0;
    [[nodiscard]] virtual SampleCount ZoomStart() const = 0;
    [[nodiscard]] virtual SampleCount ZoomEnd() const = 0;
    // A value the dictation passes to the view and never reads back.
    virtual void setViewValue(int value) = 0;

    // Wave format of the document.
    [[nodiscard]] virtual int SamplesPerSecond() const = 0;
    [[nodiscard]] virtual int Channels() const = 0;
    // Empty while nothing has been recorded or loaded.
    [[nodiscard]] virtual std::string FormatName() const = 0;
    virtual void setComment(const std::string& comment) = 0;
    // The letter's details, written with the document at its next save; an opened
    // file brings its own, and a new or closed document has none.
    virtual void setDetails(const LetterDetails& details) = 0;
    [[nodiscard]] virtual const LetterDetails& details() const = 0;

    virtual DeviceList& RecordingDevices() = 0;
    virtual DeviceList& PlaybackDevices() = 0;

    // File format selector: SaveAs writes in the format last chosen here.
    virtual void chooseFormat(const TargetFormat& format) = 0;
    [[nodiscard]] virtual const TargetFormat& chosenFormat() const = 0;

    // Folder of the work files; read back after New or Open, the work file itself.
    [[nodiscard]] virtual std::string TempFileName() const = 0;
    virtual void setTempFileName(const std::string& folderOrPath) = 0;

    virtual platform::Result<void> Open(const std::string& path) = 0;
    virtual platform::Result<void> New(int samplesPerSecond, int channels) = 0;
    // Writes the document in the chosen format. The encoding runs off the loop's
    // thread and the file is held locked until it is complete. What became of the
    // save is in the outcome given back, settled before the file is let go: whoever
    // waits for the file to be free reads it without waiting any longer.
    using SaveOutcome = std::shared_future<platform::Result<void>>;
    virtual platform::Result<SaveOutcome> SaveAs(const std::string& path) = 0;
    // A save is still running.
    [[nodiscard]] virtual bool saving() const = 0;
    virtual void Close() = 0;  // harmless with nothing loaded
    // Closes the document and leaves its work file in the folder, for the recovery
    // of a take that could not be saved.
    virtual void CloseKeepingWorkFile() = 0;

    virtual platform::Result<void> Play(int mode = 0) = 0;  // from the cursor
    virtual platform::Result<void> Record() = 0;            // at the cursor, or over the selection
    virtual void Stop() = 0;                                // harmless when stopped
    virtual void Pause() = 0;
    virtual void Continue() = 0;
    [[nodiscard]] virtual int State() const = 0;

    virtual platform::Result<void> Undo() = 0;
    virtual platform::Result<void> Redo() = 0;
    virtual platform::Result<void> Copy() = 0;
    virtual platform::Result<void> Cut() = 0;
    // Replaces the selection, or inserts at the cursor when there is none.
    virtual platform::Result<void> Paste() = 0;
    virtual platform::Result<void> PasteFile(const std::string& path) = 0;
    // The whole document resampled and remixed to a new rate and channel count,
    // as a fresh document: what was undoable before is gone. Only when stopped.
    virtual platform::Result<void> ConvertSampleType(int samplesPerSecond, int channels) = 0;

    // Events.
    std::function<void(const BlockOperationEvent&)> onBlockOperation;
    std::function<void()> onViewChange;
    std::function<void(int peakPercent)> onLevel;
    // Something the engine met on its own that the event log must show, such as a
    // take the disk would no longer take: told once per take, with the reason.
    std::function<void(const std::string& text)> onTrouble;
};

}  // namespace ovd::engine
