#pragma once
// frmEventLog: the day's event log on screen, following the log as it grows, at
// a fixed size. chkViewlOG on the main window shows and hides it.

#include <QWidget>
#include <functional>

class QPlainTextEdit;
class QTimer;

namespace ovd::settings {
class EventLog;
}

namespace ovd::ui {

class EventLogWindow : public QWidget {
  public:
    explicit EventLogWindow(const settings::EventLog& eventLog, QWidget* parent = nullptr);

    // Takes up what the log gained since the last look.
    void refresh();
    [[nodiscard]] QPlainTextEdit* logText() const { return logText_; }  // Text1

    // The window was closed from its own menu or frame: chkViewlOG unticks.
    std::function<void()> onClosed;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    // The last lines in sight, from the start of each.
    void showNewestLines();

    const settings::EventLog& eventLog_;
    QPlainTextEdit* logText_ = nullptr;
    QTimer* follow_ = nullptr;
    std::size_t shownBytes_ = 0;
};

}  // namespace ovd::ui
