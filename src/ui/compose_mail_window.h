#pragma once
// frmAutoSendEmail on screen: the compose window with its tool bar, the
// receiver, copies, subject, plain or styled text, attachments and a status bar
// that follows each recipient. The rules live in mail::ComposeForm; sending runs
// off the window's thread and reports back through the window's own loop.

#include <QDialog>
#include <memory>

#include "mail/compose_form.h"
#include "ui/qt_event_loop.h"

class QAction;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QProgressBar;
class QStackedWidget;
class QToolBar;

namespace ovd::ui {

class ComposeMailWindow : public QDialog {
  public:
    ComposeMailWindow(const settings::CompanyRecords& records, platform::Prompts& prompts,
                      QWidget* parent = nullptr);
    ~ComposeMailWindow() override;

    [[nodiscard]] mail::ComposeForm& form() { return *form_; }
    // A tool bar entry by its key ("SendMessage", "id_FileAttach"); null if none.
    [[nodiscard]] QAction* toolKey(const std::string& key) const;
    void render();

  private:
    void take();
    QAction* addKey(QToolBar* bar, const char* key, const QString& text);

    QtEventLoop loop_;
    const settings::CompanyRecords& records_;
    platform::Prompts& prompts_;
    std::unique_ptr<mail::ComposeForm> form_;
    QComboBox* receiver_ = nullptr;
    QLineEdit* cc_ = nullptr;
    QLineEdit* bcc_ = nullptr;
    QLineEdit* subject_ = nullptr;
    QComboBox* priority_ = nullptr;
    QComboBox* charset_ = nullptr;
    QComboBox* encoding_ = nullptr;
    QComboBox* format_ = nullptr;
    QLabel* formatLabel_ = nullptr;
    QStackedWidget* bodies_ = nullptr;
    QPlainTextEdit* plain_ = nullptr;
    QPlainTextEdit* styled_ = nullptr;
    QComboBox* attachments_ = nullptr;
    QLabel* status_ = nullptr;
    QProgressBar* progress_ = nullptr;
    std::vector<std::pair<std::string, QAction*>> keys_;
    bool rendering_ = false;
};

// Opens the window modal over the parent and returns when it closes.
void showComposeMailWindow(QWidget* parent, const std::string& dataFolder,
                           platform::Prompts& prompts);
void showMailOptionsWindow(QWidget* parent, const std::string& dataFolder,
                           platform::Prompts& prompts);

}  // namespace ovd::ui
