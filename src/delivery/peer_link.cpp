#include "delivery/peer_link.h"

#include <algorithm>
#include <ctime>
#include <utility>

#include "platform/waiting.h"

namespace ovd::delivery {

namespace {
constexpr const char* kLineEnd = "\r\n";
constexpr const char* kResendErrorTrace = " * 2-TCP CONNECTION ERROR* ";
constexpr const char* kNowConnected = "TCP Now Connected";
constexpr const char* kQueuedResendTag = " -80 Sending Queued Message";
}  // namespace

PeerLink::PeerLink(PeerLinkParts parts)
    : timShowTCPError(parts.loop, "timShowTCPError", 100),
      queueRetry(parts.loop, "queueRetry", kQueueRetryMs),
      loop_(parts.loop),
      config_(parts.config),
      log_(parts.log),
      prompts_(parts.prompts),
      orderPort_(parts.orderPort),
      tcpServer(parts.loop, [this](const std::string& line) { trace(line); }),
      TCPClient_(parts.loop),
      probe_(parts.loop),
      TCPFailedMessages(kQueueSlots + 1) {
    timShowTCPError.setOnTick([this] { timShowTCPError_Timer(); });
    queueRetry.setOnTick([this] { queueRetryTick(); });
    tcpServer.peerAddress = [this] { return config_.record.TCPIP; };
    tcpServer.onOrders = [this](const PeerOrders& found) { orders(found); };
}

void PeerLink::trace(const std::string& line) { log_.trace(line); }

void PeerLink::label40(const std::string& text) {
    if (showStatusText) showStatusText(text);
}

std::string PeerLink::today() const {
    const std::time_t now = platform::WallClock::to_time_t(loop_.now());
    std::tm local{};
    ::localtime_r(&now, &local);
    char text[16];
    std::strftime(text, sizeof text, "%m/%d/%Y", &local);
    return text;
}

bool PeerLink::start() {
    if (const platform::Result<void> listening = tcpServer.listen(orderPort_); !listening) {
        const std::string text = "Error starting Port: " + std::string(" ") +
                                 std::to_string(orderPort_) +
                                 " -Server listener. Port already in use. Program will end";
        prompts_.showMessage(text, settings::kProductTitle, platform::Severity::Critical);
        trace(text);
        trace("Order listener: " + listening.error());
        return false;
    }
    trace("TCP order listener on port " + std::to_string(orderPort_) + ", peer " +
          config_.record.TCPIP + ":" + config_.record.TCPPort);
    // The peer comes up beside the station: it is given a moment before the first message.
    platform::pauseWithTrace(
        loop_, [this](const std::string& line) { trace(line); }, 2, " -62 On Load");
    return true;
}

void PeerLink::stop() {
    timShowTCPError.setEnabled(false);
    queueRetry.setEnabled(false);
    tcpServer.close();
    TCPClient_.closeSocket();
    probe_.closeSocket();
    probing_ = false;
}

void PeerLink::orders(const PeerOrders& found) {
    // Both in one text: the exit first, which ends the program.
    if (found.exit) {
        trace("TCP order EXIT received");
        tcpServer.close();
        if (onExitOrder) onExitOrder();
    }
    if (found.close) {
        trace("TCP order CLOSE received");
        if (onCloseOrder) onCloseOrder();
    }
}

void PeerLink::pause(const std::string& tag) {
    platform::pauseWithTrace(
        loop_, [this](const std::string& line) { trace(line); }, config_.record.TCPDelay, tag);
}

std::string PeerLink::tryConnection(const std::string& waitTag) {
    TCPClient_.closeSocket();
    TCPClient_.OpenSocket(config_.record.TCPIP, config_.record.TCPPort);
    pause(waitTag);
    return TCPClient_.LastError();
}

std::string PeerLink::deliver(const std::string& text, const std::string& waitTag) {
    TCPClient_.closeSocket();
    TCPClient_.OpenSocket(config_.record.TCPIP, config_.record.TCPPort);
    pause(" -53 Opening Socket");
    TCPClient_.Send(text + kLineEnd);
    pause(waitTag);
    return TCPClient_.LastError();
}

bool PeerLink::send(const PeerMessage& message) {
    const std::string kept = message.queuedAs.empty() ? message.text : message.queuedAs;
    if (sending_) {
        // The one connection carries another message right now: this one follows it.
        trace("MSG " + message.text + " waits for the message on its way");
        queue(kept);
        return false;
    }
    sending_ = true;
    const std::string error = deliver(message.text, message.waitTag);
    if (error.empty()) {
        trace(today() + " " + message.text + message.sentTrace);
        label40(error);
        // The peer listens again: what waited follows at once, oldest first. While
        // the reconnection dialog is up, the user deals with the queue.
        if (!frmTCPReConnection.loaded) sendQueuedOrTrace();
        sending_ = false;
        return true;
    }
    sending_ = false;
    label40(error);
    trace(error);
    trace("MSG NOT SENT " + message.text + kConnectionErrorTrace);
    queue(kept);
    // A dialog already open means the user knows: the message only waits.
    if (!frmTCPReConnection.loaded) timShowTCPError.setEnabled(true);
    return false;
}

std::string PeerLink::sendQueued() {
    while (queuedCount() > 0) {
        const std::string message = TCPFailedMessages[1];
        const std::string error = deliver(message, kQueuedResendTag);
        if (!error.empty()) return error;
        trace(today() + " " + message + kSentTrace);
        label40(error);
        dropFront(1);
    }
    return "";
}

void PeerLink::sendQueuedOrTrace() {
    const std::string error = sendQueued();
    if (error.empty()) return;
    label40(error);
    trace(error);
    trace("MSG NOT SENT " + TCPFailedMessages[1] + kConnectionErrorTrace);
}

void PeerLink::queueRetryTick() {
    if (queuedCount() == 0) {
        queueRetry.setEnabled(false);
        probe_.closeSocket();
        probing_ = false;
        return;
    }
    // A message on its way or the reconnection dialog takes the queue along itself.
    if (sending_ || frmTCPReConnection.loaded || timShowTCPError.Enabled()) return;
    if (probing_) {
        const bool listening = probe_.LastError().empty();
        probe_.closeSocket();
        probing_ = false;
        if (listening) {
            sending_ = true;
            sendQueuedOrTrace();
            sending_ = false;
            return;
        }
    }
    // Quietly: a peer that stays away must not fill the event log.
    probe_.OpenSocket(config_.record.TCPIP, config_.record.TCPPort);
    probing_ = true;
}

void PeerLink::queue(const std::string& text) {
    TCPFailedCount += 1;
    if (TCPFailedCount < kQueueSlots) {
        TCPFailedMessages[static_cast<std::size_t>(TCPFailedCount)] = text;
    }
    if (!queueRetry.Enabled()) queueRetry.setEnabled(true);
}

std::size_t PeerLink::queuedCount() const {
    return static_cast<std::size_t>(std::min<double>(TCPFailedCount, kQueueSlots - 1));
}

std::vector<std::string> PeerLink::queued() const {
    return {TCPFailedMessages.begin() + 1,
            TCPFailedMessages.begin() + 1 + static_cast<std::ptrdiff_t>(queuedCount())};
}

std::string PeerLink::lastQueued() const { return TCPFailedMessages[queuedCount()]; }

void PeerLink::dropFront(std::size_t count) {
    const std::size_t kept = queuedCount();
    count = std::min(count, kept);
    std::move(TCPFailedMessages.begin() + 1 + static_cast<std::ptrdiff_t>(count),
              TCPFailedMessages.begin() + 1 + static_cast<std::ptrdiff_t>(kept),
              TCPFailedMessages.begin() + 1);
    std::fill(TCPFailedMessages.begin() + 1 + static_cast<std::ptrdiff_t>(kept - count),
              TCPFailedMessages.end(), std::string());
    // Messages counted past the slots were never kept: they are gone for good.
    TCPFailedCount = static_cast<double>(kept - count);
    if (TCPFailedCount == 0) queueRetry.setEnabled(false);
}

void PeerLink::clearQueue(std::size_t resent) {
    // Only what was resent leaves: a message queued while the resend ran waits on.
    dropFront(resent);
    TCPRetries = 0;
}

void PeerLink::showDialog(bool modal) {
    frmTCPReConnection.loaded = true;
    frmTCPReConnection.modal = modal;
    frmTCPReConnection.lblWait = ReconnectionDialog::kTrying;
    frmTCPReConnection.cmdOKVisible = false;
    frmTCPReConnection.cmdConnectVisible = false;
    if (TCPCannotConnect) {
        frmTCPReConnection.lblWait = ReconnectionDialog::kCannotConnect;
        frmTCPReConnection.cmdOKVisible = true;
        frmTCPReConnection.cmdConnectVisible = true;
        TCPCannotConnect = false;
    }
    ++frmTCPReConnection.revision;
    if (onDialogChanged) onDialogChanged();
}

void PeerLink::unloadDialog() {
    const unsigned long revision = frmTCPReConnection.revision + 1;
    frmTCPReConnection = ReconnectionDialog();
    frmTCPReConnection.revision = revision;
    if (onDialogChanged) onDialogChanged();
}

void PeerLink::timShowTCPError_Timer() {
    // The one connection carries a message right now: the timer comes again after it.
    if (sending_) return;
    timShowTCPError.setEnabled(false);
    sending_ = true;
    showDialog(false);
    const std::string error = tryConnection(" -76");
    if (!error.empty()) {
        unloadDialog();
        TCPCannotConnect = true;
        showDialog(true);
        label40(error);
        trace(error);
        trace(lastQueued() + kResendErrorTrace);
        sending_ = false;
        return;
    }
    unloadDialog();
    // A message that fails again now is not put back: the queue is cleared after.
    const std::vector<std::string> resending = queued();
    for (const std::string& message : resending) {
        const std::string resent = deliver(message, " -77");
        trace(message + (resent.empty() ? kSentTrace : kResendErrorTrace));
    }
    clearQueue(resending.size());
    sending_ = false;
}

void PeerLink::okClicked() {
    trace(" User Selected OK on TCP Comminications Failure message");
    frmTCPReConnection.cmdOKVisible = false;
    frmTCPReConnection.cmdConnectVisible = false;
    unloadDialog();
}

void PeerLink::connectClicked() {
    frmTCPReConnection.cmdOKVisible = false;
    frmTCPReConnection.cmdConnectVisible = false;
    ++frmTCPReConnection.revision;
    if (onDialogChanged) onDialogChanged();
    TCPReconnect();
}

void PeerLink::TCPReconnect() {
    if (holdTimers) holdTimers();
    // A message that comes while the queue goes out waits behind it.
    const bool wasSending = std::exchange(sending_, true);
    const std::string error = tryConnection(" -78");
    if (!error.empty()) {
        TCPRetries += 1;
        label40(error);
        trace(error);
        trace(lastQueued() + "-TCP CONNECTION ERROR* " +
              " * TRYS =" + platform::formatSeconds(TCPRetries));
        frmTCPReConnection.cmdOKVisible = true;
        frmTCPReConnection.cmdConnectVisible = true;
        ++frmTCPReConnection.revision;
        if (onDialogChanged) onDialogChanged();
    } else {
        const std::vector<std::string> resending = queued();
        for (const std::string& message : resending) {
            const std::string resent = deliver(message, " -79");
            label40(resent);
            if (resent.empty()) {
                trace(today() + " " + message + kSentTrace);
            } else {
                trace(resent);
                trace("MSG NOT SENT " + message + kConnectionErrorTrace +
                      " * TRYS =" + platform::formatSeconds(TCPRetries));
            }
        }
        prompts_.showMessage(kNowConnected, settings::kProductTitle);
        clearQueue(resending.size());
        unloadDialog();
    }
    sending_ = wasSending;
    if (releaseTimers) releaseTimers();
}

}  // namespace ovd::delivery
