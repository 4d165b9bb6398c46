#pragma once
// frmSecFile, "Insert Recording": the second editor's window. It shows the
// SecondEditor's view and routes every menu entry, tool bar key and field to
// its commands: the file and edit menus, the Operation and Filters menus of the
// effects, the waveform or the spectral view, the selection and zoom fields,
// the record and play buttons, the two device panels, and "Work With First File"
// back to the letter. Widgets carry their control names (objectName).

#include <QMainWindow>
#include <functional>
#include <map>
#include <memory>
#include <string>

class QAction;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QGroupBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QSlider;
class QSpinBox;
class QStackedWidget;

namespace ovd::second_editor {
class SecondEditor;
struct DevicePanel;
}  // namespace ovd::second_editor

namespace ovd::ui {

class QtDesktopClipboard;
class SpectralView;
class WaveformView;

class SecondEditorWindow : public QMainWindow {
  public:
    explicit SecondEditorWindow(second_editor::SecondEditor& editor, QWidget* parent = nullptr);
    ~SecondEditorWindow() override;
    SecondEditorWindow(const SecondEditorWindow&) = delete;
    SecondEditorWindow& operator=(const SecondEditorWindow&) = delete;

    // Shows the view as it now stands; a control is touched only when it changed.
    void render();
    // A menu entry or tool bar key by its control name ("mnuAmplify1", "Cut"); null if none.
    [[nodiscard]] QAction* action(const std::string& name) const;
    [[nodiscard]] bool spectralShown() const;
    [[nodiscard]] WaveformView& waveform() { return *waveform_; }
    [[nodiscard]] SpectralView& spectral() { return *spectral_; }

    // The Convert entry opens the conversion window; greyed while unset.
    std::function<void()> onConvert;
    // The save dialog's Ogg Vorbis options; greyed while unset.
    std::function<void()> onOggOptions;
    // Command5 "Work With First File": the letter's window comes to the front.
    std::function<void()> onBackToLetter;

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    void buildMenus();
    void buildToolbar();
    QWidget* buildFields();
    QGroupBox* buildDevicePanel(bool input);
    QAction* add(QMenu* menu, const std::string& name, const QString& text,
                 const std::function<void()>& routine);
    void showSpectral(bool spectral);
    void renderDevices(QGroupBox* box, const second_editor::DevicePanel& panel);

    second_editor::SecondEditor& editor_;
    std::unique_ptr<QtDesktopClipboard> desktop_;
    std::map<std::string, QAction*> actions_;
    unsigned long shownRevision_ = ~0UL;
    bool rendering_ = false;

    QStackedWidget* views_ = nullptr;
    WaveformView* waveform_ = nullptr;
    SpectralView* spectral_ = nullptr;
    QLabel* currentSeconds_ = nullptr;          // totCurPos
    QLabel* totalSeconds_ = nullptr;            // lblItot
    QDoubleSpinBox* selectionStart_ = nullptr;  // txtSelStart, udSelStart
    QDoubleSpinBox* selectionEnd_ = nullptr;    // txtSelEnd, udSelEnd
    QCheckBox* selectionOnly_ = nullptr;        // chSelect
    QDoubleSpinBox* zoomStart_ = nullptr;       // txtZHstart, udZHstart
    QDoubleSpinBox* zoomEnd_ = nullptr;         // txtZHend, udZHend
    QSpinBox* verticalZoom_ = nullptr;          // txtZV, udZV
    QPushButton* recordButton_ = nullptr;
    QPushButton* backButton_ = nullptr;  // Command5
    QGroupBox* inputPanel_ = nullptr;
    QGroupBox* outputPanel_ = nullptr;
    QProgressBar* progress_ = nullptr;  // Progress
    QLabel* status_ = nullptr;          // StatusBar1
};

class StationWindow;

// The main window's Insert Recording entry opens the second editor's window
// (made the first time, owned by the main window from then on); "Work With
// First File" brings the main window back to the front. The Ogg Vorbis options are
// kept in the data folder.
void attachSecondEditorWindow(StationWindow& station, second_editor::SecondEditor& editor,
                              const std::string& dataFolder);

}  // namespace ovd::ui
