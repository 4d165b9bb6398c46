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
    traceText_ = new QPlainTextEdit(this);
    traceText_->setObjectName("txtDebug");
    traceText_->setReadOnly(true);
    traceText_->setLineWrapMode(QPlainTextEdit::NoWrap);
    traceText_->setFont(typewriterFont());
    column->addWidget(traceText_);
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
    connect(clear, &QPushButton::clicked, traceText_, &QPlainTextEdit::clear);
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
    traceText_->setPlainText(lines.join('\n'));
    traceText_->verticalScrollBar()->setValue(traceText_->verticalScrollBar()->maximum());
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
