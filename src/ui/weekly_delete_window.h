#pragma once
// frmweeklyDelete on screen: the weekly time of the purge of the recordings
// folder, the age of the files it deletes in this run, and the clock. Every rule
// lives in housekeeping::WeeklyDeleteForm; this window draws it.

#include <QDialog>

#include "housekeeping/housekeeping.h"
#include "housekeeping/weekly_delete_form.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QRadioButton;

namespace ovd::ui {

class WeeklyDeleteWindow : public QDialog {
  public:
    explicit WeeklyDeleteWindow(housekeeping::Housekeeping& house, QWidget* parent = nullptr);
    ~WeeklyDeleteWindow() override;

    [[nodiscard]] housekeeping::WeeklyDeleteForm& form() { return form_; }
    QLineEdit* days() const { return days_; }  // txtDays
    QLabel* clock() const { return clock_; }

  private:
    void stepDays(int by);  // UpDown1

    housekeeping::WeeklyDeleteForm form_;
    QComboBox* day_;
    QComboBox* hour_;
    QComboBox* minute_;
    QRadioButton* morning_;
    QRadioButton* afternoon_;
    QLineEdit* days_;
    QLabel* clock_;
};

}  // namespace ovd::ui
