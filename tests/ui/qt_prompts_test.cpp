// The desktop's boxes, answered the way a user would: a click on the wanted
// button, a key, text typed into the box, or the box cancelled; and the passive
// pop-up, which must leave the focus with the dictation and go by itself.

#include "ui/qt_prompts.h"

#include <gtest/gtest.h>

#include <QInputDialog>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

#include "ui/notification_popup.h"
#include "ui_test_helpers.h"

namespace ovd::ui {
namespace {

using platform::Answer;
using platform::Buttons;
using testing::answering;
using testing::runUntil;
using Box = QMessageBox;

// Every box must belong to the main window, so that it stays on top of it.
class QtPromptsTest : public ::testing::Test {
  protected:
    QtPromptsTest() { mainWindow_.show(); }
    QWidget mainWindow_;
    QtPrompts prompts_{&mainWindow_};
};

TEST_F(QtPromptsTest, AMessageBoxOffersItsButtonsAndTheRequestedDefaultAndAnswersTheOneClicked) {
    struct Case {
        Buttons buttons;
        Answer defaultAnswer;
        Box::StandardButton click;  // NoButton: Escape is pressed instead
        Box::StandardButtons offered;
        Box::StandardButton shownDefault;
        Answer expected;
    };
    const Case cases[] = {
        {Buttons::YesNo, Answer::Yes, Box::No, Box::Yes | Box::No, Box::Yes, Answer::No},
        {Buttons::YesNo, Answer::No, Box::Yes, Box::Yes | Box::No, Box::No, Answer::Yes},
        {Buttons::OkCancel, Answer::Cancel, Box::Ok, Box::Ok | Box::Cancel, Box::Cancel,
         Answer::Ok},
        // Escape gives the default answer, even where the box offers Cancel.
        {Buttons::YesNoCancel, Answer::No, Box::NoButton, Box::Yes | Box::No | Box::Cancel, Box::No,
         Answer::No},
        // A default the box does not offer falls to its first button.
        {Buttons::YesNo, Answer::Ok, Box::No, Box::Yes | Box::No, Box::Yes, Answer::No},
    };
    const std::string text = "File <Letter 7.wav> & friends: overwrite?";
    for (const Case& c : cases) {
        SCOPED_TRACE(static_cast<int>(&c - cases));
        const auto answer = [&](Box& box) {
            EXPECT_EQ(box.parentWidget(), &mainWindow_);
            EXPECT_EQ(box.windowTitle(), QStringLiteral("Overwrite?"));
            EXPECT_EQ(box.text().toStdString(), text);
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            EXPECT_EQ(box.icon(), Box::Warning);
            EXPECT_EQ(box.standardButtons(), c.offered);
            EXPECT_EQ(box.standardButton(box.defaultButton()), c.shownDefault);
            if (c.click == Box::NoButton) {
                QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
                QApplication::sendEvent(&box, &escape);
            } else {
                box.button(c.click)->click();
            }
        };
        EXPECT_TRUE(answering<Box>(answer, [&] {
            EXPECT_EQ(prompts_.message({text, "Overwrite?", c.buttons, c.defaultAnswer,
                                        platform::Severity::Warning}),
                      c.expected);
        }));
    }
}

TEST_F(QtPromptsTest, AnInputBoxReturnsTheTextOrNothingWhenCancelled) {
    using Text = std::optional<std::string>;
    for (const Text& typed : {Text("Dr. Müller"), Text()}) {  // nothing typed: cancelled
        const auto answer = [&](QInputDialog& box) {
            EXPECT_EQ(box.parentWidget(), &mainWindow_);
            EXPECT_EQ(box.windowTitle(), QStringLiteral("Author"));
            EXPECT_EQ(box.labelText(), QStringLiteral("Enter the author's name"));
            EXPECT_EQ(box.textValue(), QStringLiteral("Smith"));
            if (typed) box.setTextValue(QString::fromStdString(*typed));
            box.done(typed ? QDialog::Accepted : QDialog::Rejected);
        };
        EXPECT_TRUE(answering<QInputDialog>(answer, [&] {
            EXPECT_EQ(prompts_.input({"Enter the author's name", "Author", "Smith"}), typed);
        }));
    }
}

TEST(FileFilterListTest, EachFilterNamesItsPatternsOnce) {
    EXPECT_EQ(fileFilterList({{"Wave Files", {"*.wav"}},
                              {"Sound Files", {"*.wav", "*.mp3"}},
                              {"Wav Files (*.wav)", {"*.wav"}},
                              {"All Files", {}}}),
              QStringList({"Wave Files (*.wav)", "Sound Files (*.wav *.mp3)", "Wav Files (*.wav)",
                           "All Files (*)"}));
}

TEST_F(QtPromptsTest, APopUpShowsItsTextsInItsColoursWithoutTakingTheFocusAndGoesByItself) {
    mainWindow_.activateWindow();
    ASSERT_TRUE(runUntil([&] { return mainWindow_.isActiveWindow(); }));
    prompts_.notify({"Orvane Voice Desk", "File Sent", "Letter 7.wav went to the typist.",
                     "#ffffe1", "#102030", "", 1500});
    const QPointer<NotificationPopup> popup = mainWindow_.findChild<NotificationPopup*>();
    ASSERT_TRUE(popup && popup->isVisible());
    EXPECT_EQ(popup->titleText(), QStringLiteral("Orvane Voice Desk"));
    EXPECT_EQ(popup->headingText(), QStringLiteral("File Sent"));
    EXPECT_EQ(popup->bodyText(), QStringLiteral("Letter 7.wav went to the typist."));
    EXPECT_EQ(popup->palette().color(QPalette::Window), QColor(0xff, 0xff, 0xe1));
    EXPECT_EQ(popup->palette().color(QPalette::WindowText), QColor(0x10, 0x20, 0x30));

    // It stays a while, and the main window keeps the focus all along.
    EXPECT_FALSE(runUntil([&] { return !popup || QApplication::activeWindow() != &mainWindow_; },
                          std::chrono::milliseconds(200)));
    EXPECT_TRUE(runUntil([&] { return popup.isNull(); }));
}

}  // namespace
}  // namespace ovd::ui
