#pragma once
// The delivery and the peer link seen from the dictation: the messages of the
// dictation and the switch model go out over the link, the delivery writes the
// main window's status lines, and the end of letter hands its letter to the
// pipeline. The delivery cannot see the dictation; these small adapters join them.

#include <array>
#include <string>

#include "delivery/auto_send.h"
#include "delivery/peer_link.h"
#include "devices/end_of_letter.h"
#include "dictation/dictation.h"
#include "dictation/peer_notices.h"

namespace ovd::devices {

// Every message the dictation has for the peer goes through the link.
class LinkNotices : public dictation::PeerNotices {
public:
    explicit LinkNotices(delivery::PeerLink& link) : link_(link) {}
    [[nodiscard]] bool linkOn() const override { return link_.linkOn(); }
    bool send(const std::string& message, const std::string& waitTag) override {
        return link_.send({message, waitTag});
    }

private:
    delivery::PeerLink& link_;
};

// The status line and the file label of the main window, as the delivery and the
// link write them.
class ViewStatusLines : public delivery::DeliveryScreen {
public:
    explicit ViewStatusLines(dictation::Dictation& dictation) : d_(dictation) {}
    void showLabel40(const std::string& text) override;
    void showLblReady(const std::string& text) override;

private:
    dictation::Dictation& d_;
};

// The closed letter goes to the pipeline.
class PipelineDelivery : public LetterDelivery {
public:
    explicit PipelineDelivery(delivery::AutoSend& pipeline) : pipeline_(pipeline) {}
    bool deliver(const std::string& SaveFileNameForSending) override {
        return pipeline_.deliver(SaveFileNameForSending);
    }
    void destinationNotTried(int destination, const std::string& notice) override {
        pipeline_.destinationNotTried(destination, notice);
    }
    void sendToDestination(int destination, const std::string& path,
                           const SendWording& wording) override {
        pipeline_.sendToDestination(destination, path, wording);
    }
    void stageForSending(Staging staging, const std::string& path) override {
        pipeline_.stageForSending(staging, path);
    }

private:
    delivery::AutoSend& pipeline_;
};

// The dictation's timers, held off while the user's reconnection to the peer runs
// and given back as they were.
class DictationTimersHold {
public:
    explicit DictationTimersHold(dictation::Dictation& dictation) : d_(dictation) {}
    void hold();
    void release();

private:
    dictation::Dictation& d_;
};

}  // namespace ovd::devices
