#pragma once
// The second editor ("Insert Recording"): a whole editor beside the letter, on an
// editor of its own that shares the letter's clipboard, where a passage is made
// ready (recorded, opened, cut, mixed, put through an effect) before it is
// pasted into the letter. Every menu entry and tool bar key of its window is a
// command here; the window only shows SecondEditorView and calls them.
//
// The letter comes first: while a take of the letter is under way the second
// editor neither plays nor records, and the device lists it shares with the
// letter are not changed under the take.

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "engine/clipboard.h"
#include "engine/effects.h"
#include "engine/wave_editor.h"
#include "platform/event_loop.h"
#include "platform/prompts.h"
#include "platform/timer.h"
#include "second_editor/desktop_clipboard.h"
#include "second_editor/markers.h"
#include "second_editor/second_editor_view.h"

namespace ovd::second_editor {

inline constexpr const char* kWindowTitle = "Insert Recording";
inline constexpr const char* kBackToLetterCaption = "Work With First File";  // Command5
inline constexpr const char* kLetterRecordingText =
    "The letter is being recorded: play and record here once its take has ended.";
inline constexpr const char* kNoAudioOnClipboardText = "The clipboard holds no audio.";
inline constexpr const char* kNothingToWorkOnText = "There is no audio to work on.";

struct SecondEditorParts {
    platform::EventLoop& loop;
    platform::Prompts& prompts;
    engine::WaveEditor& editor;
    std::shared_ptr<engine::Clipboard> clipboard;  // the letter's and this editor's
    // True while a take of the letter records or an insert or overwrite runs.
    std::function<bool()> letterTakeUnderWay;
    // Where the file dialogs start: the recordings folder.
    std::function<std::string()> recordingsFolder;
    // The rate and channels of a new document: the letter's.
    std::function<engine::PcmFormat()> newDocumentFormat;
    // How a file named ".ogg" is written: the Ogg Vorbis options as they stand.
    std::function<engine::TargetFormat()> oggFormat;
};

class SecondEditor {
  public:
    enum class Key {
        New,
        Open,
        Save,
        Delete,
        Copy,
        Cut,
        Paste,
        Undo,
        Redo,
        Zoomin,
        Zoomout,
        Forward,
        Stop,
        PlayToEnd,
        PlayLooped,
        Pause,
        Properties
    };
    // The tool bar's key names, as the window's buttons carry them.
    static std::optional<Key> keyNamed(const std::string& name);

    explicit SecondEditor(SecondEditorParts parts);
    ~SecondEditor();
    SecondEditor(const SecondEditor&) = delete;
    SecondEditor& operator=(const SecondEditor&) = delete;

    [[nodiscard]] const SecondEditorView& view() const { return view_; }
    [[nodiscard]] engine::WaveEditor& editor() { return parts_.editor; }
    [[nodiscard]] Markers& markers() { return markers_; }

    // ---- Tool bar and menus ----
    void toolbarButton(Key key);  // Toolbar1_ButtonClick
    void newDocument();           // mnuNew
    void open();                  // mnuOpen: asks for the file
    bool openFile(const std::string& path);
    void save();           // mnuSave
    void saveAs();         // mnuSaveAs
    void saveSelection();  // mnuSaveSelect
    bool saveTo(const std::string& path);
    bool saveSelectionTo(const std::string& path);
    void cut();
    void copy();
    void paste();
    void deleteSelection();  // Delete: the clipboard keeps what it held
    void undo();
    void redo();
    // mnuConvert: the whole document to another rate and channel count.
    void convertSampleType(int samplesPerSecond, int channels);
    void pasteFile();  // mnuPasteFile: asks for the file
    bool pasteFileFrom(const std::string& path);
    void mixClipboard();  // mnuMix
    void mixFile();       // mnuMixFile: asks for the file
    bool mixFileFrom(const std::string& path);
    void copyToDesktop(DesktopClipboard& desktop);     // mnuCopyWinClipboard
    void pasteFromDesktop(DesktopClipboard& desktop);  // mnuPasteWinClipboard
    // An effect of the Operation or Filters menu, on the selection when chSelect is
    // on and something is selected, else on the whole file. False when refused.
    bool applyEffect(engine::Effect effect);

    // ---- Transport ----
    void record();
    void play(int mode = 0);  // Forward, PlayToEnd, PlayLooped
    void pause();             // pauses, or goes on after a pause
    void stop();
    // A take of the letter is about to start: this editor stops what it plays or records.
    void stopForLetter();

    // ---- Selection and zoom fields ----
    void setChSelect(bool on);
    void setSelectionStart(double seconds);  // txtSelStart, udSelStart
    void setSelectionEnd(double seconds);    // txtSelEnd, udSelEnd
    void setCursorSeconds(double seconds);
    void setZoom(double startSeconds, double endSeconds);  // txtZHstart, txtZHend
    void zoomIn();
    void zoomOut();
    void setVerticalZoom(int percent);  // txtZV, udZV

    // ---- Device panels ----
    enum class Direction { Input, Output };
    void chooseDevice(Direction direction, int index);    // cmbDevInput, cmbDevOutput
    void chooseLine(Direction direction, int index);      // cmbSrcInput, cmbSrcOutput
    void setVolume(Direction direction, int volume);      // sldrVolumeInp, sldrVolumeOut
    void setBalance(Direction direction, int balance);    // sldrVolBalanceInp, sldrVolBalanceOut
    void selectLine(Direction direction, bool selected);  // chSelectInput, chSelectOutput

    // Command5 "Work With First File": this editor stops, keeps its document, and
    // the letter's window takes over.
    void backToLetter();
    // The window closes (mnuExit): unsaved changes are asked about first. False
    // when the author would rather stay.
    bool close();

    // Reads the editor again into the view.
    void refresh();

    std::function<void()> onViewChanged;
    std::function<void()> onBackToLetter;
    std::function<void()> onProperties;  // the "Properties" key: the file's information

  private:
    platform::Result<void> ensureDocument(const engine::PcmFormat& format);
    bool refusedForLetter();
    bool refusedWhileBusy();
    // The format a Save As writes for a chosen name (".wav" added to a name without a
    // known extension), at the document's rate and channels but for Ogg Vorbis.
    [[nodiscard]] engine::TargetFormat targetFor(std::string& path) const;
    // Unsaved changes: saved, dropped, or kept with the window open (false).
    bool settleChanges();
    std::optional<std::string> askForAudioFile(const std::string& title);
    void edited(const platform::Result<void>& result, const std::string& what);
    void tell(const std::string& text);
    void showStatus(const std::string& text);
    void watchPendingSave();
    // The position is read on a timer only while something moves or a save or an
    // effect runs: an idle window costs nothing.
    void watchWhileBusy();
    void blockOperation(const engine::BlockOperationEvent& event);
    [[nodiscard]] double seconds(engine::SampleCount samples) const;
    [[nodiscard]] engine::SampleCount samples(double seconds) const;
    [[nodiscard]] engine::DeviceList& devices(Direction direction);
    void readDevices(Direction direction, DevicePanel& panel);

    SecondEditorParts parts_;
    SecondEditorView view_;
    Markers markers_;
    platform::Timer timCurPos;
    std::string fileName_;
    unsigned long revision_ = 0;
    bool changed_ = false;
    bool effectRunning_ = false;
    bool zoomWhole_ = true;
    engine::SampleCount zoomStart_ = 0;
    engine::SampleCount zoomEnd_ = 0;
    std::string status_;
    int progress_ = 0;
    bool blockRunning_ = false;
    // A save running on the engine's thread, looked at on each position tick.
    struct PendingSave {
        engine::AudioEditor::SaveOutcome outcome;
        std::string path;
        bool selectionOnly = false;  // the document itself stays unsaved
    };
    std::optional<PendingSave> pendingSave_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace ovd::second_editor
