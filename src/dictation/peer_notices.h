#pragma once
// What the dictation tells the peer station over the TCP link: that a file was
// loaded, that the disk is filling, that a save failed. The link itself (its
// socket, queue and reconnection) lives elsewhere; the dictation only asks
// whether it is on and hands it a message.

#include <string>

namespace ovd::dictation {

class PeerNotices {
  public:
    virtual ~PeerNotices() = default;

    // The link is switched on in the settings.
    [[nodiscard]] virtual bool linkOn() const = 0;
    // Sends the message (CR LF is added by the link) and lets events run for the
    // link's wait, naming waitTag in the pause trace. True when the peer has it;
    // false when it was kept for a later reconnection.
    virtual bool send(const std::string& message, const std::string& waitTag) = 0;
};

}  // namespace ovd::dictation
