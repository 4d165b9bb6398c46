#pragma once
// The help window: a tree of topics on the left, as Help.INI describes it, and
// the text of the chosen topic on the right. A topic's target is a page file
// beside Help.INI or in the program's help folder; any other target is shown as
// it is written.

#include <QWidget>
#include <string>

#include "settings/company_records.h"

class QTextBrowser;
class QTreeWidget;
class QTreeWidgetItem;

namespace ovd::ui {

class HelpWindow : public QWidget {
  public:
    // folders: where Help.INI's targets are looked for, in order.
    HelpWindow(const settings::HelpIndex& index, std::vector<std::string> folders,
               QWidget* parent = nullptr);

    [[nodiscard]] QTreeWidget* tree() const { return tree_; }
    [[nodiscard]] QTextBrowser* page() const { return page_; }

  private:
    void showTarget(const std::string& target);

    std::vector<std::string> folders_;
    QTreeWidget* tree_ = nullptr;
    QTextBrowser* page_ = nullptr;
};

// The help index of a station: Help.INI of the data folder when there is one,
// else the one shipped in the program's folder.
settings::HelpIndex loadHelpIndex(const std::string& dataFolder, const std::string& programFolder,
                                  platform::Prompts& prompts);

}  // namespace ovd::ui
