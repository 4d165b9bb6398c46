#pragma once
// The file-save settings window, frmcfgFileSaves (one long scrolling page) or
// frmcfgFileSavesTab (the same options on tabs): both render one FileSavesForm and
// hand every click to it. The widgets carry the control names they stand for.

#include <QDialog>
#include <functional>
#include <string>
#include <vector>

#include "configuration/file_saves_form.h"

class QTabWidget;
class QTimer;
class QWidget;

namespace ovd::ui {

class FileSavesWindow : public QDialog {
  public:
    // What the window opens besides itself: a format's options for one group
    // (false: Normal Conditions), written back through takeFromFormatDialog().
    using FormatOptions = std::function<void(bool otherConditions, const std::string& format)>;

    FileSavesWindow(configuration::FileSavesForm& form, FormatOptions formatOptions,
                    QWidget* parent);

    // The controls show what the model now holds.
    void refresh();
    // The model's close hook: the window goes.
    void closeFromModel();

  private:
    QWidget* namingGroup();
    QWidget* foldersGroup();
    QWidget* formatsGroup();
    QWidget* deliveryGroup();
    QWidget* recordingGroup();
    QWidget* peerGroup();
    QWidget* buttonsRow();
    // A control's handler, followed by a refresh of every control.
    std::function<void()> then(const std::function<void()>& handler);

    configuration::FileSavesForm& form_;
    FormatOptions formatOptions_;
    std::vector<std::function<void()>> refreshers_;
    QTabWidget* tabs_ = nullptr;
    QTimer* addNameTimer_ = nullptr;  // timCheckSeeIfNameAddIsOn
};

}  // namespace ovd::ui
