#pragma once
// The support trace window: the time-stamped lines of the debug trace, shown when
// support switches the trace on, and the dump of the globals on request.

#include <QWidget>
#include <functional>

#include "settings/debug_trace.h"

class QPlainTextEdit;

namespace ovd::ui {

class DebugWindow : public QWidget {
  public:
    DebugWindow(settings::DebugTrace& trace, std::function<settings::GlobalsSnapshot()> snapshot,
                QWidget* parent = nullptr);
    ~DebugWindow() override;
    DebugWindow(const DebugWindow&) = delete;
    DebugWindow& operator=(const DebugWindow&) = delete;

    // Shows the trace's lines as they stand.
    void refresh();
    void DumpGlobals();
    // Shows the window; one that was closed opens over the station's window.
    void showOverStation();

  private:
    settings::DebugTrace& trace_;
    std::function<settings::GlobalsSnapshot()> snapshot_;
    QPlainTextEdit* traceText_ = nullptr;  // txtDebug
};

}  // namespace ovd::ui
