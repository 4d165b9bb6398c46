#pragma once
// The TCP link to the peer program: every message the station has for the peer
// goes out here, one CR LF line on a connection of its own, and the orders the
// peer gives come in on the listener. A message that can't be delivered waits in
// a queue; the reconnection dialog tries again by itself once, then leaves the
// choice to the user. Besides, whenever the peer answers again (the next message
// goes through, or a quiet look every few seconds finds it listening) the queue
// goes out, oldest first, each message once. A peer that can't be reached never
// stops the dictation.

#include <functional>
#include <string>
#include <vector>

#include "delivery/order_listener.h"
#include "delivery/tcp_client.h"
#include "platform/event_loop.h"
#include "platform/prompts.h"
#include "platform/timer.h"
#include "settings/config_file.h"
#include "settings/event_log.h"

namespace ovd::delivery {

inline constexpr const char* kSentTrace = " * TCP MSG SUCESSFULLY SENT* ";
// The delivery report's own spelling of the same line.
inline constexpr const char* kReportSentTrace = " * TCP MSG SuccessfulLY SENT* ";
inline constexpr const char* kConnectionErrorTrace = " * TCP CONNECTION ERROR* ";
// At this count a failed message is no longer kept.
inline constexpr int kQueueSlots = 500;
// How often a waiting queue looks whether the peer listens again.
inline constexpr int kQueueRetryMs = 3000;

// frmTCPReConnection as data: what the dialog shows. The window renders it.
struct ReconnectionDialog {
    static constexpr const char* Caption = "TCP ReConnection";
    static constexpr const char* kTrying = "TCP is Trying To Connect to the Server Please Wait";
    static constexpr const char* kCannotConnect = "** CAN NOT CONNECT TO SERVER **";
    // It stands this far in from the main window's left and top (1,500 twips).
    static constexpr int kOffsetPixels = 100;

    bool loaded = false;
    bool modal = false;
    std::string lblWait;
    bool cmdOKVisible = false;
    bool cmdConnectVisible = false;
    unsigned long revision = 0;
};

// One message for the peer, with the tag of its wait in the trace.
struct PeerMessage {
    PeerMessage(std::string text_, std::string waitTag_, std::string queuedAs_ = {},
                const char* sentTrace_ = kSentTrace)
        : text(std::move(text_)),
          waitTag(std::move(waitTag_)),
          queuedAs(std::move(queuedAs_)),
          sentTrace(sentTrace_) {}

    std::string text;     // without CR LF
    std::string waitTag;  // " -53"...
    // What is kept for the resend when it fails; empty: the text itself.
    std::string queuedAs;
    const char* sentTrace;
};

struct PeerLinkParts {
    platform::EventLoop& loop;
    settings::ConfigFile& config;
    settings::EventLog& log;
    platform::Prompts& prompts;
    int orderPort = kOrderPort;
};

class PeerLink {
  public:
    explicit PeerLink(PeerLinkParts parts);
    PeerLink(const PeerLink&) = delete;
    PeerLink& operator=(const PeerLink&) = delete;

    // The link is switched on in the settings.
    [[nodiscard]] bool linkOn() const { return config_.record.TCP; }

    // Starts the order listener and gives the peer two seconds to come up. False
    // when the port is taken: the user was told, and the program must end.
    [[nodiscard]] bool start();
    void stop();

    // The peer send: a fresh connection, the line, the two waits of TCPDelay, and
    // the verdict of the connection's error text. True when the peer has it;
    // false when it was queued (or dropped, with the queue full).
    bool send(const PeerMessage& message);

    // ---- Reconnection ----
    platform::Timer timShowTCPError;
    // Looks quietly, while messages wait, whether the peer listens again.
    platform::Timer queueRetry;
    void timShowTCPError_Timer();
    void TCPReconnect();
    void okClicked();       // cmdOK_Click
    void connectClicked();  // cmdConnect_Click
    ReconnectionDialog frmTCPReConnection;

    // The queue: slot 1 to TCPFailedCount (slot 0 unused), as the resend reads it.
    [[nodiscard]] std::vector<std::string> queued() const;
    [[nodiscard]] double failedCount() const { return TCPFailedCount; }
    [[nodiscard]] double retries() const { return TCPRetries; }

    // ---- Upward: the station wires these ----
    std::function<void()> onExitOrder;                       // TCPSaysExit
    std::function<void()> onCloseOrder;                      // TCPSaysClose
    std::function<void(const std::string&)> showStatusText;  // showLabel40
    // The main window's timers are held off while the user's reconnection runs.
    std::function<void()> holdTimers;
    std::function<void()> releaseTimers;
    // The dialog's view changed: show, redraw or unload it.
    std::function<void()> onDialogChanged;

  private:
    // Steps 1 to 4 of the peer send: the error text, empty when delivered.
    std::string deliver(const std::string& text, const std::string& waitTag);
    // A connection alone, to see whether the peer answers: the error text.
    std::string tryConnection(const std::string& waitTag);
    // Sends what waits, oldest first, until one fails: that one and those after it
    // wait on. The error text of the failure, empty when the queue went out.
    std::string sendQueued();
    // The same, with the failure shown and traced as the peer send does.
    void sendQueuedOrTrace();
    // The queue retry's tick: the verdict of the last look, then a new look.
    void queueRetryTick();
    // Takes the first `count` messages off the queue; those queued behind them move up.
    void dropFront(std::size_t count);
    [[nodiscard]] std::size_t queuedCount() const;
    // The link's wait of TCPDelay seconds, traced with the tag.
    void pause(const std::string& tag);
    void queue(const std::string& text);
    // Erases the resent messages from the queue and the count of the user's tries.
    void clearQueue(std::size_t resent);
    void showDialog(bool modal);
    void unloadDialog();
    void orders(const PeerOrders& orders);
    void label40(const std::string& text);
    void trace(const std::string& line);
    [[nodiscard]] std::string lastQueued() const;
    [[nodiscard]] std::string today() const;

    platform::EventLoop& loop_;
    settings::ConfigFile& config_;
    settings::EventLog& log_;
    platform::Prompts& prompts_;
    int orderPort_;
    OrderListener tcpServer;
    TCPClient TCPClient_;
    // The queue retry's own connection: it only looks whether the peer listens.
    TCPClient probe_;
    bool probing_ = false;
    // A message is on its way: the one connection is taken, and a message that comes
    // meanwhile waits in the queue behind it.
    bool sending_ = false;
    double TCPFailedCount = 0;
    std::vector<std::string> TCPFailedMessages;
    double TCPRetries = 0;
    bool TCPCannotConnect = false;
};

}  // namespace ovd::delivery
