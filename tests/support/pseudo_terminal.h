#pragma once
// A pty pair standing for a serial port: the station opens the slave side as
// its COM port, and the test plays the device by writing to the master side.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <vector>

namespace ovd::testing {

class PseudoTerminal {
  public:
    PseudoTerminal() {
        master_ = ::posix_openpt(O_RDWR | O_NOCTTY);
        if (master_ >= 0 && ::grantpt(master_) == 0 && ::unlockpt(master_) == 0) {
            slavePath_ = ::ptsname(master_);
        }
    }
    ~PseudoTerminal() {
        if (master_ >= 0) ::close(master_);
    }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    [[nodiscard]] const std::string& slavePath() const { return slavePath_; }
    // The byte reaches the slave side a moment after the write, not at once.
    void send(std::uint8_t byte) const {
        ASSERT_EQ(::write(master_, &byte, 1), 1);
        ::tcdrain(master_);
        ::usleep(20000);
    }

    // Many bytes at once, as a noisy line or a burst would bring them.
    void send(const std::vector<std::uint8_t>& bytes) const {
        std::size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t wrote = ::write(master_, bytes.data() + done, bytes.size() - done);
            ASSERT_GT(wrote, 0);
            done += static_cast<std::size_t>(wrote);
        }
        ::tcdrain(master_);
        ::usleep(20000);
    }

  private:
    int master_ = -1;
    std::string slavePath_;
};

}  // namespace ovd::testing
