#pragma once
// A real dictation with the real delivery behind its end of letter: two
// destination folders and the e-mail staging on, the companion sender a seam.

#include <functional>

#include "delivery/auto_send.h"
#include "dictation/dictation_fixture.h"
#include "station/delivery_wiring.h"
#include "station/end_of_letter.h"

namespace ovd::station::testing {

// Scripted prompts that let the test act while a box is up.
class ReactingPrompts : public ::ovd::testing::ScriptedPrompts {
  public:
    std::function<void()> whileAsking;
    platform::Answer message(const platform::MessageRequest& request) override {
        if (whileAsking) whileAsking();
        return ScriptedPrompts::message(request);
    }
};

struct CompanionSeam : delivery::CompanionSender {
    int starts = 0;
    [[nodiscard]] bool running() const override { return starts > 0; }
    void start() override { ++starts; }
    void stop() override {}
};

class LetterDeliveryFixture : public dictation::testing::DictationTest {
  protected:
    LetterDeliveryFixture() {
        auto& r = config.record;
        r.AutoSend1 = r.AutoSend2 = true;
        r.SendToOne = folder.file("One");
        r.SendToTwo = folder.file("Two");
        r.AutoEmail = true;
        EXPECT_TRUE(platform::createFolder(r.SendToOne));
        EXPECT_TRUE(platform::createFolder(r.SendToTwo));
    }

    ReactingPrompts boxes;
    delivery::PeerLink link{{loop, config, log, boxes, 0}};
    CompanionSeam companion;
    delivery::AutoSendMenu menu{loop, config.record, companion};
    ViewStatusLines screen{d()};
    delivery::AutoSend pipeline{
        {loop, config, log, boxes, link, voice, menu, companion, screen, ""}};
    PipelineDelivery delivery{pipeline};
    EndOfLetter eol{d(), config, log, loop, voice, delivery};
};

}  // namespace ovd::station::testing
