#include "dictation/announced_view.h"

namespace ovd::dictation {

namespace {

// The revision is the announcement's own count, not a part of what is shown.
bool sameScreen(const MainView& a, const MainView& b) {
    MainView aligned = b;
    aligned.revision = a.revision;
    return a == aligned;
}

}  // namespace

AnnouncedView::AnnouncedView(platform::EventLoop& loop)
    : loop_(loop), self_(std::make_shared<AnnouncedView*>(this)) {}

AnnouncedView::~AnnouncedView() = default;

MainView& AnnouncedView::edit() {
    // A window that looks at the revision sees the write at once, even before
    // the loop turns and the change is announced.
    ++view_.revision;
    if (!checkPosted_) {
        checkPosted_ = true;
        loop_.postFromAnyThread([weak = std::weak_ptr<AnnouncedView*>(self_)] {
            if (const auto self = weak.lock()) (*self)->announceIfChanged();
        });
    }
    return view_;
}

void AnnouncedView::announceIfChanged() {
    checkPosted_ = false;
    if (sameScreen(view_, announced_)) return;
    announced_ = view_;
    ++announcements_;
    if (onChanged) onChanged();
}

}  // namespace ovd::dictation
