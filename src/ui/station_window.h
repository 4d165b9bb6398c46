#pragma once
// The station's first window: its title, the day's event log as it grows, and
// the way out. The dictation controls take their places here as they are built.

#include <QMainWindow>

#include <string>

class QPlainTextEdit;
class QTimer;
class QVBoxLayout;

namespace ovd::settings {
class ConfigFile;
class EventLog;
}  // namespace ovd::settings

namespace ovd::ui {

class StationWindow : public QMainWindow {
public:
    StationWindow(settings::ConfigFile& config, settings::EventLog& eventLog);

    // The title the station runs under, by edition.
    static QString titleFor(bool handsFreeEdition);

    // The desk unit on screen goes above the log; the window owns it from then on.
    void addDeskUnit(QWidget* panel);

protected:
    void moveEvent(QMoveEvent* event) override;

private:
    void placeWindow();
    void refreshLog();

    settings::ConfigFile& config_;
    settings::EventLog& eventLog_;
    QPlainTextEdit* logView_ = nullptr;
    QVBoxLayout* column_ = nullptr;
    QTimer* refresh_ = nullptr;
    std::size_t shownBytes_ = 0;
    bool placed_ = false;
};

}  // namespace ovd::ui
