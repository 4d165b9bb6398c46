#include "station/delivery_wiring.h"

namespace ovd::station {

void ViewStatusLines::showStatusText(const std::string& text) { d_.showStatus(text); }

void ViewStatusLines::showLblReady(const std::string& text) { d_.showFileLabel(text); }

void DictationTimersHold::hold() { d_.holdTimers(); }

void DictationTimersHold::release() { d_.releaseTimers(); }

}  // namespace ovd::station
