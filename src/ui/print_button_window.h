#pragma once
// frmPrintButton: the desk unit's button template on screen and on paper. The
// eight labels stand in two rows of four, as the buttons sit on the unit, each
// with the name of its action; printing draws the same boxes at their real size
// on a system printer or into a PDF file.

#include <QDialog>
#include <array>

class QLabel;
class QPrinter;
class QPushButton;

namespace ovd::settings {
struct SettingsRecord;
}

namespace ovd::ui {

class PrintButtonWindow : public QDialog {
  public:
    PrintButtonWindow(const settings::SettingsRecord& record, QWidget* parent);

    [[nodiscard]] QLabel* buttonLabel(int index) const;  // BUT1 .. BUT8, from 0
    [[nodiscard]] QPushButton* printButton() const { return print_; }

    // Draws the template on the printer's page.
    void printOn(QPrinter& printer) const;
    // Prints into a PDF file; false when the file could not be written.
    [[nodiscard]] bool printToPdf(const QString& path) const;

  private:
    std::array<QLabel*, 8> labels_{};
    std::array<QString, 8> texts_;
    QPushButton* print_ = nullptr;
};

}  // namespace ovd::ui
