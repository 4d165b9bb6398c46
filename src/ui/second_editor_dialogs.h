#pragma once
// The second editor's two small windows: the open file's information (frmInfo)
// and the markers of its document (frmMarkers), where a marked place is gone to,
// added at the cursor or removed.

#include <QDialog>

class QListWidget;
class QLineEdit;

namespace ovd::second_editor {
class SecondEditor;
}

namespace ovd::ui {

class FileInfoDialog : public QDialog {
  public:
    FileInfoDialog(second_editor::SecondEditor& editor, QWidget* parent = nullptr);
};

class MarkersDialog : public QDialog {
  public:
    MarkersDialog(second_editor::SecondEditor& editor, QWidget* parent = nullptr);
    // Lists the markers again, as they now stand.
    void fill();

  private:
    second_editor::SecondEditor& editor_;
    QListWidget* list_ = nullptr;
    QLineEdit* name_ = nullptr;
};

}  // namespace ovd::ui
