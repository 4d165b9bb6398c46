#pragma once
// What the file-save settings window says, to the letter: the station's users and
// support know these texts, slips included ("didgets", "too", "Canceled" beside
// "Cancelled").

namespace ovd::configuration {

inline constexpr const char* kFileSavesTitle = "File Save Configuration";
inline constexpr const char* kSaveAndExitCaption = "Update/Save Configuration and EXIT";
inline constexpr const char* kScrollDownCaption = "Scroll Down For More Options";

inline constexpr const char* kAddNameIsOnNotice =
    "NOTE: Add Speaker/Dictator Name to File is turned on.  To see more options on naming file "
    "please turn off Add Speaker/Dictator Name to File. ";

inline constexpr const char* kChooseDestinationTitle = "Choose Destination to Send File too.";
inline constexpr const char* kDestinationCanceled = "User Canceled";
inline constexpr const char* kRecordingsFolderCancelled = "User Cancelled";

inline constexpr const char* kEmailMenuAvailable =
    "The drop down menu option to Configure Email is now available!";
inline constexpr const char* kFtpMenuAvailable =
    "The drop down menu option to Configure FTP is now available!";

inline constexpr const char* kAutoRewindWarning =
    "WARNING: This options will automatically Insert or Overwrite your audio file \n"
    "when you rewind to a position after the beginning and before the end \n"
    "and the user selects RECORD!!!";
inline constexpr const char* kSaveAtStopWarning =
    "WARNING: Checking this box may result in sluggish response \n"
    "for long recordings where user stops often.!!!";

inline constexpr const char* kNoPlacesMessage =
    "You have not entered how many places you would like this number to be. ";
inline constexpr const char* kTooManyDigitsFront =
    "You have indicated that the maximum length for this field is ";
inline constexpr const char* kTooManyDigitsBack =
    " but you have entered more didgets than are available.  Number will be reset to 1.";
inline constexpr const char* kOverFivePositions =
    "Sequential Number is Greater than 5 Positions:  Sequential Number will be set to 1";
inline constexpr const char* kJumpBackRange = "Please enter a number between 1 - 99 ";
inline constexpr const char* kEnterANumber = "Please Enter a number.";
inline constexpr const char* kAreYouSure = "Are you sure?";

inline constexpr const char* kNoReceiverQuestion =
    "But you have not entered in any email address\n"
    "Email will not function until this step has been completed!  \n"
    "Would you like to do so now? ";

inline constexpr const char* kRecordingSavedNow =
    "NOTE --- You have made changes to your configuration. \n"
    "Your current recording in progress will be saved now, using your previous settings \n"
    "--will be followed by opening up the next file number in an unrecorded state";

inline constexpr const char* kFillStartingNumber =
    "Please fill in the Sequential Number to start with.\n"
    "You have indicated Sequential Numbering should be used but you have not selected a "
    "starting point.";
inline constexpr const char* kFillPlaces =
    "Please fill in the number of places the sequential number should be\n"
    "You have indicated Sequential Numbering should be used but you have not selected how many "
    "places should be used.";

// Our own, where a folder or the settings file gives trouble the window has to tell.
inline constexpr const char* kFolderCantBeMade = "This folder can't be created: ";
inline constexpr const char* kFolderCantBeWritten =
    "The station can't write in this folder, so no recording could be kept there: ";
inline constexpr const char* kSettingsChangedOnDisk =
    "DigitalRecorder.cfg was changed by another program while this window was open. The "
    "settings shown here are saved now and replace those changes.";

}  // namespace ovd::configuration
