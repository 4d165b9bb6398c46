#pragma once
// The station's wave editor: a document of 16-bit frames in a work file, edited
// as a list of pieces, recorded and played through an audio backend, saved in any
// recording format on a thread of its own.
//
// Saving the same take to the same file again, as the dictation does every few
// seconds while it records, adds only what is new when the take only grew since:
// while the take is being recorded the file stays open with its encoder between
// saves. Such a file is whole but for what the encoder still holds (up to half
// a second of the end), which goes in at the first save made once the take has
// stopped, when the document is closed or saved elsewhere, or at
// finishSavedFile(). A save made while nothing records leaves a complete file.
//
// A document that still holds exactly what its file holds (opened to listen, or
// saved and not changed since) is not written again: its file stays as it is,
// byte for byte. A save of a new file or a whole save writes beside the target
// (the target's name and ".partial") and moves it over the target when it is
// complete, so a crash leaves the old file or the new one, never a part.

#include <sys/types.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "engine/audio_backend.h"
#include "engine/audio_document.h"
#include "engine/audio_editor.h"
#include "engine/clipboard.h"
#include "engine/effects.h"
#include "engine/stream_encoder.h"
#include "platform/event_loop.h"
#include "platform/locked_file.h"
#include "platform/timer.h"

namespace ovd::engine {

class ConvertingSource;

class WaveEditor : public AudioEditor {
  public:
    WaveEditor(platform::EventLoop& loop, AudioBackend& backend,
               std::shared_ptr<Clipboard> clipboard, std::string name);
    ~WaveEditor() override;

    [[nodiscard]] SampleCount Length() const override { return document_.length(); }
    [[nodiscard]] SampleCount CursorPosition() const override { return cursor_; }
    void setCursorPosition(SampleCount position) override;
    [[nodiscard]] bool SelectionActive() const override { return selectionActive_; }
    void setSelectionActive(bool active) override;
    [[nodiscard]] SampleCount SelectionStart() const override { return selectionStart_; }
    void setSelectionStart(SampleCount position) override;
    [[nodiscard]] SampleCount SelectionEnd() const override { return selectionEnd_; }
    void setSelectionEnd(SampleCount position) override;
    [[nodiscard]] SampleCount ZoomStart() const override { return 0; }
    [[nodiscard]] SampleCount ZoomEnd() const override { return document_.length(); }
    void setViewValue(int value) override { viewValue_ = value; }

    [[nodiscard]] int SamplesPerSecond() const override { return document_.format().sampleRate; }
    [[nodiscard]] int Channels() const override { return document_.format().channels; }
    [[nodiscard]] std::string FormatName() const override { return formatName_; }
    void setComment(const std::string& comment) override { comment_ = comment; }
    void setDetails(const LetterDetails& details) override { details_ = tidyDetails(details); }
    [[nodiscard]] const LetterDetails& details() const override { return details_; }

    DeviceList& RecordingDevices() override { return backend_.recordingDevices(); }
    DeviceList& PlaybackDevices() override { return backend_.playbackDevices(); }

    void chooseFormat(const TargetFormat& format) override { chosen_ = format; }
    [[nodiscard]] const TargetFormat& chosenFormat() const override { return chosen_; }

    [[nodiscard]] std::string TempFileName() const override;
    void setTempFileName(const std::string& folderOrPath) override;

    platform::Result<void> Open(const std::string& path) override;
    platform::Result<void> New(int samplesPerSecond, int channels) override;
    platform::Result<SaveOutcome> SaveAs(const std::string& path) override;
    void Close() override;
    void CloseKeepingWorkFile() override { dropDocument(false); }

    platform::Result<void> Play(int mode = 0) override;
    platform::Result<void> Record() override;
    void Stop() override;
    void Pause() override;
    void Continue() override;
    [[nodiscard]] int State() const override { return static_cast<int>(state_); }

    platform::Result<void> Undo() override;
    platform::Result<void> Redo() override;
    platform::Result<void> Copy() override;
    platform::Result<void> Cut() override;
    platform::Result<void> Paste() override;
    platform::Result<void> PasteFile(const std::string& path) override;

    // Brings the whole document to another rate and channel count (the "convert
    // sample type" choice). The document gets a new work file; undo starts afresh.
    platform::Result<void> ConvertSampleType(int samplesPerSecond, int channels) override;

    [[nodiscard]] bool saving() const override { return saving_.load(); }
    // Waits for a running save to end (the station's exit).
    void finishSaving();
    // Waits for a running save, then completes the file the saves have been
    // adding to with what its encoder still held; the next save encodes the whole
    // document again.
    void finishSavedFile();
    [[nodiscard]] bool hasDocument() const { return workFile_ != nullptr; }

    // Runs the effect over [from, to) of the document off the loop's thread; its
    // progress goes out through onBlockOperation under the effect's menu text, and
    // `done` is called on the loop's thread. The document changes only when the
    // effect succeeded, as one undo step; a failure leaves it as it was. Refused at
    // once (and `done` never called) with no document, an empty stretch, or while
    // recording, playing, saving or another effect runs. Insert Silence puts its
    // silence in at `from` and needs no stretch.
    platform::Result<void> ApplyEffect(Effect effect, SampleCount from, SampleCount to,
                                       std::function<void(platform::Result<void>)> done);
    [[nodiscard]] bool effectRunning() const { return effect_ != nullptr; }
    // Mixes a file (any rate and channel count, converted) in at the cursor, as one
    // undo step; what runs past the end of the document lengthens it.
    platform::Result<void> MixFile(const std::string& path);
    // Mixes the clipboard's audio in at the cursor, as MixFile does.
    platform::Result<void> MixClipboard();
    // Saves the selection in the chosen format, as SaveAs saves the document.
    platform::Result<SaveOutcome> SaveSelectionAs(const std::string& path);
    // The clipboard's audio as the bytes of a wave file ("" when it is empty), for
    // the desktop's clipboard.
    [[nodiscard]] std::string ClipboardAsWav() const;
    // Takes a wave file's bytes from the desktop's clipboard; bytes that are not
    // such audio are refused with the reason, and the clipboard stays as it was.
    platform::Result<void> setClipboardFromWav(const std::string& wavBytes);
    // Magnitudes in dB below full scale of the frames [from, to), `columns` vectors
    // of `bins` values from 0 Hz up to half the rate, for the spectral view.
    [[nodiscard]] std::vector<std::vector<float>> Spectrum(SampleCount from, SampleCount to,
                                                           int columns, int bins) const;
    // The document's frames from a position on, for the waveform view and checks.
    std::size_t readFrames(SampleCount position, std::int16_t* out, std::size_t frameCount) const {
        return document_.read(position, out, frameCount);
    }

  private:
    struct Snapshot {
        PieceList pieces;
        SampleCount cursor = 0;
    };
    // Which file on disk holds exactly which document: the one opened, or the
    // one last saved. Told apart by its inode, size and time of change.
    struct FileOnDisk {
        std::string path;
        PieceList pieces;
        dev_t device = 0;
        ino_t inode = 0;
        off_t size = 0;
        std::int64_t changedNs = 0;
        LetterDetails details;
    };
    // The file the last save wrote, still open so the next save can add to it.
    struct SaveSession {
        std::string path;
        TargetFormat target;
        FileTags tags;
        PcmFormat format;
        PieceList saved;  // the document as the file holds it
        std::unique_ptr<StreamEncoder> encoder;
    };
    // One save, as the save thread carries it out.
    struct SaveJob {
        std::string path;
        TargetFormat target;
        FileTags tags;
        PcmFormat format;
        PieceList pieces;                // the whole document
        std::optional<PieceList> added;  // set when the job adds these to the session's file
        platform::LockedFile lock;       // not held for a file that does not exist yet
        bool keepGrowing = false;  // the take goes on: keep the encoder open for the next save
    };
    using SaveProgress = std::function<void(SampleCount done)>;
    platform::Result<void> startDocument(const PcmFormat& format);
    void dropDocument(bool removeWorkFile);
    platform::Result<void> appendFile(const std::string& path, const char* operation,
                                      PieceList& added);
    // Copies audio into the work file, converted to the document's rate and channels.
    platform::Result<void> appendSource(PcmSource& source, const char* operation, PieceList& added);
    // The source itself when it is in the document's rate and channels, else a
    // conversion of it kept alive by `holder`.
    platform::Result<PcmSource*> inDocumentFormat(PcmSource& source,
                                                  std::unique_ptr<ConvertingSource>& holder) const;
    // An existing file at path, locked so whoever waits for it to be free waits for
    // the save about to start; nothing held when there is no file yet.
    static platform::Result<platform::LockedFile> lockExistingFile(const std::string& path);
    void rememberForUndo();
    void restore(const Snapshot& snapshot);
    void insertPieces(SampleCount at, const PieceList& pieces);
    void viewChanged();
    // The file at path, if it is still the one the document was opened from or saved to last.
    [[nodiscard]] bool documentIsOnDisk(const std::string& path) const;
    // What the save thread found on disk after its last save, taken over by the loop's thread.
    void takeOverSavedFile();
    static void rememberFileOnDisk(const std::string& path, const PieceList& pieces,
                                   const LetterDetails& details, std::optional<FileOnDisk>& into);
    void reportTrouble(const std::string& text);
    void emitBlock(BlockOperationEvent::Phase phase, const std::string& operation,
                   SampleCount position, SampleCount range);
    platform::Result<void> saveWhole(const SaveJob& job, const SaveProgress& progress);
    platform::Result<void> addToSavedFile(const SaveJob& job, const SaveProgress& progress);
    void syncTick();
    void feedTick();
    void onCaptured(const std::int16_t* frames, std::size_t frameCount);
    void stopPlaying();
    void stopRecording();
    [[nodiscard]] SampleCount clampToDocument(SampleCount position) const;
    // Mixes the source (converted to the document's rate and channels) in at the cursor.
    platform::Result<void> mixSource(PcmSource& source, const char* operation);
    // Where audio the editor makes itself is kept while it is used.
    [[nodiscard]] std::string scratchFolder() const;

    platform::EventLoop& loop_;
    AudioBackend& backend_;
    std::shared_ptr<Clipboard> clipboard_;
    std::string name_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);

    std::string tempFolder_;
    std::shared_ptr<WorkFile> workFile_;
    AudioDocument document_;
    std::string formatName_;
    std::string comment_;
    LetterDetails details_;
    TargetFormat chosen_;
    int viewValue_ = 0;

    SampleCount cursor_ = 0;
    bool selectionActive_ = false;
    SampleCount selectionStart_ = 0;
    SampleCount selectionEnd_ = 0;

    std::vector<Snapshot> undo_;
    std::vector<Snapshot> redo_;

    EditorState state_ = EditorState::Stopped;
    platform::Timer syncTimer_;
    platform::Timer feedTimer_;
    SampleCount syncedFrames_ = 0;

    // Recording.
    std::size_t recordingPiece_ = 0;
    // Playing.
    std::unique_ptr<PlaybackStream> stream_;
    int playMode_ = 0;
    SampleCount playFrom_ = 0;
    SampleCount playTo_ = 0;
    SampleCount fed_ = 0;           // frames handed to the stream since the play began
    SampleCount feedPosition_ = 0;  // document position of the next frame to hand over

    // Saving.
    std::thread saveThread_;
    std::atomic<bool> saving_{false};
    // Written by the save's thread before it lets go of the file.
    mutable std::mutex savedFileMutex_;
    unsigned workFilesMade_ = 0;
    // Touched by the save thread while it runs, by the loop's thread once it is joined.
    std::unique_ptr<SaveSession> session_;
    std::optional<FileOnDisk> onDisk_;     // the loop's thread's
    std::optional<FileOnDisk> justSaved_;  // under savedFileMutex_
    bool troubleTold_ = false;             // this take's trouble is in the log

    // The running effect; last, so it is stopped before anything it reports to goes.
    std::unique_ptr<EffectWork> effect_;
};

}  // namespace ovd::engine
