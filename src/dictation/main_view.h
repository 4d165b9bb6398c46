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
    std::string statusLine;  // Label40: "File Is Ready to be Recorded"...
    std::string lblReady;    // the file label: the file's name without folder
    std::string lblMode;
    std::string switchPosition;  // Lbl4Pos: the desk unit's switch
    std::string lblOnAir = "STAND BY";
    bool lblOnAirVisible = false;
    bool statusLineWarning = false;  // the disk-full warning shows in red
    std::string fileSizeText;        // Label43
    std::string timeRemaining;       // Label24: "Time Remaining"
    std::string operationName;       // Label37: the long operation under way
    std::string titlePicture;  // MyPicture: the title's icon, from the program's folder; empty: the
                               // usual one
    std::string statusPanel1;  // the full file name
    std::string statusPanel2;  // the file's size

    TransportBar transportBar;            // MMControl1
    bool endOfLetterEnabled = false;      // cmdEOL
    bool addToBeginningEnabled = false;   // Command1
    bool insertEnabled = false;           // Command2
    bool overwriteEnabled = false;        // cmdOVR
    bool lastThreeSecondsEnabled = true;  // Command3
    bool onAirLamp1 = false;              // Image5
    bool onAirLamp2 = false;              // Image6

    int positionPercent = 0;  // ctSlide1: 0 to 100
    bool positionSliderEnabled = true;
    // "Time Elapsed": the hours, minutes and seconds captions.
    std::string timeElapsed = "00:00:00";
    bool formatOptionsEnabled = true;  // Option2 and Option3 are locked during a take
    bool frameSpeakerEnabled = true;
    bool audioFrameEnabled = true;
    bool audioFrameVisible = true;
    bool lblBusyVisible = false;
    bool transportLabelsVisible = false;  // "Play", "Stop"... under the bar
    bool endInsertVisible = false;        // ButtonEx1: ends an insert
    bool endAppendVisible = false;        // ButtonEx2: ends an append
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
