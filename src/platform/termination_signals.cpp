#include "platform/termination_signals.h"

#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace ovd::platform {

namespace {
sigset_t terminationSet() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    sigaddset(&set, SIGHUP);
    return set;
}
}  // namespace

TerminationSignals::TerminationSignals() {
    const sigset_t set = terminationSet();
    if (pthread_sigmask(SIG_BLOCK, &set, nullptr) != 0) return;
    fd_ = signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
}

TerminationSignals::~TerminationSignals() {
    if (fd_ >= 0) ::close(fd_);
    const sigset_t set = terminationSet();
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

int TerminationSignals::take() {
    signalfd_siginfo info{};
    if (fd_ < 0 || ::read(fd_, &info, sizeof info) != static_cast<ssize_t>(sizeof info)) return 0;
    return static_cast<int>(info.ssi_signo);
}

}  // namespace ovd::platform
