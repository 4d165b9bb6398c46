// The desktop's boxes and choosers, answered the way a user would: a click on the
// wanted button, text typed into the box, a file picked, or the box closed.

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QInputDialog>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPushButton>

#include <filesystem>
#include <ostream>

#include "platform/headless_prompts.h"
#include "support/temp_folder.h"
#include "ui/qt_prompts.h"
#include "ui_test_helpers.h"

namespace ovd::platform {
// Failures name the answer instead of printing its bytes.
void PrintTo(Answer answer, std::ostream* out) { *out << answerName(answer); }
}  // namespace ovd::platform

namespace ovd::ui {
namespace {

using platform::Answer;
using platform::Buttons;
using platform::Severity;
using testing::ModalAnswer;

// Every box must belong to the main window, so that it stays on top of it.
class QtPromptsTest : public ::testing::Test {
protected:
    QtPromptsTest() {
        mainWindow_.resize(400, 300);
        mainWindow_.show();
    }
    QWidget mainWindow_;
    QtPrompts prompts_{&mainWindow_};
};

TEST_F(QtPromptsTest, AMessageBoxShowsItsButtonsAndDefaultAndAnswersWithTheOneClicked) {
    struct Case {
        Buttons buttons;
        Answer defaultAnswer;
        Severity severity;
        QMessageBox::StandardButton click;
        QMessageBox::StandardButtons shown;
        QMessageBox::StandardButton expectedDefault;
        QMessageBox::Icon icon;
        Answer expected;
    };
    const Case cases[] = {
        {Buttons::YesNo, Answer::Yes, Severity::Question, QMessageBox::No,
         QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes, QMessageBox::Question, Answer::No},
        {Buttons::YesNo, Answer::No, Severity::Warning, QMessageBox::Yes,
         QMessageBox::Yes | QMessageBox::No, QMessageBox::No, QMessageBox::Warning, Answer::Yes},
        {Buttons::YesNoCancel, Answer::Cancel, Severity::Question, QMessageBox::Cancel,
         QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Cancel,
         QMessageBox::Question, Answer::Cancel},
        {Buttons::OkCancel, Answer::Cancel, Severity::Critical, QMessageBox::Ok,
         QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Cancel, QMessageBox::Critical,
         Answer::Ok},
        // A default the box does not offer falls to its first button.
        {Buttons::YesNo, Answer::Ok, Severity::Information, QMessageBox::No,
         QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes, QMessageBox::Information,
         Answer::No},
    };
    const std::string text = "File <Letter 7.wav> & friends: overwrite?";
    for (const Case& c : cases) {
        SCOPED_TRACE(static_cast<int>(&c - cases));
        QMessageBox::StandardButtons shown;
        QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
        ModalAnswer<QMessageBox> answer([&](QMessageBox& box) {
            EXPECT_EQ(box.parentWidget(), &mainWindow_);
            EXPECT_EQ(box.windowTitle(), QStringLiteral("Overwrite?"));
            EXPECT_EQ(box.text().toStdString(), text);
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            EXPECT_EQ(box.icon(), c.icon);
            shown = box.standardButtons();
            defaultButton = box.standardButton(box.defaultButton());
            box.button(c.click)->click();
        });
        EXPECT_EQ(prompts_.message({text, "Overwrite?", c.buttons, c.defaultAnswer, c.severity}),
                  c.expected);
        EXPECT_TRUE(answer.answered());
        EXPECT_EQ(shown, c.shown);
        EXPECT_EQ(defaultButton, c.expectedDefault);
    }
}

TEST_F(QtPromptsTest, ClosingAMessageBoxOrPressingEscapeGivesTheDefaultAnswer) {
    struct Case {
        Buttons buttons;
        Answer defaultAnswer;
        bool escape;
    };
    for (const Case c : {Case{Buttons::YesNo, Answer::No, false},
                         Case{Buttons::YesNoCancel, Answer::Yes, true},
                         Case{Buttons::OkCancel, Answer::Ok, true}}) {
        SCOPED_TRACE(c.escape ? "escape" : "close");
        ModalAnswer<QMessageBox> answer([&](QMessageBox& box) {
            if (c.escape) {
                QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
                QApplication::sendEvent(&box, &escape);
            } else {
                box.close();
            }
        });
        EXPECT_EQ(prompts_.message({"Save changes?", "", c.buttons, c.defaultAnswer,
                                    Severity::Question}),
                  c.defaultAnswer);
        EXPECT_TRUE(answer.answered());
    }
}

TEST_F(QtPromptsTest, AnInputBoxReturnsTheTextOrNothingWhenCancelled) {
    struct Case {
        std::optional<QString> typed;  // nothing: cancel
        std::optional<std::string> expected;
    };
    for (const Case& c : {Case{QStringLiteral("Dr. Müller"), "Dr. Müller"},
                          Case{std::nullopt, std::nullopt}}) {
        ModalAnswer<QInputDialog> answer([&](QInputDialog& box) {
            EXPECT_EQ(box.parentWidget(), &mainWindow_);
            EXPECT_EQ(box.windowTitle(), QStringLiteral("Author"));
            EXPECT_EQ(box.labelText(), QStringLiteral("Enter the author's name"));
            EXPECT_EQ(box.textValue(), QStringLiteral("Smith"));
            if (c.typed) {
                box.setTextValue(*c.typed);
                box.accept();
            } else {
                box.reject();
            }
        });
        EXPECT_EQ(prompts_.input({"Enter the author's name", "Author", "Smith"}), c.expected);
        EXPECT_TRUE(answer.answered());
    }
}

TEST(FileFilterListTest, EachFilterNamesItsPatternsOnce) {
    using platform::FileFilter;
    const std::vector<FileFilter> filters = {{"Wave Files", {"*.wav"}},
                                             {"Sound Files", {"*.wav", "*.mp3"}},
                                             {"Wav Files (*.wav)", {"*.wav"}},
                                             {"All Files", {}}};
    EXPECT_EQ(fileFilterList(filters),
              QStringList({"Wave Files (*.wav)", "Sound Files (*.wav *.mp3)", "Wav Files (*.wav)",
                           "All Files (*)"}));
}

// The chooser's own accept() is protected; the dialog's public one reaches it.
void acceptChoice(QFileDialog& dialog) { static_cast<QDialog&>(dialog).accept(); }

bool samePath(const std::optional<std::string>& chosen, const std::string& expected) {
    return chosen && std::filesystem::weakly_canonical(*chosen) ==
                         std::filesystem::weakly_canonical(expected);
}

TEST_F(QtPromptsTest, TheFileChoosersOpenWhereAskedWithTheirFiltersAndReturnThePick) {
    ovd::testing::TempFolder folder;
    QFile(QString::fromStdString(folder.file("take.wav"))).open(QIODevice::WriteOnly);
    platform::FileRequest request{platform::FileRequest::Mode::Open,
                                  "Open ...",
                                  folder.path(),
                                  "",
                                  {{"Wav Files", {"*.wav"}}, {"MP3 Files", {"*.mp3"}}}};

    ModalAnswer<QFileDialog> pick([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.parentWidget(), &mainWindow_);
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Open ..."));
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptOpen);
        EXPECT_EQ(dialog.nameFilters(), QStringList({"Wav Files (*.wav)", "MP3 Files (*.mp3)"}));
        EXPECT_EQ(QDir(dialog.directory()).canonicalPath(),
                  QDir(QString::fromStdString(folder.path())).canonicalPath());
        dialog.selectFile(QString::fromStdString(folder.file("take.wav")));
        acceptChoice(dialog);
    });
    EXPECT_TRUE(samePath(prompts_.chooseFile(request), folder.file("take.wav")));
    EXPECT_TRUE(pick.answered());

    ModalAnswer<QFileDialog> cancel([](QFileDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(prompts_.chooseFile(request), std::nullopt);
    EXPECT_TRUE(cancel.answered());

    // Saving offers the initial name, for a file that need not exist yet.
    request.mode = platform::FileRequest::Mode::Save;
    request.initialName = "Letter 7.wav";
    ModalAnswer<QFileDialog> save([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
        acceptChoice(dialog);
    });
    const auto saved = prompts_.chooseFile(request);
    EXPECT_TRUE(samePath(saved, folder.file("Letter 7.wav"))) << saved.value_or("<none>");
    EXPECT_TRUE(save.answered());
}

TEST_F(QtPromptsTest, TheFolderChooserReturnsTheFolderOrNothingWhenCancelled) {
    ovd::testing::TempFolder folder;
    const std::string destination = folder.file("Destination 2");
    std::filesystem::create_directory(destination);

    ModalAnswer<QFileDialog> pick([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Select Folder"));
        EXPECT_EQ(dialog.fileMode(), QFileDialog::Directory);
        dialog.setDirectory(QString::fromStdString(destination));
        acceptChoice(dialog);
    });
    const auto chosen = prompts_.chooseFolder({"Select Folder", folder.path()});
    EXPECT_TRUE(samePath(chosen, destination)) << chosen.value_or("<none>");
    EXPECT_TRUE(pick.answered());

    ModalAnswer<QFileDialog> cancel([](QFileDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(prompts_.chooseFolder({"Select Folder", folder.path()}), std::nullopt);
    EXPECT_TRUE(cancel.answered());
}

}  // namespace
}  // namespace ovd::ui
