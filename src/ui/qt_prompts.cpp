#include "ui/qt_prompts.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <algorithm>

#include "ui/notification_popup.h"
#include "ui/window_placement.h"

namespace ovd::ui {

using platform::Answer;
using platform::Buttons;
using platform::Severity;

namespace {
constexpr int kPopupSpacing = 8;

QString qt(const std::string& text) { return QString::fromStdString(text); }

// A box with no title shows the program's name, as message boxes always have.
QString windowTitle(const std::string& title) {
    return title.empty() ? QGuiApplication::applicationDisplayName() : qt(title);
}

QMessageBox::StandardButtons standardButtons(Buttons buttons) {
    switch (buttons) {
        case Buttons::Ok:
            return QMessageBox::Ok;
        case Buttons::OkCancel:
            return QMessageBox::Ok | QMessageBox::Cancel;
        case Buttons::YesNo:
            return QMessageBox::Yes | QMessageBox::No;
        case Buttons::YesNoCancel:
            return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    }
    return QMessageBox::Ok;
}

QMessageBox::StandardButton standardButton(Answer answer) {
    switch (answer) {
        case Answer::Ok:
            return QMessageBox::Ok;
        case Answer::Cancel:
            return QMessageBox::Cancel;
        case Answer::Yes:
            return QMessageBox::Yes;
        case Answer::No:
            return QMessageBox::No;
    }
    return QMessageBox::Ok;
}

std::optional<Answer> answerOf(QMessageBox::StandardButton button) {
    switch (button) {
        case QMessageBox::Ok:
            return Answer::Ok;
        case QMessageBox::Cancel:
            return Answer::Cancel;
        case QMessageBox::Yes:
            return Answer::Yes;
        case QMessageBox::No:
            return Answer::No;
        default:  // the box offers no other buttons
            return std::nullopt;
    }
}

QMessageBox::Icon iconOf(Severity severity) {
    switch (severity) {
        case Severity::Information:
            return QMessageBox::Information;
        case Severity::Question:
            return QMessageBox::Question;
        case Severity::Warning:
            return QMessageBox::Warning;
        case Severity::Critical:
            return QMessageBox::Critical;
    }
    return QMessageBox::NoIcon;
}

std::optional<std::string> firstSelected(const QFileDialog& dialog) {
    const QStringList chosen = dialog.selectedFiles();
    if (chosen.isEmpty() || chosen.front().isEmpty()) return std::nullopt;
    return chosen.front().toStdString();
}
}  // namespace

QStringList fileFilterList(const std::vector<platform::FileFilter>& filters) {
    QStringList list;
    for (const platform::FileFilter& filter : filters) {
        QStringList patterns;
        for (const std::string& pattern : filter.patterns) patterns << qt(pattern);
        if (patterns.isEmpty()) patterns << QStringLiteral("*");
        const QString shown = QLatin1Char('(') + patterns.join(QLatin1Char(' ')) + QLatin1Char(')');
        const QString description = qt(filter.description).trimmed();
        // "Wave Files (*.wav)" already names its patterns; the chooser reads them from
        // the parentheses, so they are not added a second time.
        if (description.endsWith(shown)) {
            list << description;
        } else if (description.isEmpty()) {
            list << shown;
        } else {
            list << description + QLatin1Char(' ') + shown;
        }
    }
    return list;
}

QtPrompts::QtPrompts(QWidget* mainWindow) : mainWindow_(mainWindow) {}

QtPrompts::~QtPrompts() = default;

QWidget* QtPrompts::owner() const {
    if (mainWindow_) return mainWindow_.data();
    return QApplication::activeWindow();
}

Answer QtPrompts::message(const platform::MessageRequest& request) {
    QMessageBox box(iconOf(request.severity), windowTitle(request.title), qt(request.text),
                    standardButtons(request.buttons), owner());
    box.setTextFormat(Qt::PlainText);
    keepAboveStation(box, mainWindow_.data());

    // A default the box does not offer falls back to its first button.
    Answer defaultAnswer = request.defaultAnswer;
    if (box.button(standardButton(defaultAnswer)) == nullptr) {
        defaultAnswer = request.buttons == Buttons::YesNo || request.buttons == Buttons::YesNoCancel
                            ? Answer::Yes
                            : Answer::Ok;
    }
    box.setDefaultButton(standardButton(defaultAnswer));
    // Closing the box or pressing Escape gives the default answer.
    box.setEscapeButton(box.button(standardButton(defaultAnswer)));

    box.exec();
    if (box.clickedButton() == nullptr) return defaultAnswer;
    return answerOf(box.standardButton(box.clickedButton())).value_or(defaultAnswer);
}

std::optional<std::string> QtPrompts::input(const platform::InputRequest& request) {
    QInputDialog dialog(owner());
    keepAboveStation(dialog, mainWindow_.data());
    dialog.setInputMode(QInputDialog::TextInput);
    dialog.setWindowTitle(windowTitle(request.title));
    dialog.setLabelText(qt(request.prompt));
    dialog.setTextValue(qt(request.initialText));
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return dialog.textValue().toStdString();
}

std::optional<std::string> QtPrompts::chooseFile(const platform::FileRequest& request) {
    const bool saving = request.mode == platform::FileRequest::Mode::Save;
    QFileDialog dialog(owner(), qt(request.title));
    keepAboveStation(dialog, mainWindow_.data());
    dialog.setAcceptMode(saving ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(saving ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    const QStringList filters = fileFilterList(request.filters);
    if (!filters.isEmpty()) dialog.setNameFilters(filters);
    if (!request.initialFolder.empty()) dialog.setDirectory(qt(request.initialFolder));
    if (!request.initialName.empty()) dialog.selectFile(qt(request.initialName));
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return firstSelected(dialog);
}

std::optional<std::string> QtPrompts::chooseFolder(const platform::FolderRequest& request) {
    QFileDialog dialog(owner(), qt(request.title));
    keepAboveStation(dialog, mainWindow_.data());
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    if (!request.initialFolder.empty()) dialog.setDirectory(qt(request.initialFolder));
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return firstSelected(dialog);
}

void QtPrompts::notify(const platform::Notification& notification) {
    std::erase_if(popups_, [](const QPointer<NotificationPopup>& popup) {
        return popup.isNull() || !popup->isVisible();
    });
    int raisedBy = 0;
    for (const auto& popup : popups_) raisedBy += popup->height() + kPopupSpacing;

    // The pop-up belongs to the main window, not to whatever dialog is active: it
    // outlives a box that closes while it is still showing.
    auto* popup = new NotificationPopup(notification, mainWindow_.data());
    popup->present(raisedBy);
    popups_.emplace_back(popup);
}

}  // namespace ovd::ui
