#pragma once
// The recovery window on screen: the four folders with their files, the list of
// operations, the progress of the conversion under way, and its buttons. It draws
// what the recovery logic writes and hands every click to it.

#include <QDialog>

namespace ovd::conversion {
class ScanConvert;
}  // namespace ovd::conversion

class QLabel;
class QListWidget;
class QProgressBar;
class QPushButton;
class QTreeWidget;

namespace ovd::ui {

class ScanConvertWindow : public QDialog {
  public:
    ScanConvertWindow(conversion::ScanConvert& scan, QWidget* parent = nullptr);
    ~ScanConvertWindow() override;
    ScanConvertWindow(const ScanConvertWindow&) = delete;
    ScanConvertWindow& operator=(const ScanConvertWindow&) = delete;

    // Draws the view as it stands.
    void render();

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    QWidget* folderBox(const QString& title, QLabel*& label, QListWidget*& list);

    conversion::ScanConvert& scan_;
    QLabel* tempLabel_ = nullptr;
    QLabel* backLabel_ = nullptr;
    QLabel* recordingsLabel_ = nullptr;
    QLabel* saveLabel_ = nullptr;
    QListWidget* tempList_ = nullptr;
    QListWidget* backList_ = nullptr;
    QListWidget* recordingsList_ = nullptr;
    QListWidget* saveList_ = nullptr;
    QLabel* working_ = nullptr;    // Image1
    QLabel* recovered_ = nullptr;  // Label5
    QLabel* current_ = nullptr;    // Label6
    QProgressBar* progress_ = nullptr;
    QTreeWidget* operations_ = nullptr;
    QPushButton* restore_ = nullptr;
    QPushButton* cancel_ = nullptr;
    QPushButton* convert_ = nullptr;
    unsigned long shownRevision_ = 0;
};

}  // namespace ovd::ui
