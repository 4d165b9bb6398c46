#pragma once
// The main window's menus and its right-click menu. Every entry is there from
// the start; an entry whose window is not part of this build yet is greyed. Check
// marks and the recent files are read again each time a menu opens, since pedals,
// a peer or the desk unit change them behind the window's back.

#include <QObject>
#include <functional>
#include <map>
#include <string>
#include <vector>

class QAction;
class QMenu;

namespace ovd::dictation {
struct MainView;
}

namespace ovd::ui {

class StationWindow;
struct StationWindowParts;

class StationMenus {
  public:
    StationMenus(StationWindow& window, StationWindowParts& parts);

    // The check marks, the greyed entries and File > Reopen as they now stand.
    void refresh(const dictation::MainView& view);
    // The pop-up of a right click on the form.
    [[nodiscard]] QMenu* contextMenu() const { return contextMenu_; }
    // An entry by the control name it stands for ("mnuScanConvert"); null if none.
    [[nodiscard]] QAction* action(const std::string& name) const;

  private:
    void buildFile();
    void buildEdit();
    void buildView();
    void buildConfiguration();
    void buildPedals();
    void buildTools();
    void buildHelp();
    void buildContextMenu();
    void refreshReopen(const dictation::MainView& view);
    void refreshPedals();
    // The hot-key options, modally; the desktop's hook follows what is applied.
    void showHotKeyOptions();
    QAction* add(QMenu* menu, const std::string& name, const QString& text,
                 const std::function<void()>& routine);
    // An entry whose window belongs to a later part of the station.
    QAction* addGreyed(QMenu* menu, const std::string& name, const QString& text);

    StationWindow& window_;
    StationWindowParts& parts_;
    std::map<std::string, QAction*> actions_;
    QMenu* reopen_ = nullptr;
    QMenu* contextMenu_ = nullptr;
    std::vector<std::string> shownReopen_;
    bool reopenShown_ = false;
};

}  // namespace ovd::ui
