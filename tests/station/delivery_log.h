#pragma once
// The delivery as the end of letter sees it, recording which letters it was handed.

#include <functional>
#include <string>
#include <vector>

#include "station/end_of_letter.h"

namespace ovd::station::testing {

struct DeliveryLog : LetterDelivery {
    std::vector<std::string> delivered;
    std::function<void()> whileDelivering;
    bool deliver(const std::string& path) override {
        delivered.push_back(path);
        if (whileDelivering) whileDelivering();
        return true;
    }
    void destinationNotTried(int, const std::string&) override {}
    void sendToDestination(int, const std::string&, const SendWording&) override {}
    void stageForSending(Staging, const std::string&) override {}
};

}  // namespace ovd::station::testing
