#pragma once
// Keys typed on the terminal of a station run without a window: the terminal is
// put in raw mode (no echo, a key at a time, Ctrl-C still ends the station) and
// what is typed comes out as the station's key codes, so that the hot key can be
// pressed there. The terminal is given back as it was when this ends, which the
// station's orderly ends (Ctrl-C, SIGTERM, File > Exit, the peer's EXIT) all reach.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/event_loop.h"

namespace ovd::devices {

struct TypedKey {
    std::uint16_t code;
    unsigned shiftMask;
    bool operator==(const TypedKey&) const = default;
};

// Terminal bytes into keys: letters, digits, Enter, "`" and "~", and the escape
// sequences of the function, arrow and editing keys. Bytes of a sequence cut
// between two reads wait for the rest.
class TerminalKeyDecoder {
  public:
    std::vector<TypedKey> feed(std::string_view bytes);

  private:
    std::string pending_;
};

class TerminalKeys {
  public:
    TerminalKeys(platform::EventLoop& loop, int fd);
    ~TerminalKeys();
    TerminalKeys(const TerminalKeys&) = delete;
    TerminalKeys& operator=(const TerminalKeys&) = delete;

    // False when the descriptor is no terminal: nothing is read then.
    [[nodiscard]] bool reading() const { return watching_; }

    std::function<void(std::uint16_t, unsigned)> onKey;

  private:
    void readReady();

    platform::EventLoop& loop_;
    int fd_;
    bool watching_ = false;
    bool restored_ = true;
    platform::EventLoop::Handle watch_ = 0;
    std::vector<unsigned char> saved_;  // the terminal's settings before raw mode
    TerminalKeyDecoder decoder_;
};

}  // namespace ovd::devices
