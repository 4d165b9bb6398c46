#pragma once
// The second editor's screen as data: what each control of the window shows.
// Times are in seconds of the document.

#include <string>
#include <vector>

namespace ovd::second_editor {

// One of the two device panels: the devices, the lines of the one chosen, and
// the volume and balance of the line chosen.
struct DevicePanel {
    std::vector<std::string> devices;  // cmbDevInput / cmbDevOutput
    int device = -1;
    std::vector<std::string> lines;  // cmbSrcInput / cmbSrcOutput
    int line = -1;
    int volume = 0;        // sldrVolumeInp: 0 to 65535
    int balance = 0;       // sldrVolBalanceInp: -100 to 100
    bool selected = true;  // chSelectInput: the line records (plays) rather than being muted
    bool operator==(const DevicePanel&) const = default;
};

struct SecondEditorView {
    std::string caption;  // "Insert Recording", then the file's name
    std::string fileName;
    bool documentOpen = false;
    bool changed = false;       // edited since it was opened or saved
    int state = 0;              // the editor's State(): 0 stopped, 1 playing, 2 recording, 5 paused
    double currentSeconds = 0;  // totCurPos
    double totalSeconds = 0;    // lblItot
    bool chSelect = true;       // effects work on the selection, not on the whole file
    bool selectionActive = false;
    double selectionStart = 0;  // txtSelStart
    double selectionEnd = 0;    // txtSelEnd
    double zoomStart = 0;       // txtZHstart
    double zoomEnd = 0;         // txtZHend
    int verticalZoom = 100;     // txtZV, in percent
    bool busy = false;          // an effect or a save runs
    int progress = 0;           // Progress, 0 to 100
    std::string status;         // StatusBar1
    // Moves each time the document's audio changes (an edit, an effect, another
    // file): a picture of it must be drawn again.
    unsigned long revision = 0;
    DevicePanel input;
    DevicePanel output;
    bool operator==(const SecondEditorView&) const = default;
};

}  // namespace ovd::second_editor
