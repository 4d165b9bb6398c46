#pragma once
// What the switch model hands on to the work above the transport: the end of
// letter, the delivery of the file in hand, and leaving the program. The switch
// model decides when; these decide how.

#include <string>

namespace ovd::devices {

// The words of one destination's copy: the end of letter has its own, the desk
// unit's one-destination send has others.
struct SendWording {
    std::string keepTrying;     // the question after 10 seconds without the copy
    std::string notSent;        // the box after No
    std::string missingTrace;   // a send action's copy is not in the folder after the wait: traced
    std::string missingNotice;  // and shown in the error pop-up
};

// The folders a closed file is staged in for the companion sender.
enum class Staging { Email, Ftp };

class LetterActions {
  public:
    virtual ~LetterActions() = default;

    // ---- End of letter ----
    // The short sound an end of letter gives when spoken prompts are off.
    virtual void beep() = 0;
    // A new end of letter trigger: lowers the guard against a second run (a run
    // abandoned by a failed save stays blocked until this), runs endOfLetter(),
    // then shows the finished letter's icon in the window.
    virtual void startEndOfLetter() = 0;
    // The end of letter proper: "EOL is Executing", close and save the file,
    // deliver it, then the next file or the exit request. Does nothing while a
    // run is under way.
    virtual void endOfLetter() = 0;
    // The program is to end once the command in hand is done.
    [[nodiscard]] virtual bool exitRequested() const = 0;
    virtual void startTimClose() = 0;
    // Leaves the program as the File menu's Exit does.
    virtual void exitProgram() = 0;

    // ---- Delivery of the file in hand ----
    // Destination 1 to 3 was not tried (switched off, no folder, folder missing):
    // the failure is kept for the next end of letter's report and shown in the
    // error pop-up with the notice.
    virtual void destinationNotTried(int destination, const std::string& notice) = 0;
    // The file at path, already closed, is copied to destination 1 to 3 with the
    // given wording; then the screen returns to ready and, unless the program was
    // started for a file on its command line, a new file begins.
    virtual void sendToDestination(int destination, const std::string& path,
                                   const SendWording& wording) = 0;
    // The file at path, already closed, goes into the staging folder of e-mail or
    // FTP and the companion sender is started.
    virtual void stageForSending(Staging staging, const std::string& path) = 0;
};

}  // namespace ovd::devices
