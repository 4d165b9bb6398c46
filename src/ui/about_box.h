#pragma once
// The about box: which product and edition this is, its version, and where it
// keeps its settings and records, which is what support asks first.

#include <QDialog>
#include <string>

namespace ovd::ui {

struct AboutFacts {
    std::string title;  // the edition's title
    std::string version;
    std::string dataFolder;
    std::string recordings;   // CaptureFilePath
    std::string soundSystem;  // what the station records through
};

class AboutBox : public QDialog {
  public:
    AboutBox(const AboutFacts& facts, QWidget* parent = nullptr);
};

}  // namespace ovd::ui
