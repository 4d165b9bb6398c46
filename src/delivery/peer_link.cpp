#include "delivery/peer_link.h"

#include <ctime>

#include "platform/waiting.h"

namespace ovd::delivery {

namespace {
constexpr const char* kLineEnd = "\r\n";
constexpr const char* kResendErrorTrace = " * 2-TCP CONNECTION ERROR* ";
constexpr const char* kNowConnected = "TCP Now Connected";
}  // namespace

PeerLink::PeerLink(PeerLinkParts parts)
    : timShowTCPError(parts.loop, "timShowTCPError", 100),
      loop_(parts.loop),
      config_(parts.config),
      log_(parts.log),
      prompts_(parts.prompts),
      orderPort_(parts.orderPort),
      tcpServer(parts.loop, [this](const std::string& line) { trace(line); }),
      TCPClient_(parts.loop),
      TCPFailedMessages(kQueueSlots + 1) {
    timShowTCPError.setOnTick([this] { timShowTCPError_Timer(); });
    tcpServer.peerAddress = [this] { return config_.record.TCPIP; };
    tcpServer.onOrders = [this](const PeerOrders& found) { orders(found); };
}

void PeerLink::trace(const std::string& line) { log_.trace(line); }

void PeerLink::label40(const std::string& text) {
    if (showLabel40) showLabel40(text);
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
    std::string reason;
    if (!tcpServer.listen(orderPort_, reason)) {
        const std::string text = "Error starting Port: " + std::string(" ") + std::to_string(orderPort_) +
                                 " -Server listener. Port already in use. Program will end";
        prompts_.showMessage(text, settings::kProductTitle, platform::Severity::Critical);
        trace(text);
        trace("Order listener: " + reason);
        return false;
    }
    trace("TCP order listener on port " + std::to_string(orderPort_) + ", peer " +
          config_.record.TCPIP + ":" + config_.record.TCPPort);
    // The peer comes up beside the station: it is given a moment before the first message.
    platform::pauseWithTrace(loop_, [this](const std::string& line) { trace(line); }, 2, " -62 On Load");
    return true;
}

void PeerLink::stop() {
    timShowTCPError.setEnabled(false);
    tcpServer.close();
    TCPClient_.CloseSocKet();
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
    platform::pauseWithTrace(loop_, [this](const std::string& line) { trace(line); },
                             config_.record.TCPDelay, tag);
}

std::string PeerLink::tryConnection(const std::string& waitTag) {
    TCPClient_.CloseSocKet();
    TCPClient_.OpenSocket(config_.record.TCPIP, config_.record.TCPPort);
    pause(waitTag);
    return TCPClient_.LastError();
}

std::string PeerLink::deliver(const std::string& text, const std::string& waitTag) {
    TCPClient_.CloseSocKet();
    TCPClient_.OpenSocket(config_.record.TCPIP, config_.record.TCPPort);
    pause(" -53 Opening Socket");
    TCPClient_.Send(text + kLineEnd);
    pause(waitTag);
    return TCPClient_.LastError();
}

bool PeerLink::send(const PeerMessage& message) {
    const std::string error = deliver(message.text, message.waitTag);
    if (error.empty()) {
        trace(today() + " " + message.text + message.sentTrace);
        label40(error);
        return true;
    }
    label40(error);
    trace(error);
    trace("MSG NOT SENT " + message.text + kConnectionErrorTrace);
    queue(message.queuedAs.empty() ? message.text : message.queuedAs);
    // A dialog already open means the user knows: the message only waits.
    if (!frmTCPReConnection.loaded) timShowTCPError.setEnabled(true);
    return false;
}

void PeerLink::queue(const std::string& text) {
    TCPFailedCount += 1;
    if (TCPFailedCount < kQueueSlots) {
        TCPFailedMessages[static_cast<std::size_t>(TCPFailedCount)] = text;
    }
}

std::vector<std::string> PeerLink::queued() const {
    const auto kept = static_cast<std::size_t>(std::min<double>(TCPFailedCount, kQueueSlots - 1));
    return {TCPFailedMessages.begin() + 1, TCPFailedMessages.begin() + 1 + static_cast<std::ptrdiff_t>(kept)};
}

std::string PeerLink::lastQueued() const {
    const auto kept = static_cast<std::size_t>(std::min<double>(TCPFailedCount, kQueueSlots - 1));
    return TCPFailedMessages[kept];
}

void PeerLink::clearQueue() {
    std::fill(TCPFailedMessages.begin(), TCPFailedMessages.end(), std::string());
    TCPFailedCount = 0;
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
    timShowTCPError.setEnabled(false);
    showDialog(false);
    const std::string error = tryConnection(" -76");
    if (!error.empty()) {
        unloadDialog();
        TCPCannotConnect = true;
        showDialog(true);
        label40(error);
        trace(error);
        trace(lastQueued() + kResendErrorTrace);
        return;
    }
    unloadDialog();
    // A message that fails again now is not put back: the queue is cleared after.
    for (const std::string& message : queued()) {
        const std::string resent = deliver(message, " -77");
        trace(message + (resent.empty() ? kSentTrace : kResendErrorTrace));
    }
    clearQueue();
}

void PeerLink::cmdOK_Click() {
    trace(" User Selected OK on TCP Comminications Failure message");
    frmTCPReConnection.cmdOKVisible = false;
    frmTCPReConnection.cmdConnectVisible = false;
    unloadDialog();
}

void PeerLink::cmdConnect_Click() {
    frmTCPReConnection.cmdOKVisible = false;
    frmTCPReConnection.cmdConnectVisible = false;
    ++frmTCPReConnection.revision;
    if (onDialogChanged) onDialogChanged();
    TCPReconnect();
}

void PeerLink::TCPReconnect() {
    if (holdTimers) holdTimers();
    const std::string error = tryConnection(" -78");
    if (!error.empty()) {
        TCPRetries += 1;
        label40(error);
        trace(error);
        trace(lastQueued() + "-TCP CONNECTION ERROR* " + " * TRYS =" + platform::formatSeconds(TCPRetries));
        frmTCPReConnection.cmdOKVisible = true;
        frmTCPReConnection.cmdConnectVisible = true;
        ++frmTCPReConnection.revision;
        if (onDialogChanged) onDialogChanged();
    } else {
        for (const std::string& message : queued()) {
            const std::string resent = deliver(message, " -79");
            label40(resent);
            if (resent.empty()) {
                trace(today() + " " + message + kSentTrace);
            } else {
                trace(resent);
                trace("MSG NOT SENT " + message + kConnectionErrorTrace + " * TRYS =" +
                      platform::formatSeconds(TCPRetries));
            }
        }
        prompts_.showMessage(kNowConnected, settings::kProductTitle);
        clearQueue();
        unloadDialog();
    }
    if (releaseTimers) releaseTimers();
}

}  // namespace ovd::delivery
