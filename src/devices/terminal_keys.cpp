#include "devices/terminal_keys.h"

#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace ovd::devices {

namespace {

struct Sequence {
    std::string_view bytes;
    std::uint16_t code;
};

// What terminals send for the keys of the hot key list.
constexpr std::array<Sequence, 28> kSequences = {{
    {"\x1bOP", 0x70},   {"\x1bOQ", 0x71},   {"\x1bOR", 0x72},   {"\x1bOS", 0x73},
    {"\x1b[11~", 0x70}, {"\x1b[12~", 0x71}, {"\x1b[13~", 0x72}, {"\x1b[14~", 0x73},
    {"\x1b[15~", 0x74}, {"\x1b[17~", 0x75}, {"\x1b[18~", 0x76}, {"\x1b[19~", 0x77},
    {"\x1b[20~", 0x78}, {"\x1b[21~", 0x79}, {"\x1b[23~", 0x7A}, {"\x1b[24~", 0x7B},
    {"\x1b[5~", 0x21},  {"\x1b[6~", 0x22},  {"\x1b[A", 0x26},   {"\x1b[B", 0x28},
    {"\x1b[D", 0x25},   {"\x1b[C", 0x27},   {"\x1b[H", 0x24},   {"\x1b[F", 0x23},
    {"\x1b[1~", 0x24},  {"\x1b[4~", 0x23},  {"\x1b[2~", 0x2D},  {"\x1b[3~", 0x2E},
}};
constexpr std::size_t kLongestSequence = 5;

}  // namespace

std::vector<TypedKey> TerminalKeyDecoder::feed(std::string_view bytes) {
    pending_.append(bytes);
    std::vector<TypedKey> keys;
    std::size_t at = 0;
    while (at < pending_.size()) {
        const char byte = pending_[at];
        if (byte == '\x1b') {
            const std::string_view rest(pending_.data() + at, pending_.size() - at);
            bool matched = false;
            bool partial = false;
            for (const Sequence& sequence : kSequences) {
                if (rest.substr(0, sequence.bytes.size()) == sequence.bytes) {
                    keys.push_back({sequence.code, 0});
                    at += sequence.bytes.size();
                    matched = true;
                    break;
                }
                if (rest.size() < sequence.bytes.size() &&
                    sequence.bytes.substr(0, rest.size()) == rest)
                    partial = true;
            }
            if (matched) continue;
            if (partial && rest.size() < kLongestSequence) break;  // the rest comes next
            // Another control sequence (a key not in the list): skipped whole, up to
            // its final byte, so that none of its bytes reads as a typed key.
            if (rest.size() >= 2 && rest[1] == '[') {
                std::size_t end = 2;
                while (end < rest.size() && (rest[end] < 0x40 || rest[end] > 0x7E)) ++end;
                if (end == rest.size()) break;  // its end comes next
                at += end + 1;
                continue;
            }
            ++at;  // a lone escape
            continue;
        }
        ++at;
        if (byte >= 'a' && byte <= 'z') {
            keys.push_back({static_cast<std::uint16_t>(byte - 'a' + 'A'), 0});
        } else if (byte >= 'A' && byte <= 'Z') {
            keys.push_back({static_cast<std::uint16_t>(byte), 1U});
        } else if (byte >= '0' && byte <= '9') {
            keys.push_back({static_cast<std::uint16_t>(byte), 0});
        } else if (byte == '\r' || byte == '\n') {
            keys.push_back({0x0D, 0});
        } else if (byte == '`') {
            keys.push_back({0xC0, 0});
        } else if (byte == '~') {
            keys.push_back({0xC0, 1U});
        }
    }
    pending_.erase(0, at);
    return keys;
}

TerminalKeys::TerminalKeys(platform::EventLoop& loop, int fd) : loop_(loop), fd_(fd) {
    termios settings{};
    if (::isatty(fd_) == 0 || ::tcgetattr(fd_, &settings) != 0) return;
    saved_.resize(sizeof settings);
    std::memcpy(saved_.data(), &settings, sizeof settings);
    // A key at a time and no echo; signals stay, so Ctrl-C still ends the station.
    settings.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    if (::tcsetattr(fd_, TCSANOW, &settings) != 0) return;
    restored_ = false;
    watch_ = loop_.watchFd(fd_, platform::FdEvent::Readable, [this] { readReady(); });
    watching_ = true;
}

TerminalKeys::~TerminalKeys() {
    if (watching_) loop_.unwatchFd(watch_);
    if (!restored_) {
        termios settings{};
        std::memcpy(&settings, saved_.data(), sizeof settings);
        (void)::tcsetattr(fd_, TCSANOW, &settings);
    }
}

void TerminalKeys::readReady() {
    std::array<char, 64> buffer{};
    const ssize_t got = ::read(fd_, buffer.data(), buffer.size());
    if (got <= 0) {
        if (got < 0 && (errno == EINTR || errno == EAGAIN)) return;
        // The terminal went away: no more keys from it.
        loop_.unwatchFd(watch_);
        watching_ = false;
        return;
    }
    for (const TypedKey& key :
         decoder_.feed(std::string_view(buffer.data(), static_cast<std::size_t>(got)))) {
        if (onKey) onKey(key.code, key.shiftMask);
    }
}

}  // namespace ovd::devices
