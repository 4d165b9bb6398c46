#include "station/delivery_wiring.h"

namespace ovd::station {

void ViewStatusLines::showStatusText(const std::string& text) {
    d_.view.Label40 = text;
    ++d_.view.revision;
    if (d_.onViewChanged) d_.onViewChanged();
}

void ViewStatusLines::showLblReady(const std::string& text) {
    d_.view.lblReady = text;
    ++d_.view.revision;
    if (d_.onViewChanged) d_.onViewChanged();
}

std::array<platform::Timer*, 5> DictationTimersHold::timers() const {
    return {&d_.timCurPos, &d_.timRecord, &d_.timLight, &d_.timSave, &d_.timLastThreeSecondsCon};
}

void DictationTimersHold::hold() {
    if (held_) return;
    held_ = true;
    const auto all = timers();
    for (std::size_t i = 0; i < all.size(); ++i) {
        were_[i] = all[i]->Enabled();
        all[i]->setEnabled(false);
    }
}

void DictationTimersHold::release() {
    if (!held_) return;
    held_ = false;
    const auto all = timers();
    for (std::size_t i = 0; i < all.size(); ++i) all[i]->setEnabled(were_[i]);
}

}  // namespace ovd::station
