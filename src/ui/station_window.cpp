#include "ui/station_window.h"

#include <QApplication>
#include <QMenuBar>
#include <QMoveEvent>
#include <QPlainTextEdit>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>

#include "settings/config_file.h"
#include "settings/event_log.h"

namespace ovd::ui {

namespace {
constexpr int kRefreshMs = 500;
}

QString StationWindow::titleFor(bool handsFreeEdition) {
    return handsFreeEdition ? QStringLiteral("Orvane Voice Desk")
                            : QStringLiteral("Orvane Station Recorder Desk");
}

StationWindow::StationWindow(settings::ConfigFile& config, settings::EventLog& eventLog)
    : config_(config), eventLog_(eventLog) {
    setWindowTitle(titleFor(config_.record.HandsFreeEdition));
    if (config_.record.Ontopcheck.toNumber().value_or(0) == 1) {
        setWindowFlag(Qt::WindowStaysOnTopHint, true);
    }

    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("E&xit"), QKeySequence::Quit, qApp, &QCoreApplication::quit);

    logView_ = new QPlainTextEdit(this);
    logView_->setReadOnly(true);
    logView_->setObjectName("eventLogView");
    logView_->setPlaceholderText(tr("Today's event log"));
    auto* central = new QWidget(this);
    column_ = new QVBoxLayout(central);
    column_->addWidget(logView_);
    setCentralWidget(central);
    statusBar()->showMessage(tr("Data folder: %1").arg(QString::fromStdString(config_.dataFolder())));

    refresh_ = new QTimer(this);
    connect(refresh_, &QTimer::timeout, this, [this] { refreshLog(); });
    refresh_->start(kRefreshMs);
    refreshLog();

    resize(640, 420);
    placeWindow();
}

void StationWindow::addDeskUnit(QWidget* panel) {
    panel->setParent(this);
    column_->insertWidget(0, panel);
}

void StationWindow::placeWindow() {
    const auto left = config_.record.MainWindowLeft.toNumber();
    const auto top = config_.record.MainWindowTop.toNumber();
    if (left && top) {
        move(static_cast<int>(*left), static_cast<int>(*top));
    } else if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        // Never placed before: centred, and that place is kept from now on.
        const QRect area = screen->availableGeometry();
        move(area.center() - rect().center());
        config_.takeWindowPosition(x(), y());
    }
    placed_ = true;
}

void StationWindow::moveEvent(QMoveEvent* event) {
    QMainWindow::moveEvent(event);
    if (!placed_) return;
    config_.record.MainWindowLeft = event->pos().x();
    config_.record.MainWindowTop = event->pos().y();
}

void StationWindow::refreshLog() {
    const std::string& text = eventLog_.text();
    if (text.size() == shownBytes_) return;
    if (text.size() < shownBytes_) {
        logView_->clear();
        shownBytes_ = 0;
    }
    // Only what is new is added, so a long day's log costs nothing to follow.
    QString added = QString::fromLocal8Bit(text.data() + shownBytes_,
                                           static_cast<qsizetype>(text.size() - shownBytes_));
    added.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (added.endsWith('\n')) added.chop(1);
    logView_->appendPlainText(added);
    shownBytes_ = text.size();
}

}  // namespace ovd::ui
