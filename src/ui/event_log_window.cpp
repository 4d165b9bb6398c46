#include "ui/event_log_window.h"

#include <QCloseEvent>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>

#include "settings/event_log.h"
#include "ui/typewriter_font.h"

namespace ovd::ui {

namespace {
constexpr int kFollowMs = 500;  // as often as the log reaches its file
}

EventLogWindow::EventLogWindow(const settings::EventLog& eventLog, QWidget* parent)
    : QWidget(parent, Qt::Window), eventLog_(eventLog) {
    setObjectName("frmEventLog");
    setWindowTitle(tr("Event Log"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    auto* menus = new QMenuBar(this);
    QMenu* file = menus->addMenu(tr("&File"));
    QAction* exit = file->addAction(tr("E&xit"), this, [this] { close(); });
    exit->setObjectName("id_Exit");
    column->setMenuBar(menus);
    logText_ = new QPlainTextEdit(this);
    logText_->setObjectName("Text1");
    logText_->setReadOnly(true);
    logText_->setLineWrapMode(QPlainTextEdit::NoWrap);
    logText_->setFont(typewriterFont());
    column->addWidget(logText_);
    setFixedSize(720, 420);

    follow_ = new QTimer(this);
    connect(follow_, &QTimer::timeout, this, [this] { refresh(); });
}

void EventLogWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    refresh();
    // Once the window has its size the bars have their final ranges.
    QTimer::singleShot(0, this, [this] { showNewestLines(); });
    follow_->start(kFollowMs);
}

void EventLogWindow::closeEvent(QCloseEvent* event) {
    follow_->stop();
    QWidget::closeEvent(event);
    if (onClosed) onClosed();
}

void EventLogWindow::refresh() {
    const std::string& text = eventLog_.text();
    if (text.size() == shownBytes_) return;
    if (text.size() < shownBytes_) {
        logText_->clear();
        shownBytes_ = 0;
    }
    // Only what is new is added, so a long day's log costs nothing to follow.
    QString added = QString::fromLocal8Bit(text.data() + shownBytes_,
                                           static_cast<qsizetype>(text.size() - shownBytes_));
    added.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (added.endsWith('\n')) added.chop(1);
    logText_->appendPlainText(added);
    shownBytes_ = text.size();
    // The caret goes to the start of the newest line: the view shows the last
    // lines from their beginning, not scrolled along to where the longest ends.
    logText_->moveCursor(QTextCursor::End);
    logText_->moveCursor(QTextCursor::StartOfBlock);
    showNewestLines();
}

void EventLogWindow::showNewestLines() {
    logText_->horizontalScrollBar()->setValue(0);
    logText_->verticalScrollBar()->setValue(logText_->verticalScrollBar()->maximum());
}

}  // namespace ovd::ui
