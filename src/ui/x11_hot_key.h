#pragma once
// The hot key heard from every program ("System"): a passive grab of the key on
// the X server's root window, in each of its NumLock and CapsLock states, on a
// connection of its own that the station's loop watches. Without an X server (a
// Wayland session without XWayland, a console) there is nothing to grab, and the
// reason says so.

#include <cstdint>
#include <functional>
#include <string>

#include "platform/event_loop.h"

namespace ovd::ui {

class X11HotKey {
  public:
    explicit X11HotKey(platform::EventLoop& loop);
    ~X11HotKey();
    X11HotKey(const X11HotKey&) = delete;
    X11HotKey& operator=(const X11HotKey&) = delete;

    // Empty when an X server answers; otherwise why keys can't be heard from
    // other programs.
    [[nodiscard]] const std::string& unavailableReason() const { return reason_; }
    [[nodiscard]] bool available() const { return reason_.empty(); }

    // Grabs the key the hook is told of (the station's key code and 0x10000 Shift,
    // 0x20000 Control, 0x40000 Alt); 0 or an unmappable code grabs nothing. Any
    // earlier grab is let go. False with the reason in lastError().
    bool grab(std::uint32_t hookKey);
    void release();
    [[nodiscard]] const std::string& lastError() const { return lastError_; }

    // A grabbed key went down: the station's key code and the modifiers held
    // (bit 0 Shift, bit 1 Control, bit 2 Alt).
    std::function<void(std::uint16_t, unsigned)> onKey;

  private:
    void readEvents();

    platform::EventLoop& loop_;
    void* display_ = nullptr;  // Display*, kept out of this header
    platform::EventLoop::Handle watch_ = 0;
    unsigned keycode_ = 0;
    unsigned modifiers_ = 0;
    std::string reason_;
    std::string lastError_;
};

// The X keysym of one of the station's key codes, 0 for none; and back.
[[nodiscard]] unsigned long keysymForKeyCode(std::uint16_t keyCode);
[[nodiscard]] std::uint16_t keyCodeForKeysym(unsigned long keysym);

}  // namespace ovd::ui
