#pragma once
// The option windows of the recording formats: frmMP3 (the MP3 encoder), frmVOX
// and frmRAW (the layouts of VOX and headerless files). Modal; each keeps its
// choice in the data folder and, opened for a format group of the file-save
// settings, writes the choice back into that group's boxes.

#include <QDialog>
#include <functional>
#include <string>
#include <vector>

#include "configuration/format_dialogs.h"

class QLineEdit;

namespace ovd::ui {

class Mp3OptionsWindow : public QDialog {
  public:
    Mp3OptionsWindow(configuration::Mp3OptionsDialog& model, QWidget* parent);

  private:
    QWidget* generalPage();
    QWidget* vbrPage();
    QWidget* advancedPage();
    void refresh();

    configuration::Mp3OptionsDialog& model_;
    std::vector<std::function<void()>> refreshers_;
};

// frmVOX and frmRAW in one shape: a frequency among ten, and for RAW the
// companding and the channels.
class LayoutWindow : public QDialog {
  public:
    enum class Kind { Vox, Raw };
    // writeBack gets the frequency chosen (and for RAW the channel count) when it
    // applies; unset when the window was not opened for a format group.
    LayoutWindow(Kind kind, std::string dataFolder,
                 std::function<void(int frequency, int channels)> writeBack, QWidget* parent);

  private:
    void apply();

    Kind kind_;
    std::string dataFolder_;
    std::function<void(int, int)> writeBack_;
    configuration::RawLayout layout_;
};

}  // namespace ovd::ui
