#pragma once
// The main window as data: every caption, label, lamp and button state the
// dictation writes, named after the control that shows it. The window renders
// this; tests read it. The core never touches a widget.

#include <string>
#include <vector>

#include "dictation/transport_rules.h"

namespace ovd::dictation {

struct MainView {
    // The window's caption: the title, " - " and the state text.
    std::string caption;
    std::string Label40;   // the status line ("File Is Ready to be Recorded"...)
    std::string lblReady;  // the file label: the file's name without folder
    std::string lblMode;
    std::string Lbl4Pos;   // the desk unit's switch position
    std::string lblOnAir = "STAND BY";
    bool lblOnAirVisible = false;
    bool Label40Warning = false;  // the disk-full warning shows in red
    std::string Label43;  // the file's size
    std::string Label24;  // "Time Remaining"
    std::string Label37;   // name of a long operation
    std::string MyPicture;  // the title's icon, from the program's folder; empty: the usual one
    std::string statusPanel1;  // the full file name
    std::string statusPanel2;  // the file's size

    TransportBar MMControl1;
    bool cmdEOL = false;
    bool Command1 = false;
    bool Command2 = false;
    bool cmdOVR = false;
    bool Command3 = true;
    bool Image5 = false;  // lamps
    bool Image6 = false;

    int ctSlide1 = 0;  // 0 to 100
    bool ctSlide1Enabled = true;
    // "Time Elapsed": the hours, minutes and seconds captions.
    std::string timeElapsed = "00:00:00";
    bool formatOptionsEnabled = true;  // Option2 and Option3 are locked during a take
    bool frameSpeakerEnabled = true;
    bool audioFrameEnabled = true;
    bool audioFrameVisible = true;
    bool lblBusyVisible = false;
    bool transportLabelsVisible = false;  // "Play", "Stop"... under the bar
    bool ButtonEx1Visible = false;  // ends an insert
    bool ButtonEx2Visible = false;  // ends an append
    bool mnuScanConvertEnabled = true;
    // The files of File > Reopen, newest first; none shows the one entry "None", greyed.
    std::vector<std::string> Reopen;
    bool busyPointer = false;
    std::string txtStepAmt;
    std::string cboName;  // the speaker shown

    // Counts every announced change, so the window redraws only when something moved.
    unsigned long revision = 0;

    bool operator==(const MainView&) const = default;
};

}  // namespace ovd::dictation
