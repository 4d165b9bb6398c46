#include "ui/hot_key_hook.h"

#include <unistd.h>

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace ovd::ui {

std::uint16_t keyCodeForQtKey(int key) {
    if (key >= Qt::Key_F1 && key <= Qt::Key_F12)
        return static_cast<std::uint16_t>(0x70 + (key - Qt::Key_F1));
    if (key >= Qt::Key_A && key <= Qt::Key_Z) return static_cast<std::uint16_t>(key);
    if (key >= Qt::Key_0 && key <= Qt::Key_9) return static_cast<std::uint16_t>(key);
    switch (key) {
        case Qt::Key_PageUp:
            return 0x21;
        case Qt::Key_PageDown:
            return 0x22;
        case Qt::Key_Up:
            return 0x26;
        case Qt::Key_Down:
            return 0x28;
        case Qt::Key_Left:
            return 0x25;
        case Qt::Key_Right:
            return 0x27;
        case Qt::Key_Home:
            return 0x24;
        case Qt::Key_End:
            return 0x23;
        case Qt::Key_Insert:
            return 0x2D;
        case Qt::Key_Delete:
            return 0x2E;
        case Qt::Key_QuoteLeft:
        case Qt::Key_AsciiTilde:
            return 0xC0;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return 0x0D;
        default:
            return 0;
    }
}

HotKeyHook::HotKeyHook(devices::HotKeys& keys, const settings::SettingsRecord& settings,
                       platform::EventLoop& loop, bool headless)
    : keys_(keys), settings_(settings), loop_(loop), headless_(headless), x11_(loop) {
    x11_.onKey = [this](std::uint16_t code, unsigned mask) { heard(code, mask); };
}

HotKeyHook::~HotKeyHook() {
    if (localOn_ && !headless_ && qApp != nullptr) qApp->removeEventFilter(this);
}

const std::string& HotKeyHook::systemUnavailableReason() const { return x11_.unavailableReason(); }

void HotKeyHook::apply() {
    keys_.CalculateKeyCodes();
    x11_.release();
    terminal_.reset();
    if (localOn_ && !headless_ && qApp != nullptr) qApp->removeEventFilter(this);
    localOn_ = false;
    if (!keys_.hookOn()) return;
    const std::string name = settings_.EOLHotKey.toText();
    if (!devices::hotKeyCode(name) && note)
        note("End of letter hot key \"" + name +
             "\" is not a key of the hot key list; no key is heard");
    const std::uint32_t hookKey =
        devices::HotKeysDefined(settings_.EOLHotKey.toText(), settings_.EOLHotKeyShift.toText());
    if (keys_.systemWide()) {
        if (!x11_.grab(hookKey) && note) {
            note("End of letter hot key " + settings_.EOLHotKey.toText() +
                 " can't be heard from other programs: " + x11_.lastError());
        }
        return;
    }
    // The hook only ever reports the keys it was told of.
    if ((hookKey & 0xFFFFU) == 0) return;
    localOn_ = true;
    if (headless_) {
        terminal_ = std::make_unique<devices::TerminalKeys>(loop_, STDIN_FILENO);
        terminal_->onKey = [this](std::uint16_t code, unsigned mask) { heard(code, mask); };
        if (!terminal_->reading() && note)
            note("End of letter hot key: standard input is no terminal, no keys are read");
        return;
    }
    if (qApp != nullptr) qApp->installEventFilter(this);
}

bool HotKeyHook::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return false;
    // Heard once, where the key is delivered first, and only while one of the
    // station's windows is the active one.
    QWidget* first = QApplication::focusWidget() != nullptr ? QApplication::focusWidget()
                                                            : QApplication::activeWindow();
    if (first == nullptr || watched != first) return false;
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->isAutoRepeat()) return false;
    const std::uint16_t code = keyCodeForQtKey(key->key());
    const std::uint32_t hookKey =
        devices::HotKeysDefined(settings_.EOLHotKey.toText(), settings_.EOLHotKeyShift.toText());
    if (code == 0 || code != (hookKey & 0xFFFFU)) return false;
    unsigned mask = 0;
    if ((key->modifiers() & Qt::ShiftModifier) != 0) mask |= devices::kShiftBit;
    if ((key->modifiers() & Qt::ControlModifier) != 0) mask |= devices::kControlBit;
    if ((key->modifiers() & Qt::AltModifier) != 0) mask |= devices::kAltBit;
    heard(code, mask);
    return false;
}

void HotKeyHook::heard(std::uint16_t code, unsigned mask) { (void)keys_.keyEvent(code, mask); }

}  // namespace ovd::ui
