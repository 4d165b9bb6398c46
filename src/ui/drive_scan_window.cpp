#include "ui/drive_scan_window.h"

#include <QCalendarWidget>
#include <QComboBox>
#include <QDate>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace ovd::ui {

namespace {

QDate toQDate(housekeeping::Day day) {
    const std::chrono::year_month_day date(day);
    return {static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day()))};
}

housekeeping::Day fromQDate(const QDate& date) {
    return housekeeping::Day(std::chrono::year(date.year()) /
                             std::chrono::month(static_cast<unsigned>(date.month())) /
                             std::chrono::day(static_cast<unsigned>(date.day())));
}

QComboBox* numberBox(const char* name, int first, int last, bool twoDigits) {
    auto* box = new QComboBox;
    box->setObjectName(name);
    for (int n = first; n <= last; ++n)
        box->addItem(twoDigits ? QString::asprintf("%02d", n) : QString::number(n));
    return box;
}

QPushButton* button(const char* name, const QString& text) {
    auto* made = new QPushButton(text);
    made->setObjectName(name);
    made->setAutoDefault(false);
    return made;
}

}  // namespace

DriveScanWindow::DriveScanWindow(housekeeping::Housekeeping& house, platform::Prompts& prompts,
                                 QWidget* parent)
    : QDialog(parent), form_({house.loop(), house.config(), prompts, house.dataFolder()}) {
    setObjectName("frmDriveScanScheduler");
    setWindowTitle(tr("Drive Scan Scheduler"));
    form_.Form_Load();
    if (!form_.damage.empty()) {
        house.trace("Drive Scan: " + housekeeping::scanSettingsPath(house.dataFolder()) +
                    " can't be read (" + form_.damage + "); the defaults are shown");
    }

    auto* layout = new QVBoxLayout(this);
    damage_ = new QLabel;
    damage_->setObjectName("lblDamage");
    damage_->setWordWrap(true);
    damage_->setStyleSheet("color: #a00000");
    layout->addWidget(damage_);

    auto* folderRow = new QHBoxLayout;
    folder_ = new QLabel;
    folder_->setObjectName("lblDestPath");
    folder_->setTextFormat(Qt::PlainText);
    folder_->setFrameShape(QFrame::StyledPanel);
    folderRow->addWidget(new QLabel(tr("Folder to clean:")));
    folderRow->addWidget(folder_, 1);
    auto* browse = button("Command5", tr("Browse..."));
    auto* defaults = button("Command4", tr("Default Folder"));
    folderRow->addWidget(browse);
    folderRow->addWidget(defaults);
    layout->addLayout(folderRow);

    auto* middle = new QHBoxLayout;
    auto* fields = new QFormLayout;
    day_ = new QComboBox;
    day_->setObjectName("Combo1");
    for (const std::string& name : housekeeping::scanDayNames())
        day_->addItem(QString::fromStdString(name));
    hour_ = numberBox("Combo2", 1, 12, false);
    minute_ = numberBox("Combo3", 0, 59, true);
    auto* time = new QHBoxLayout;
    time->addWidget(hour_);
    time->addWidget(new QLabel(":"));
    time->addWidget(minute_);
    morning_ = new QRadioButton("AM");
    morning_->setObjectName("Option1");
    afternoon_ = new QRadioButton("PM");
    afternoon_->setObjectName("Option2");
    time->addWidget(morning_);
    time->addWidget(afternoon_);
    fields->addRow(tr("Day of the week"), day_);
    fields->addRow(tr("Time"), time);
    days_ = new QLineEdit;
    days_->setObjectName("Text2");
    days_->setMaxLength(6);
    fields->addRow(tr("Delete files this many days old or more"), days_);
    middle->addLayout(fields);
    calendar_ = new QCalendarWidget;
    calendar_->setObjectName("MonthView1");
    calendar_->setMaximumDate(toQDate(form_.today()));
    calendar_->setGridVisible(true);
    middle->addWidget(calendar_);
    layout->addLayout(middle);
    layout->addWidget(
        new QLabel(tr("Files dated on or before the day marked are deleted when the station starts "
                      "with automatic file deletion on.")));

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    auto* save = button("Command2", tr("Save"));
    auto* close = button("Command3", tr("Exit"));
    buttons->addWidget(save);
    buttons->addWidget(close);
    layout->addLayout(buttons);

    connect(days_, &QLineEdit::textEdited, this, [this](const QString& text) {
        form_.setDaysText(text.toStdString());
        const QSignalBlocker quiet(calendar_);
        calendar_->setSelectedDate(toQDate(form_.calendarDay));
    });
    connect(calendar_, &QCalendarWidget::selectionChanged, this, [this] {
        form_.setCalendarDay(fromQDate(calendar_->selectedDate()));
        days_->setText(QString::fromStdString(form_.daysText));
    });
    const auto takeChoices = [this] {
        form_.dayIndex = day_->currentIndex();
        form_.hourIndex = hour_->currentIndex();
        form_.minuteIndex = minute_->currentIndex();
        form_.morning = morning_->isChecked();
    };
    connect(save, &QPushButton::clicked, this, [this, takeChoices] {
        takeChoices();
        form_.Command2();
        render();
    });
    connect(defaults, &QPushButton::clicked, this, [this, takeChoices] {
        takeChoices();
        form_.Command4();
        render();
    });
    connect(browse, &QPushButton::clicked, this, [this, takeChoices] {
        takeChoices();
        form_.Command5();
        render();
    });
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    render();
}

void DriveScanWindow::render() {
    damage_->setText(form_.damage.empty()
                         ? QString()
                         : tr("FileScan.cfg could not be read (%1); the defaults are shown.")
                               .arg(QString::fromStdString(form_.damage)));
    damage_->setVisible(!form_.damage.empty());
    folder_->setText(QString::fromStdString(form_.folder));
    day_->setCurrentIndex(form_.dayIndex);
    hour_->setCurrentIndex(form_.hourIndex);
    minute_->setCurrentIndex(form_.minuteIndex);
    morning_->setChecked(form_.morning);
    afternoon_->setChecked(!form_.morning);
    days_->setText(QString::fromStdString(form_.daysText));
    const QSignalBlocker quiet(calendar_);
    calendar_->setSelectedDate(toQDate(form_.calendarDay));
}

void showDriveScanWindow(housekeeping::Housekeeping& house, platform::Prompts& prompts,
                         QWidget* parent) {
    if (!house.windows.openDriveScan(prompts)) return;
    DriveScanWindow(house, prompts, parent).exec();
    house.windows.driveScanClosed();
}

}  // namespace ovd::ui
