// Voice prompts: only while switched on, from the shipped prompt folder.

#include "engine/prompt_player.h"

#include <gtest/gtest.h>

#include "engine/virtual_backend.h"
#include "platform/files.h"
#include "support/virtual_event_loop.h"

namespace ovd::engine {
namespace {

TEST(PromptPlayerTest, PlaysOnlyWhileSwitchedOnAndEveryNamedPromptShips) {
    testing::VirtualEventLoop loop;
    VirtualBackend backend(loop, {});
    const std::string folder = std::string(OVD_TEST_ASSETS) + "/prompts";
    PromptPlayer player(backend, folder);

    player.PlayPrompt("TwoBeeps.wav", false);
    player.PlayPrompt("", true);
    EXPECT_TRUE(backend.promptsPlayed().empty());

    for (const char* name :
         {"beep2.wav", "Speak.wav", "TwoBeeps.wav", "bloop3.wav", "ding.wav", "complete.wav",
          "FileSent1MSG.WAV", "FileSent2MSG.WAV", "FileSent3MSG.WAV"}) {
        EXPECT_GT(platform::fileSize(player.pathOf(name)).valueOr(0), 44u) << name;
        player.PlayPrompt(name, true);
        EXPECT_EQ(player.LastVoicePrompt(), folder + "/" + name);
    }
    EXPECT_EQ(backend.promptsPlayed().size(), 9u);

    player.PlayPrompt("FileSent2MSG.WAV", true);
    EXPECT_TRUE(backend.promptPlaying());
    loop.advance(platform::Milliseconds(5000));
    EXPECT_FALSE(backend.promptPlaying()) << "a spoken prompt lasts a second or two";
}

}  // namespace
}  // namespace ovd::engine
