#pragma once
// frmSpeakerDictatorList: the speakers who dictate on this station, with their
// status, and the two ticks that put the speaker's name and the date into file
// names. It renders a SpeakerListForm and routes every click to it.

#include <QDialog>

#include "configuration/speaker_list_form.h"

class QCheckBox;
class QLineEdit;
class QTreeWidget;

namespace ovd::ui {

class StationWindow;
struct StationWindowParts;

class SpeakerListWindow : public QDialog {
  public:
    SpeakerListWindow(configuration::SpeakerListForm& model, QWidget* parent);

    // Every control shows what the model now holds.
    void refresh();
    // The model asked the window to close.
    void closeFromModel();

  protected:
    void reject() override;

  private:
    configuration::SpeakerListForm& model_;
    QTreeWidget* list_ = nullptr;         // ListView1
    QLineEdit* newSpeaker_ = nullptr;     // txtNewSpeaker
    QCheckBox* active_ = nullptr;         // chkActive
    QCheckBox* addNameToFile_ = nullptr;  // chkEnableAddToFileName
    QCheckBox* addDateToName_ = nullptr;  // chkYYYYMMDD
    bool closing_ = false;
};

// Opens the window modal over the main window, on Passwords.db of the data folder;
// the main window's speaker box follows every change.
void showSpeakerList(StationWindow& window, StationWindowParts& parts);

}  // namespace ovd::ui
