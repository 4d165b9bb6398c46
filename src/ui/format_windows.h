#pragma once
// The option windows of the recording formats: frmMP3 (the MP3 encoder), frmVOX
// and frmRAW (the layouts of VOX and headerless files), and frmOgg (the Ogg
// Vorbis encoder of the editor's Save As). Modal; each keeps its
// choice in the data folder and, opened for a format group of the file-save
// settings, writes the choice back into that group's boxes.

#include <QDialog>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "configuration/format_dialogs.h"
#include "configuration/ogg_options.h"
#include "engine/audio_format.h"

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

// frmOgg: the rate and channels, and a quality or a nominal bit rate (with its
// bounds when the rate may vary); the quality and the bit rate sliders are never
// on together.
class OggOptionsWindow : public QDialog {
  public:
    OggOptionsWindow(configuration::OggOptionsDialog& model, QWidget* parent);

  private:
    void refresh();

    configuration::OggOptionsDialog& model_;
    std::vector<std::function<void()>> refreshers_;
};

// Opens frmOgg modally over parent on the options kept in dataFolder: the Ogg
// Vorbis format to save in when the user leaves it with OK (the choice is kept
// for the next time), nothing on Cancel.
std::optional<engine::TargetFormat> askOggOptions(const std::string& dataFolder, QWidget* parent);

}  // namespace ovd::ui
