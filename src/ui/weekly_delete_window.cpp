#include "ui/weekly_delete_window.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace ovd::ui {

namespace {

QComboBox* listBox(const char* name, const QStringList& items, int chosen) {
    auto* box = new QComboBox;
    box->setObjectName(name);
    box->addItems(items);
    box->setCurrentIndex(chosen);
    return box;
}

QStringList numbers(int first, int last, bool twoDigits) {
    QStringList list;
    for (int n = first; n <= last; ++n)
        list << (twoDigits ? QString::asprintf("%02d", n) : QString::number(n));
    return list;
}

QToolButton* arrow(const char* name, Qt::ArrowType direction) {
    auto* made = new QToolButton;
    made->setObjectName(name);
    made->setArrowType(direction);
    made->setAutoRepeat(true);
    return made;
}

}  // namespace

WeeklyDeleteWindow::WeeklyDeleteWindow(housekeeping::Housekeeping& house, QWidget* parent)
    : QDialog(parent), form_(house.config(), house.purge, house.loop()) {
    setObjectName("frmweeklyDelete");
    setWindowTitle(tr("Scheduled Deletion"));
    form_.Form_Load();

    auto* layout = new QVBoxLayout(this);
    clock_ = new QLabel;
    clock_->setObjectName("lblDateTime");
    layout->addWidget(clock_);

    auto* fields = new QFormLayout;
    QStringList dayNames;
    for (const std::string& name : housekeeping::purgeDayNames())
        dayNames << QString::fromStdString(name);
    day_ = listBox("Combo1", dayNames, form_.dayIndex);
    hour_ = listBox("Combo2", numbers(1, 12, false), form_.hourIndex);
    minute_ = listBox("Combo3", numbers(0, 59, true), form_.minuteIndex);
    morning_ = new QRadioButton("AM");
    morning_->setObjectName("Option1");
    afternoon_ = new QRadioButton("PM");
    afternoon_->setObjectName("Option2");
    morning_->setChecked(form_.morning);
    afternoon_->setChecked(!form_.morning);
    auto* time = new QHBoxLayout;
    time->addWidget(hour_);
    time->addWidget(new QLabel(":"));
    time->addWidget(minute_);
    time->addWidget(morning_);
    time->addWidget(afternoon_);
    fields->addRow(tr("Day of the week"), day_);
    fields->addRow(tr("Time"), time);

    days_ = new QLineEdit(QString::fromStdString(form_.daysText));
    days_->setObjectName("txtDays");
    days_->setMaxLength(4);
    auto* up = arrow("UpDown1Up", Qt::UpArrow);
    auto* down = arrow("UpDown1Down", Qt::DownArrow);
    auto* daysRow = new QHBoxLayout;
    daysRow->addWidget(days_);
    daysRow->addWidget(up);
    daysRow->addWidget(down);
    fields->addRow(tr("Age in days (twice this old goes)"), daysRow);
    auto* path = new QLabel(QString::fromStdString(form_.folder));
    path->setObjectName("LBLPath");
    path->setTextFormat(Qt::PlainText);
    path->setFrameShape(QFrame::StyledPanel);
    fields->addRow(tr("Folder"), path);
    layout->addLayout(fields);
    layout->addWidget(new QLabel(
        tr("The age set here lasts until the station ends; files twice that old are deleted.")));

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    auto* save = new QPushButton(tr("Save"));
    save->setObjectName("Command2");
    auto* close = new QPushButton(tr("Exit"));
    close->setObjectName("Command1");
    buttons->addWidget(save);
    buttons->addWidget(close);
    layout->addLayout(buttons);

    connect(days_, &QLineEdit::textEdited, this, [this](const QString& text) {
        form_.setDaysText(text.toStdString());
        const QString shown = QString::fromStdString(form_.daysText);
        if (shown != text) days_->setText(shown);
    });
    connect(up, &QToolButton::clicked, this, [this] { stepDays(1); });
    connect(down, &QToolButton::clicked, this, [this] { stepDays(-1); });
    connect(save, &QPushButton::clicked, this, [this] {
        form_.dayIndex = day_->currentIndex();
        form_.hourIndex = hour_->currentIndex();
        form_.minuteIndex = minute_->currentIndex();
        form_.morning = morning_->isChecked();
        form_.setDaysText(days_->text().toStdString());
        form_.Command2();
        days_->setText(QString::fromStdString(form_.daysText));
    });
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    form_.onClockChanged = [this] { clock_->setText(QString::fromStdString(form_.clockText)); };
    clock_->setText(QString::fromStdString(form_.clockText));
}

WeeklyDeleteWindow::~WeeklyDeleteWindow() {
    form_.onClockChanged = nullptr;
    form_.Form_Unload();
}

void WeeklyDeleteWindow::stepDays(int by) {
    form_.setDaysText(std::to_string(housekeeping::clampedPurgeDays(form_.daysText) + by));
    days_->setText(QString::fromStdString(form_.daysText));
}

}  // namespace ovd::ui
