// The passive pop-up: it tells its news in the colours asked for, in the corner of
// the screen, without taking the focus from the dictation, and goes by itself.

#include <gtest/gtest.h>

#include <QApplication>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QScreen>

#include <algorithm>

#include "ui/notification_popup.h"
#include "ui/qt_prompts.h"
#include "ui_test_helpers.h"

namespace ovd::ui {
namespace {

using testing::runFor;
using testing::runUntil;

std::vector<NotificationPopup*> shownPopups() {
    std::vector<NotificationPopup*> found;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* popup = dynamic_cast<NotificationPopup*>(widget);
        if (popup != nullptr && popup->isVisible()) found.push_back(popup);
    }
    return found;
}

platform::Notification notice(const std::string& body, int showMs) {
    return {"Orvane Voice Desk", "File Sent", body, "#ffffe1", "#102030", "", showMs};
}

TEST(NotificationPopupTest, ShowsItsTextsInItsColoursWithoutTakingTheFocusAndGoesByItself) {
    QWidget mainWindow;
    mainWindow.show();
    mainWindow.activateWindow();
    ASSERT_TRUE(runUntil([&] { return mainWindow.isActiveWindow(); }));
    QtPrompts prompts(&mainWindow);

    prompts.notify(notice("Letter 7.wav went to the typist.", 1500));
    const auto popups = shownPopups();
    ASSERT_EQ(popups.size(), 1u);
    const QPointer<NotificationPopup> popup = popups.front();
    EXPECT_EQ(popup->titleText(), QStringLiteral("Orvane Voice Desk"));
    EXPECT_EQ(popup->headingText(), QStringLiteral("File Sent"));
    EXPECT_EQ(popup->bodyText(), QStringLiteral("Letter 7.wav went to the typist."));
    EXPECT_EQ(popup->palette().color(QPalette::Window), QColor(0xff, 0xff, 0xe1));
    EXPECT_EQ(popup->palette().color(QPalette::WindowText), QColor(0x10, 0x20, 0x30));

    runFor(std::chrono::milliseconds(100));
    EXPECT_TRUE(popup && popup->isVisible());
    EXPECT_EQ(QApplication::activeWindow(), &mainWindow);
    EXPECT_TRUE(runUntil([&] { return popup.isNull(); }));
}

TEST(NotificationPopupTest, StandsInTheBottomRightCornerAndANewOneStacksAboveAndAClickCloses) {
    QtPrompts prompts;
    prompts.notify(notice("first", 60'000));
    prompts.notify(notice("second, with a body long enough to wrap onto a second line", 60'000));
    auto popups = shownPopups();
    ASSERT_EQ(popups.size(), 2u);
    std::sort(popups.begin(), popups.end(), [](auto* a, auto* b) { return a->y() > b->y(); });
    const QRect lower = popups[0]->frameGeometry();
    const QRect upper = popups[1]->frameGeometry();
    const QRect area = QGuiApplication::primaryScreen()->availableGeometry();

    EXPECT_EQ(popups[0]->bodyText(), QStringLiteral("first"));
    EXPECT_TRUE(area.contains(lower) && area.contains(upper));
    EXPECT_GT(lower.left(), area.center().x());
    EXPECT_GT(lower.top(), area.center().y());
    EXPECT_LT(upper.bottom(), lower.top());
    EXPECT_EQ(upper.right(), lower.right());

    for (NotificationPopup* popup : popups) {
        const QPointer<NotificationPopup> clicked = popup;
        const QPointF inside(5, 5);
        QMouseEvent press(QEvent::MouseButtonPress, inside, popup->mapToGlobal(inside),
                          Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(popup, &press);
        EXPECT_TRUE(runUntil([&] { return clicked.isNull(); }));
    }
}

}  // namespace
}  // namespace ovd::ui
