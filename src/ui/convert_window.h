#pragma once
// frmConvert ("Convert Sample Type"): the rate and channels the current
// recording is converted to, opened on the file's own. Modal; the main window
// and the second editor open it alike, each with its own conversion.

#include <QDialog>
#include <functional>

#include "configuration/format_dialogs.h"

namespace ovd::ui {

class ConvertWindow : public QDialog {
  public:
    ConvertWindow(configuration::ConvertDialog& model, QWidget* parent);

  private:
    configuration::ConvertDialog& model_;
};

// Opens the window over parent on a file of samplesPerSecond and channels; OK
// hands the choice to convert. True when it was converted.
bool askConvertSampleType(int samplesPerSecond, int channels,
                          const configuration::ConvertDialog::Convert& convert, QWidget* parent);

}  // namespace ovd::ui
