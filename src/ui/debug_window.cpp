#include "ui/debug_window.h"

#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

#include "ui/typewriter_font.h"
#include "ui/window_placement.h"

namespace ovd::ui {

DebugWindow::DebugWindow(settings::DebugTrace& trace,
                         std::function<settings::GlobalsSnapshot()> snapshot, QWidget* parent)
    : QWidget(parent, Qt::Window), trace_(trace), snapshot_(std::move(snapshot)) {
    setObjectName("frmDebug");
    setWindowTitle(tr("Debug Trace"));
    auto* column = new QVBoxLayout(this);
    txtDebug_ = new QPlainTextEdit(this);
    txtDebug_->setObjectName("txtDebug");
    txtDebug_->setReadOnly(true);
    txtDebug_->setLineWrapMode(QPlainTextEdit::NoWrap);
    txtDebug_->setFont(typewriterFont());
    column->addWidget(txtDebug_);
    auto* buttons = new QHBoxLayout;
    auto* dump = new QPushButton(tr("Dump Globals"), this);
    dump->setObjectName("cmdDump");
    auto* clear = new QPushButton(tr("Clear"), this);
    auto* hide = new QPushButton(tr("Close"), this);
    buttons->addWidget(dump);
    buttons->addWidget(clear);
    buttons->addStretch();
    buttons->addWidget(hide);
    column->addLayout(buttons);
    connect(dump, &QPushButton::clicked, this, [this] { DumpGlobals(); });
    connect(clear, &QPushButton::clicked, txtDebug_, &QPlainTextEdit::clear);
    connect(hide, &QPushButton::clicked, this, &QWidget::close);
    resize(560, 480);
    trace_.onShow = [this] {
        refresh();
        showOverStation();
    };
}

DebugWindow::~DebugWindow() { trace_.onShow = nullptr; }

void DebugWindow::refresh() {
    QStringList lines;
    for (const std::string& line : trace_.lines()) lines << QString::fromStdString(line);
    txtDebug_->setPlainText(lines.join('\n'));
    txtDebug_->verticalScrollBar()->setValue(txtDebug_->verticalScrollBar()->maximum());
}

void DebugWindow::DumpGlobals() {
    trace_.DumpGlobals(snapshot_());
    refresh();
    showOverStation();
}

void DebugWindow::showOverStation() {
    if (!isVisible()) {
        keepAboveStation(*this, parentWidget());
        placeOverStation(*this, parentWidget());
    }
    show();
}

}  // namespace ovd::ui
