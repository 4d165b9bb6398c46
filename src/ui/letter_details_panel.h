#pragma once
// The letter's details under the main window's controls: who dictated, the
// priority, the reference, the meeting and the segment. Folded away by default so
// it takes no room from dictating; a click on its heading opens it. A field takes
// effect when the author leaves it, and only while a letter is open.

#include <QWidget>
#include <vector>

class QLineEdit;
class QToolButton;

namespace ovd::dictation {
class Dictation;
}

namespace ovd::ui {

class LetterDetailsPanel : public QWidget {
  public:
    LetterDetailsPanel(dictation::Dictation& dictation, QWidget* parent);

    // The fields show the details of the letter in hand, except the one being typed in.
    void refresh();
    void setOpen(bool open);
    [[nodiscard]] bool isOpen() const;

  private:
    void apply();

    dictation::Dictation& dictation_;
    QToolButton* heading_ = nullptr;
    QWidget* fields_ = nullptr;
    std::vector<QLineEdit*> edits_;  // one per detail key, in the keys' order
};

}  // namespace ovd::ui
