#include "ui/notification_popup.h"

#include <QColor>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLabel>
#include <QLinearGradient>
#include <QProcess>
#include <QScreen>
#include <QStandardPaths>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

namespace ovd::ui {

namespace {
constexpr int kScreenMargin = 12;
constexpr int kPopupWidth = 320;
constexpr const char* kSoundPlayer = "paplay";

QLabel* addLabel(QVBoxLayout* layout, const std::string& text) {
    auto* label = new QLabel(QString::fromStdString(text));
    // Texts are shown to the letter: a '<' in a file name is not markup.
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    layout->addWidget(label);
    // Only once it has a parent: shown on its own, a label would be a window.
    if (text.empty()) label->hide();
    return label;
}

void setRoleColor(QPalette& palette, QPalette::ColorRole role, const std::string& text) {
    const QColor color = QColor::fromString(QString::fromStdString(text));
    // A colour the settings got wrong leaves the pop-up readable in the desktop's colours.
    if (color.isValid()) palette.setColor(role, color);
}
}  // namespace

NotificationPopup::NotificationPopup(const platform::Notification& notification, QWidget* parent)
    : QFrame(parent, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      soundFile_(QString::fromStdString(notification.soundFile)),
      showMilliseconds_(std::max(0, notification.showMilliseconds)) {
    // The dictation keeps the keyboard and the pedals: the pop-up never takes the focus.
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QString::fromStdString(notification.title));

    QPalette colours = palette();
    setRoleColor(colours, QPalette::Window, notification.backgroundColor);
    setRoleColor(colours, QPalette::WindowText, notification.textColor);
    const QColor top = QColor::fromString(QString::fromStdString(notification.backgroundColor));
    const QColor bottom =
        QColor::fromString(QString::fromStdString(notification.backgroundColorEnd));
    if (top.isValid() && bottom.isValid()) {
        QLinearGradient shade(0, 0, 0, 1);
        shade.setCoordinateMode(QGradient::ObjectMode);
        shade.setColorAt(0, top);
        shade.setColorAt(1, bottom);
        colours.setBrush(QPalette::Window, QBrush(shade));
    }
    setPalette(colours);
    setAutoFillBackground(true);
    setFrameStyle(QFrame::Box | QFrame::Plain);
    setFixedWidth(kPopupWidth);

    auto* layout = new QVBoxLayout(this);
    title_ = addLabel(layout, notification.title);
    heading_ = addLabel(layout, notification.heading);
    QFont bold = heading_->font();
    bold.setBold(true);
    heading_->setFont(bold);
    body_ = addLabel(layout, notification.body);
}

QString NotificationPopup::titleText() const { return title_->text(); }
QString NotificationPopup::headingText() const { return heading_->text(); }
QString NotificationPopup::bodyText() const { return body_->text(); }

void NotificationPopup::present(int raisedBy) {
    adjustSize();
    const QScreen* screen =
        parentWidget() != nullptr ? parentWidget()->screen() : QGuiApplication::primaryScreen();
    if (screen != nullptr) {
        const QRect area = screen->availableGeometry();
        move(area.right() + 1 - kScreenMargin - width(),
             area.bottom() + 1 - kScreenMargin - height() - raisedBy);
    }
    show();
    QTimer::singleShot(showMilliseconds_, this, &QWidget::close);
    playSound();
}

void NotificationPopup::mousePressEvent(QMouseEvent* /*event*/) { close(); }

void NotificationPopup::playSound() const {
    if (soundFile_.isEmpty() || !QFileInfo::exists(soundFile_)) return;
    const QString player = QStandardPaths::findExecutable(kSoundPlayer);
    // No player on this machine: the pop-up alone still tells the news.
    if (player.isEmpty()) return;
    QProcess process;
    process.setProgram(player);
    process.setArguments({soundFile_});
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.startDetached();
}

}  // namespace ovd::ui
