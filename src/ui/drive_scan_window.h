#pragma once
// frmDriveScanScheduler on screen: the folder the drive scan at start cleans, its
// number of days beside the calendar of the cut-off day, and the weekly time.
// Every rule lives in housekeeping::DriveScanForm; this window draws it.

#include <QDialog>

#include "housekeeping/drive_scan_form.h"
#include "housekeeping/housekeeping.h"

class QCalendarWidget;
class QComboBox;
class QLabel;
class QLineEdit;
class QRadioButton;

namespace ovd::ui {

class DriveScanWindow : public QDialog {
  public:
    DriveScanWindow(housekeeping::Housekeeping& house, platform::Prompts& prompts,
                    QWidget* parent = nullptr);

    [[nodiscard]] housekeeping::DriveScanForm& form() { return form_; }
    QLineEdit* days() const { return days_; }                // Text2
    QCalendarWidget* calendar() const { return calendar_; }  // MonthView1
    QLabel* folder() const { return folder_; }
    void render();

  private:
    housekeeping::DriveScanForm form_;
    QLabel* folder_;
    QLabel* damage_;
    QComboBox* day_;
    QComboBox* hour_;
    QComboBox* minute_;
    QRadioButton* morning_;
    QRadioButton* afternoon_;
    QLineEdit* days_;
    QCalendarWidget* calendar_;
};

// Opens the window modally, unless the transcriber records are open.
void showDriveScanWindow(housekeeping::Housekeeping& house, platform::Prompts& prompts,
                         QWidget* parent);

}  // namespace ovd::ui
