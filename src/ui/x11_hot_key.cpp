#include "ui/x11_hot_key.h"

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/keysym.h>

#include <array>
#include <cstdlib>

namespace ovd::ui {

namespace {

struct KeyPair {
    std::uint16_t code;
    unsigned long keysym;
};

// The named keys; RIGHT ARROW carries the up arrow's code, so grabbing it grabs Up.
constexpr std::array<KeyPair, 12> kNamedKeys = {{
    {0x21, XK_Prior},
    {0x22, XK_Next},
    {0x26, XK_Up},
    {0x28, XK_Down},
    {0x25, XK_Left},
    {0x27, XK_Right},
    {0x24, XK_Home},
    {0x23, XK_End},
    {0x2D, XK_Insert},
    {0x2E, XK_Delete},
    {0xC0, XK_grave},
    {0x0D, XK_Return},
}};

// A grab refused by the server (another program holds the key) arrives as an
// error event; it is noted here rather than ending the station.
bool grabRefused = false;
int noteGrabError(Display*, XErrorEvent* error) {
    if (error->error_code == BadAccess) grabRefused = true;
    return 0;
}

Display* asDisplay(void* display) { return static_cast<Display*>(display); }

}  // namespace

unsigned long keysymForKeyCode(std::uint16_t keyCode) {
    if (keyCode >= 0x70 && keyCode <= 0x7B) return XK_F1 + (keyCode - 0x70U);
    if (keyCode >= 'A' && keyCode <= 'Z') return XK_a + (keyCode - 'A');
    if (keyCode >= '0' && keyCode <= '9') return XK_0 + (keyCode - '0');
    for (const KeyPair& pair : kNamedKeys) {
        if (pair.code == keyCode) return pair.keysym;
    }
    return 0;
}

std::uint16_t keyCodeForKeysym(unsigned long keysym) {
    if (keysym >= XK_F1 && keysym <= XK_F12)
        return static_cast<std::uint16_t>(0x70 + (keysym - XK_F1));
    if (keysym >= XK_a && keysym <= XK_z) return static_cast<std::uint16_t>('A' + (keysym - XK_a));
    if (keysym >= XK_A && keysym <= XK_Z) return static_cast<std::uint16_t>('A' + (keysym - XK_A));
    if (keysym >= XK_0 && keysym <= XK_9) return static_cast<std::uint16_t>('0' + (keysym - XK_0));
    if (keysym == XK_asciitilde) return 0xC0;
    for (const KeyPair& pair : kNamedKeys) {
        if (pair.keysym == keysym) return pair.code;
    }
    return 0;
}

X11HotKey::X11HotKey(platform::EventLoop& loop) : loop_(loop) {
    const char* name = std::getenv("DISPLAY");
    if (name == nullptr || *name == '\0') {
        reason_ =
            "there is no X11 display (DISPLAY is not set), so keys can't be heard from "
            "other programs";
        return;
    }
    display_ = XOpenDisplay(nullptr);
    if (display_ == nullptr) {
        reason_ = std::string("the X11 display ") + name +
                  " does not answer, so keys can't be heard from other programs";
        return;
    }
    // A held key repeats as presses only, not as release and press again.
    XkbSetDetectableAutoRepeat(asDisplay(display_), True, nullptr);
    watch_ = loop_.watchFd(ConnectionNumber(asDisplay(display_)), platform::FdEvent::Readable,
                           [this] { readEvents(); });
}

X11HotKey::~X11HotKey() {
    if (display_ == nullptr) return;
    release();
    loop_.unwatchFd(watch_);
    XCloseDisplay(asDisplay(display_));
}

bool X11HotKey::grab(std::uint32_t hookKey) {
    release();
    lastError_.clear();
    if (display_ == nullptr) {
        lastError_ = reason_;
        return false;
    }
    Display* display = asDisplay(display_);
    const unsigned long keysym = keysymForKeyCode(static_cast<std::uint16_t>(hookKey & 0xFFFFU));
    if (keysym == 0) return true;  // the hook was told of no key: nothing to hear
    keycode_ = XKeysymToKeycode(display, keysym);
    if (keycode_ == 0) {
        lastError_ = "the key has no place on this keyboard";
        return false;
    }
    modifiers_ = 0;
    if ((hookKey & 0x10000U) != 0) modifiers_ |= ShiftMask;
    if ((hookKey & 0x20000U) != 0) modifiers_ |= ControlMask;
    if ((hookKey & 0x40000U) != 0) modifiers_ |= Mod1Mask;
    const Window root = DefaultRootWindow(display);
    grabRefused = false;
    XErrorHandler previous = XSetErrorHandler(noteGrabError);
    // The same key with NumLock or CapsLock on is still the key.
    for (const unsigned locks :
         {0U, static_cast<unsigned>(LockMask), static_cast<unsigned>(Mod2Mask),
          static_cast<unsigned>(LockMask | Mod2Mask)}) {
        XGrabKey(display, static_cast<int>(keycode_), modifiers_ | locks, root, True, GrabModeAsync,
                 GrabModeAsync);
    }
    XSync(display, False);
    XSetErrorHandler(previous);
    if (grabRefused) {
        lastError_ = "another program holds the key";
        keycode_ = 0;
        return false;
    }
    return true;
}

void X11HotKey::release() {
    if (display_ == nullptr || keycode_ == 0) return;
    Display* display = asDisplay(display_);
    XUngrabKey(display, static_cast<int>(keycode_), AnyModifier, DefaultRootWindow(display));
    XFlush(display);
    keycode_ = 0;
}

void X11HotKey::readEvents() {
    Display* display = asDisplay(display_);
    while (XPending(display) > 0) {
        XEvent event;
        XNextEvent(display, &event);
        if (event.type != KeyPress) continue;
        const unsigned long keysym = XLookupKeysym(&event.xkey, 0);
        unsigned mask = 0;
        if ((event.xkey.state & ShiftMask) != 0) mask |= 1U;
        if ((event.xkey.state & ControlMask) != 0) mask |= 2U;
        if ((event.xkey.state & Mod1Mask) != 0) mask |= 4U;
        if (onKey) onKey(keyCodeForKeysym(keysym), mask);
    }
}

}  // namespace ovd::ui
