#include "ui/help_window.h"

#include <QFile>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QSplitter>
#include <QTextBrowser>
#include <QTreeWidget>
#include <map>

#include "platform/files.h"

namespace ovd::ui {

namespace {
constexpr const char* kNoTarget = "<UNKNOWN>";
constexpr const char* kTopLevel = "Root";
constexpr int kTargetRole = Qt::UserRole;
}  // namespace

settings::HelpIndex loadHelpIndex(const std::string& dataFolder, const std::string& programFolder,
                                  platform::Prompts& prompts) {
    const settings::CompanyRecords own(dataFolder);
    if (platform::fileExists(own.helpPath())) return settings::readHelpIndex(own, prompts);
    return settings::readHelpIndex(
        settings::CompanyRecords(platform::joinPath(programFolder, "help")), prompts);
}

HelpWindow::HelpWindow(const settings::HelpIndex& index, std::vector<std::string> folders,
                       QWidget* parent)
    : QWidget(parent, Qt::Window), folders_(std::move(folders)) {
    setObjectName("frmHelp");
    setWindowTitle(QString::fromStdString(index.FormTitle));
    auto* row = new QHBoxLayout(this);
    auto* split = new QSplitter(this);
    tree_ = new QTreeWidget(split);
    tree_->setObjectName("TreeView1");
    tree_->header()->hide();
    page_ = new QTextBrowser(split);
    page_->setObjectName("txtLink");
    page_->setOpenExternalLinks(true);
    split->addWidget(tree_);
    split->addWidget(page_);
    split->setSizes({index.ListWidth, 520});
    row->addWidget(split);

    // An entry hangs under the entry whose key its Relative names; an unknown
    // parent puts it at the top rather than losing it.
    std::map<std::string, QTreeWidgetItem*> byKey;
    std::vector<std::pair<const settings::HelpEntry*, QTreeWidgetItem*>> waiting;
    for (const settings::HelpEntry& entry : index.items) {
        auto* item = new QTreeWidgetItem({QString::fromStdString(entry.ListItem)});
        item->setData(0, kTargetRole, QString::fromStdString(entry.ListTarget));
        if (entry.Node == "True") {
            QFont bold = item->font(0);
            bold.setBold(true);
            item->setFont(0, bold);
        }
        if (!entry.Key.empty()) byKey[entry.Key] = item;
        waiting.emplace_back(&entry, item);
    }
    for (const auto& [entry, item] : waiting) {
        const auto parentItem = byKey.find(entry->Relative);
        if (entry->Relative != kTopLevel && parentItem != byKey.end() &&
            parentItem->second != item) {
            parentItem->second->addChild(item);
        } else {
            tree_->addTopLevelItem(item);
        }
    }
    tree_->expandAll();
    connect(tree_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
        if (item != nullptr) showTarget(item->data(0, kTargetRole).toString().toStdString());
    });
    if (tree_->topLevelItemCount() > 0) tree_->setCurrentItem(tree_->topLevelItem(0));
    resize(index.ListWidth + 560, 460);
}

void HelpWindow::showTarget(const std::string& target) {
    if (target.empty() || target == kNoTarget) {
        page_->setPlainText(tr("There is no help text for this topic."));
        return;
    }
    for (const std::string& folder : folders_) {
        const std::string path = platform::joinPath(folder, target);
        if (!platform::fileExists(path)) continue;
        QFile file(QString::fromStdString(path));
        if (!file.open(QIODevice::ReadOnly)) continue;
        const QString text = QString::fromUtf8(file.readAll());
        if (path.ends_with(".html") || path.ends_with(".htm")) {
            page_->setSearchPaths({QString::fromStdString(folder)});
            page_->setHtml(text);
        } else {
            page_->setPlainText(text);
        }
        return;
    }
    page_->setPlainText(QString::fromStdString(target));
}

}  // namespace ovd::ui
