#include "ui/transport_bar.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPixmap>
#include <QStyle>
#include <QToolButton>

namespace ovd::ui {

namespace {

struct ButtonLook {
    const char* objectName;
    const char* caption;
    QStyle::StandardPixmap icon;
};

constexpr std::array<ButtonLook, TransportBar::kButtons> kLooks = {{
    {"MMControl1Prev", "Prev", QStyle::SP_MediaSkipBackward},
    {"MMControl1Next", "Next", QStyle::SP_MediaSkipForward},
    {"MMControl1Play", "Play", QStyle::SP_MediaPlay},
    {"MMControl1Pause", "Pause", QStyle::SP_MediaPause},
    {"MMControl1Back", "Back", QStyle::SP_MediaSeekBackward},
    {"MMControl1Step", "Step", QStyle::SP_MediaSeekForward},
    {"MMControl1Stop", "Stop", QStyle::SP_MediaStop},
    {"MMControl1Record", "Record", QStyle::SP_CustomBase},
}};

constexpr int kIconPixels = 32;
// A greyed symbol must read as greyed at a glance, with no caption under it to
// help: the style's own disabled look is barely lighter than the enabled one.
constexpr qreal kDisabledOpacity = 0.28;

QPixmap faded(const QPixmap& normal) {
    QPixmap pixmap(normal.size());
    pixmap.setDevicePixelRatio(normal.devicePixelRatio());
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setOpacity(kDisabledOpacity);
    painter.drawPixmap(0, 0, normal);
    return pixmap;
}

// The symbol as it is when the button can act, and faded when it cannot.
QIcon withFadedDisabled(const QPixmap& normal) {
    QIcon icon;
    icon.addPixmap(normal, QIcon::Normal);
    icon.addPixmap(faded(normal), QIcon::Disabled);
    return icon;
}

// The style has no record symbol: a red disc.
QPixmap recordSymbol() {
    QPixmap pixmap(kIconPixels, kIconPixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(210, 20, 20));
    painter.drawEllipse(QRectF(6, 6, 20, 20));
    return pixmap;
}

}  // namespace

TransportBar::TransportBar(QWidget* parent) : QWidget(parent) {
    setObjectName("MMControl1");
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2);
    for (int i = 0; i < kButtons; ++i) {
        const ButtonLook& look = kLooks[static_cast<std::size_t>(i)];
        auto* button = new QToolButton(this);
        button->setObjectName(QString::fromLatin1(look.objectName));
        button->setText(tr(look.caption));
        button->setToolTip(tr(look.caption));
        button->setIcon(
            withFadedDisabled(look.icon == QStyle::SP_CustomBase
                                  ? recordSymbol()
                                  : style()->standardIcon(look.icon).pixmap(kIconPixels)));
        button->setIconSize({28, 28});
        // Room for the caption under the icon, so the bar does not jump when captions show.
        button->setMinimumSize(52, 56);
        button->setEnabled(false);
        connect(button, &QToolButton::clicked, this, [this, i] {
            if (onClick[static_cast<std::size_t>(i)]) onClick[static_cast<std::size_t>(i)]();
        });
        row->addWidget(button);
        buttons_[static_cast<std::size_t>(i)] = button;
    }
}

void TransportBar::render(const dictation::TransportBar& bar, bool captionsVisible) {
    const std::array<bool, kButtons> enabled = {bar.Prev, bar.Next, bar.Play, bar.Pause,
                                                bar.Back, bar.Step, bar.Stop, bar.Record};
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        buttons_[i]->setEnabled(enabled[i]);
        buttons_[i]->setToolButtonStyle(captionsVisible ? Qt::ToolButtonTextUnderIcon
                                                        : Qt::ToolButtonIconOnly);
    }
}

void TransportBar::showNoFile(bool noFile) {
    QToolButton* record = buttons_[Record];
    record->setToolTip(noFile
                           ? tr("Record: there is no file to record into. Create a new file (New) "
                                "or open one first.")
                           : tr("Record"));
}

}  // namespace ovd::ui
