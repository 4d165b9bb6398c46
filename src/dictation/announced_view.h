#pragma once
// The view model as the window sees it, with one door for writing: edit(). Every
// write marks the view and moves its revision on, and once per loop turn a
// marked view is compared with the one last announced; when it differs,
// onChanged fires. The window redraws on that signal alone, so a write that went round it
// would leave a stale screen: there is no other way to write.

#include <functional>
#include <memory>

#include "dictation/main_view.h"
#include "platform/event_loop.h"

namespace ovd::dictation {

class AnnouncedView {
  public:
    explicit AnnouncedView(platform::EventLoop& loop);
    ~AnnouncedView();
    AnnouncedView(const AnnouncedView&) = delete;
    AnnouncedView& operator=(const AnnouncedView&) = delete;

    [[nodiscard]] const MainView& read() const { return view_; }
    // The view to change; the change is announced at the end of the loop turn.
    MainView& edit();

    // The view differs from the one last announced; the window redraws.
    std::function<void()> onChanged;
    // How many changes have been announced since the start.
    [[nodiscard]] unsigned long announcements() const { return announcements_; }
    // A write waits for its announcement (the loop has not turned since).
    [[nodiscard]] bool announcementDue() const { return checkPosted_; }

  private:
    void announceIfChanged();

    platform::EventLoop& loop_;
    MainView view_;
    MainView announced_;
    bool checkPosted_ = false;
    unsigned long announcements_ = 0;
    // The posted check outlives nothing: it holds only this token's weak side.
    std::shared_ptr<AnnouncedView*> self_;
};

}  // namespace ovd::dictation
