#pragma once
// The desktop's prompts: real message boxes, input boxes, file and folder
// choosers, and the passive pop-up. Every window is owned by the main window when
// one is given (or else by whichever window is active), so it stays on top of it.

#include <QPointer>
#include <QStringList>
#include <QWidget>
#include <vector>

#include "platform/prompts.h"

namespace ovd::ui {

class NotificationPopup;

class QtPrompts : public platform::Prompts {
  public:
    explicit QtPrompts(QWidget* mainWindow = nullptr);
    ~QtPrompts() override;
    QtPrompts(const QtPrompts&) = delete;
    QtPrompts& operator=(const QtPrompts&) = delete;

    // The station builds its prompts before its window exists.
    void setMainWindow(QWidget* mainWindow) { mainWindow_ = mainWindow; }

    platform::Answer message(const platform::MessageRequest& request) override;
    std::optional<std::string> input(const platform::InputRequest& request) override;
    std::optional<std::string> chooseFile(const platform::FileRequest& request) override;
    std::optional<std::string> chooseFolder(const platform::FolderRequest& request) override;
    void notify(const platform::Notification& notification) override;

  private:
    [[nodiscard]] QWidget* owner() const;

    QPointer<QWidget> mainWindow_;
    // Pop-ups still on screen, so that a new one stacks above them rather than over them.
    std::vector<QPointer<NotificationPopup>> popups_;
};

// {"Wave Files (*.wav)", "MP3 Files (*.mp3)"}: the chooser's filter list, one entry
// per filter, the patterns in parentheses where the chooser reads them.
QStringList fileFilterList(const std::vector<platform::FileFilter>& filters);

}  // namespace ovd::ui
