// A finished letter leaving the station, on the virtual clock with real folders
// and a real peer on loopback: "copy to three folders; with destination 2 gone,
// the peer hears DICT_ then ERRDST2_ and the author sees the box".

#include "delivery/auto_send.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <optional>

#include "engine/virtual_backend.h"
#include "platform/files.h"
#include "support/loopback_peer.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::delivery {
namespace {

namespace fs = std::filesystem;
using platform::Milliseconds;

// Scripted prompts that let the test act while a box is up, as the author would.
class ReactingPrompts : public testing::ScriptedPrompts {
  public:
    std::function<void(const platform::MessageRequest&)> whileAsking;
    std::vector<platform::Notification> notices;
    platform::Answer message(const platform::MessageRequest& request) override {
        if (whileAsking) whileAsking(request);
        return ScriptedPrompts::message(request);
    }
    void notify(const platform::Notification& notification) override {
        notices.push_back(notification);
        ScriptedPrompts::notify(notification);
    }
};

// The companion is another program: here only whether it was started.
struct CompanionSeam : CompanionSender {
    bool isRunning = false;
    int starts = 0;
    [[nodiscard]] bool running() const override { return isRunning; }
    void start() override {
        ++starts;
        isRunning = true;
    }
    void stop() override { isRunning = false; }
};

struct Screen : DeliveryScreen {
    std::string Label40, lblReady;
    void showStatusText(const std::string& text) override { Label40 = text; }
    void showLblReady(const std::string& text) override { lblReady = text; }
};

class AutoSendTest : public ::testing::Test {
  protected:
    AutoSendTest() {
        auto& r = config.record;
        r.CaptureFilePath = recordings;
        r.AutoSend1 = r.AutoSend2 = r.AutoSend3 = true;
        r.SendToOne = dest[0];
        r.SendToTwo = dest[1];
        r.SendToThree = dest[2];
        r.TCPIP = "127.0.0.1";
        r.TCPPort = peer.portText();
        r.TCPDelay = 0;
        for (const std::string& d : dest) EXPECT_TRUE(platform::createFolder(d));
        EXPECT_TRUE(platform::createFolder(recordings));
        EXPECT_TRUE(platform::writeWholeFile(letter, std::string(40000, 'x')));
    }

    [[nodiscard]] bool logged(const std::string& text) const {
        return log.text().find(text) != std::string::npos;
    }
    [[nodiscard]] std::size_t timesLogged(const std::string& text) const {
        std::size_t count = 0;
        for (std::size_t at = log.text().find(text); at != std::string::npos;
             at = log.text().find(text, at + 1))
            ++count;
        return count;
    }
    [[nodiscard]] std::vector<std::string> boxes() const {
        std::vector<std::string> out;
        for (const auto& shown : prompts.transcript()) {
            if (shown.kind == "message") out.push_back(shown.text);
        }
        return out;
    }
    // Something in the way of the copy: the folder takes no file of that name.
    void blockCopyTo(int n) { fs::create_directory(fs::path(dest[n - 1]) / "AB0001.WAV"); }
    std::string copied(int n) const { return dest[n - 1] + "/AB0001.WAV"; }

    testing::TempFolder folder;
    std::array<std::string, 3> dest = {folder.file("Typist One"), folder.file("Two"),
                                       folder.file("Three")};
    std::string recordings = folder.file("Rec");
    std::string letter = folder.file("Rec/AB0001.WAV");
    testing::VirtualEventLoop loop;
    settings::ConfigFile config{folder.path()};
    settings::EventLog log{loop, folder.path(), config.record};
    ReactingPrompts prompts;
    testing::LoopbackPeer peer;
    PeerLink link{{loop, config, log, prompts, testing::unusedLoopbackPort()}};
    engine::VirtualBackend backend{loop, {}};
    engine::PromptPlayer voice{backend, OVD_TEST_ASSETS "/prompts"};
    CompanionSeam companion;
    AutoSendMenu menu{loop, config.record, companion};
    Screen screen;
    AutoSend pipeline{
        {loop, config, log, prompts, link, voice, menu, companion, screen, "/share/prompts"}};
};

TEST_F(AutoSendTest, ACleanDeliveryReachesEveryFolderAndTheStagingWithoutAWordToThePeer) {
    config.record.TCP = true;
    config.record.AutoEmail = config.record.AutoFTP = true;
    config.record.VoicePrompts = true;
    EXPECT_TRUE(pipeline.deliver(letter));

    for (int n = 1; n <= 3; ++n) EXPECT_EQ(platform::fileSize(copied(n)).valueOr(0), 40000u) << n;
    EXPECT_TRUE(platform::fileExists(recordings + "/EmailTemp/AB0001.WAV"));
    EXPECT_TRUE(platform::fileExists(recordings + "/FTPTemp/AB0001.WAV"));
    EXPECT_TRUE(logged("Destination " + dest[0] + " Successfull : " + copied(1)));
    EXPECT_TRUE(logged(" Pausing = 10 -E"));
    EXPECT_TRUE(logged("AB0001.WAV File is ready to Email"));
    EXPECT_TRUE(logged("AB0001.WAV File is ready to FTP"));
    EXPECT_EQ(screen.Label40, "File is ready to FTP");
    EXPECT_EQ(screen.lblReady, "Sending File to Destination Three");
    EXPECT_TRUE(logged("NO FAILURES"));
    EXPECT_TRUE(peer.receive(0, Milliseconds(100)).empty()) << "a clean delivery is not reported";
    EXPECT_TRUE(prompts.transcript().empty());
    EXPECT_EQ(companion.starts, 1) << "started once, then found running";
    EXPECT_EQ(menu.Caption, "Manually Stop AutoSend");
    // Each copy is confirmed aloud, and the confirmation is waited on a while.
    const std::vector<std::string>& spoken = backend.promptsPlayed();
    ASSERT_EQ(spoken.size(), 3u);
    EXPECT_EQ(fs::path(spoken[2]).filename(), "FileSent3MSG.WAV");
    EXPECT_TRUE(logged(" Pausing = 3 -B"));
    EXPECT_TRUE(logged(" Pausing = 3 -F"));
}

TEST_F(AutoSendTest, AMissingFolderIsBypassedShownInThePopUpAndReportedToThePeer) {
    config.record.TCP = true;
    fs::remove(dest[1]);
    EXPECT_TRUE(pipeline.deliver(letter));

    EXPECT_TRUE(logged("Destination " + dest[1] +
                       " Does NOT Exist or NOT Available-Bypassing step: " + copied(2)));
    ASSERT_EQ(prompts.notices.size(), 1u);
    const platform::Notification& notice = prompts.notices[0];
    EXPECT_EQ(notice.title, "Error Send Notification!");
    EXPECT_EQ(notice.heading, "Error Send File Notification!");
    EXPECT_EQ(notice.body,
              "OVQDUDR Sending Status :       Destination " + dest[1] + " Error: Not Sent");
    EXPECT_EQ(notice.textColor, "#ffffff");
    EXPECT_EQ(notice.backgroundColor, "#200040");
    EXPECT_EQ(notice.backgroundColorEnd, "#100020");
    EXPECT_EQ(notice.soundFile, "/share/prompts/ding.wav");

    EXPECT_EQ(peer.receive(2),
              (std::vector<std::string>{"DICT_AB0001.WAV\r\n", "ERRDST2_AB0001.WAV\r\n"}));
    EXPECT_TRUE(logged("SENDING MSG ERRDST2_AB0001.WAV"));
    EXPECT_TRUE(logged(" AB0001.WAV * TCP MSG SuccessfulLY SENT* ") ||
                logged("DICT_AB0001.WAV * TCP MSG SuccessfulLY SENT* "));
    EXPECT_EQ(boxes(),
              std::vector<std::string>{"SaveFile to True FAILED-- Call Technical support-2"});
    EXPECT_TRUE(logged(" USER CLICKED OK"));
    EXPECT_TRUE(platform::fileExists(copied(3)));
    EXPECT_FALSE(pipeline.DestFailed(2)) << "the flags are cleared after the report";
}

TEST_F(AutoSendTest, AFolderThatRefusesTheCopyTakesTenSecondsAndYesCopiesAgain) {
    blockCopyTo(1);
    const auto started = loop.now();
    platform::WallClock::duration askedAfter{};
    prompts.answerNext(platform::Answer::Yes);
    prompts.whileAsking = [&](const platform::MessageRequest& request) {
        if (request.buttons != platform::Buttons::YesNo) return;
        askedAfter = loop.now() - started;
        fs::remove(copied(1));  // the author clears the way, then says Yes
    };
    EXPECT_TRUE(pipeline.deliver(letter));

    EXPECT_GE(askedAfter, std::chrono::seconds(10));
    ASSERT_FALSE(prompts.transcript().empty());
    const auto& question = prompts.transcript()[0];
    EXPECT_EQ(question.text,
              "File has been sending to Destination 1 for 10 Seconds. Would you like to keep "
              "trying to send?");
    EXPECT_EQ(question.defaultAnswer, platform::Answer::No);
    EXPECT_EQ(platform::fileSize(copied(1)).valueOr(0), 40000u) << "Yes copies the file again";
    EXPECT_EQ(timesLogged(" Pausing = 10 -A"), 2u);
    EXPECT_FALSE(logged("User Selected to wait another 10 Seconds."))
        << "destination one never says so";
    EXPECT_EQ(prompts.transcript().size(), 1u) << "nothing failed in the end: no box";
}

TEST_F(AutoSendTest, NoAtDestinationTwoStillTriesThreeStagesAndMakesNoReport) {
    config.record.TCP = true;
    config.record.AutoEmail = true;
    blockCopyTo(2);
    fs::remove(dest[0]);                    // a failure that would otherwise be reported
    EXPECT_TRUE(pipeline.deliver(letter));  // No is the default answer

    EXPECT_EQ(boxes(), (std::vector<std::string>{"File has been sending to Destination 2 for 10 "
                                                 "Seconds. Would you like to keep trying to send?",
                                                 "File may have not been sent to Destination 2"}));
    EXPECT_TRUE(logged("Destination " + dest[1] + " User Canceled-Bypassing step: " + copied(2) +
                       " * TCP CONNECTION ERROR* "));
    ASSERT_EQ(prompts.notices.size(), 2u);
    EXPECT_EQ(prompts.notices[1].body, "OVQDUDR Sending Status :       Destination " + dest[1] +
                                           ": User Canceled-Bypassing step");
    EXPECT_TRUE(platform::fileExists(copied(3)));
    EXPECT_TRUE(peer.receive(0, Milliseconds(100)).empty());
    EXPECT_FALSE(logged("NO FAILURES"));
    EXPECT_TRUE(platform::fileExists(recordings + "/EmailTemp/AB0001.WAV"));
    EXPECT_FALSE(pipeline.DestFailed(1) || pipeline.DestFailed(2));
}

TEST_F(AutoSendTest, TheNextStepsStopWhenTheLetterIsGoneFromTheSequence) {
    std::string SaveFileNameForSending = letter;
    blockCopyTo(1);
    prompts.whileAsking = [&](const platform::MessageRequest&) { SaveFileNameForSending.clear(); };
    config.record.AutoEmail = true;
    EXPECT_FALSE(pipeline.deliver(SaveFileNameForSending));
    EXPECT_FALSE(platform::fileExists(copied(2)));
    EXPECT_FALSE(platform::folderExists(recordings + "/EmailTemp"));
}

// Every row of the peer's decision table, slips included: which destinations are
// on, which failed, the messages in order, the box, and what is queued instead
// when the peer can't be reached.
struct PeerRowCase {
    std::array<bool, 3> active;
    std::array<bool, 3> failed;
    std::vector<std::string> messages;  // prefix and tag
    std::string box;                    // empty: none
    std::vector<std::string> queued;    // prefixes kept when the peer is away
};

const std::vector<PeerRowCase>& peerRowCases() {
    const bool T = true, F = false;
    static const std::vector<PeerRowCase> cases = {
        {{T, T, T},
         {T, F, F},
         {"DICT_ -H", "ERRDST1_ -I"},
         "SaveFile to True FAILED-- Call Technical support-1",
         {"DICT_", "ERRDST1_"}},
        {{T, T, T},
         {F, T, F},
         {"DICT_ -J", "ERRDST2_ -K"},
         "SaveFile to True FAILED-- Call Technical support-2",
         {"DICT_", "ERRDST2_"}},
        {{T, T, T},
         {F, F, T},
         {"DICTERR_ -O", "ERRDST3_ -P", "ERRDST2_ -Q"},
         "SaveFile to True FAILED-- Call Technical support-3",
         {"DICTERR_", "ERRDST3_", "ERRDST3_"}},
        {{T, T, T},
         {T, T, F},
         {"DICTERR_ -X", "ERRDST1&2_ -Y", "ERRDST1&2_ -Z"},
         "SaveFile to True & True FAILED-- Call Technical support-33",
         {"DICTERR_", "ERRDST1&2_", "ERRDST1&2_"}},
        {{T, T, T},
         {T, F, T},
         {"DICTERR_ -U", "ERRDST1_ -V", "ERRDST2_ -W"},
         "SaveFile to True & True FAILED-- Call Technical support-333",
         {"DICTERR_", "ERRDST1&3_", "ERRDST1&3_"}},
        {{T, T, T},
         {F, T, T},
         {"DICTERR_ -R", "ERRDST1_ -S", "ERRDST2&3_ -T"},
         "SaveFile to True True FAILED-- Call Technical support-3",
         {"DICTERR_", "ERRDST2&3_", "ERRDST2&3_"}},
        {{T, T, T},
         {T, T, T},
         {"DICTERR_ -L", "ERRDST1&2&3_ -M", "ERRDST1&2&3_ -N"},
         "SaveFile to True & True True FAILED-- Call Technical support-3",
         {"DICTERR_", "ERRDST1&2&3_", "ERRDST1&2&3_"}},
        {{T, T, F},
         {T, F, F},
         {"DICT_ -9", "ERRDST1_ -10"},
         "SaveFile to True FAILED-- Call Technical support-1",
         {"DICT_", "ERRDST1_"}},
        {{T, T, F},
         {F, T, F},
         {"DICT_ -11", "ERRDST2_ -12"},
         "SaveFile to True FAILED-- Call Technical support-2",
         {"DICT_", "ERRDST2_"}},
        {{T, T, F},
         {T, T, F},
         {"DICTERR_ -11a", "ERRDST1&2_ -12b", "ERRDST1&2_ -13"},
         "SaveFile to True & True FAILED-- Call Technical support-3",
         {"DICTERR_", "ERRDST1&2_", "ERRDST1&2_"}},
        {{T, F, F},
         {T, F, F},
         {"DICT_ -A2", "ERRDST1_ -A3"},
         "SaveFile to True FAILED-- Call Technical support-4",
         {"DICT_", "ERRDST1_"}},
        {{F, T, F},
         {F, T, F},
         {"DICT_ -A5", "ERRDST2_ -A6"},
         "SaveFile to True FAILED-- Call Technical support-5",
         {"DICT_", "ERRDST2_"}},
        {{F, F, T},
         {F, F, T},
         {"DICT_ -A5", "ERRDST3_ -A6"},
         "SaveFile to True FAILED-- Call Technical support-5",
         {"DICT_", "ERRDST3_"}},
        {{T, F, T},
         {T, F, F},
         {"DICT_ -H", "ERRDST1&3_ -I"},
         "SaveFile to True FAILED-- Call Technical support-1",
         {"DICT_", "ERRDST1_"}},
        {{T, F, T},
         {F, F, T},
         {"DICTERR_ -O", "ERRDST1_ -P", "ERRDST2_ -Q"},
         "SaveFile to True FAILED-- Call Technical support-3",
         {"DICTERR_", "ERRDST1_", "ERRDST2_"}},
        {{T, F, T},
         {T, F, T},
         {"DICTERR_ -L", "ERRDST1_ -M", "ERRDST2_ -N"},
         "SaveFile to True & True FAILED-- Call Technical support-3",
         {"DICTERR_", "ERRDST1_", "ERRDST2_"}},
        {{F, T, T},
         {F, T, T},
         {"DICTERR_ -R", "ERRDST1_ -S", "ERRDST2_ -T"},
         "SaveFile to True True FAILED-- Call Technical support-3",
         {"DICTERR_", "ERRDST1_", "ERRDST2_"}},
        // Combinations the table has no row for say nothing at all.
        {{F, T, T}, {F, T, F}, {}, "", {}},
        {{F, T, T}, {F, F, T}, {}, "", {}},
    };
    return cases;
}

TEST_F(AutoSendTest, EveryRowOfThePeerReportWithItsQueuedTexts) {
    config.record.TCP = true;
    const int deadPort = testing::unusedLoopbackPort();
    for (const PeerRowCase& row : peerRowCases()) {
        for (const bool reachable : {true, false}) {
            SCOPED_TRACE(::testing::Message() << row.box << " reachable " << reachable << " active "
                                              << row.active[0] << row.active[1] << row.active[2]);
            // A peer of its own for each row, so each row's messages stand alone.
            std::optional<testing::LoopbackPeer> rowPeer;
            if (reachable) rowPeer.emplace();
            config.record.TCPPort = reachable ? rowPeer->portText() : std::to_string(deadPort);
            config.record.AutoSend1 = row.active[0];
            config.record.AutoSend2 = row.active[1];
            config.record.AutoSend3 = row.active[2];
            ReactingPrompts rowPrompts;
            PeerLink rowLink{{loop, config, log, rowPrompts, testing::unusedLoopbackPort()}};
            AutoSend rowPipeline{
                {loop, config, log, rowPrompts, rowLink, voice, menu, companion, screen, ""}};
            for (int n = 1; n <= 3; ++n)
                rowPipeline.DestFailed(n) = row.failed[static_cast<std::size_t>(n - 1)];
            const std::size_t logFrom = log.text().size();
            rowPipeline.ReportOutcomeToPeer("AB0001.WAV");

            std::vector<std::string> expected, queued;
            for (const std::string& message : row.messages) {
                const std::string prefix = message.substr(0, message.find(' '));
                expected.push_back(prefix + "AB0001.WAV\r\n");
                EXPECT_NE(
                    log.text().find(" Pausing = 0" + message.substr(message.find(' ')), logFrom),
                    std::string::npos)
                    << message;
            }
            for (const std::string& prefix : row.queued) queued.push_back(prefix + "AB0001.WAV");
            if (reachable) {
                EXPECT_EQ(rowPeer->receive(expected.size(), Milliseconds(500)), expected);
                EXPECT_TRUE(rowLink.queued().empty());
            } else {
                EXPECT_EQ(rowLink.queued(), queued);
            }
            std::vector<std::string> shown;
            for (const auto& box : rowPrompts.transcript()) shown.push_back(box.text);
            EXPECT_EQ(shown, row.box.empty() ? std::vector<std::string>{}
                                             : std::vector<std::string>{row.box});
        }
    }
}

TEST_F(AutoSendTest, MissingFolderBoxesOfThePeerReportNameDestinationTwoForThree) {
    config.record.TCP = true;
    config.record.AutoSend1 = config.record.AutoSend2 = false;
    config.record.SendToThree.clear();
    pipeline.DestFailed(3) = true;
    pipeline.ReportOutcomeToPeer("AB0001.WAV");
    const std::string two =
        "Auto Send Destination 2 has been check marked but a destination folder has not been "
        "defined.";
    ASSERT_FALSE(boxes().empty());
    EXPECT_EQ(boxes()[0], two);

    // The author's own report names destination three as itself.
    prompts.clear();
    pipeline.DestFailed(3) = true;
    pipeline.ReportOutcomeToUser();
    EXPECT_EQ(boxes(), (std::vector<std::string>{"Auto Send Destination 3 has been check marked "
                                                 "but a destination folder has not been defined.",
                                                 " Failed"}));
}

TEST_F(AutoSendTest, TheAuthorsReportListsTheActiveFoldersWithTheirOwnSeparators) {
    struct Case {
        std::array<bool, 3> active, failed;
        std::string box;
    };
    const std::string &a = dest[0], &b = dest[1], &c = dest[2];
    const bool T = true, F = false;
    const std::vector<Case> cases = {
        {{T, T, T}, {F, T, F}, a + " Successful - " + b + " Failed- " + c + " Successful"},
        {{T, T, T}, {T, F, T}, a + " Failed - " + b + " Successful- " + c + " Failed"},
        {{T, T, F}, {T, F, F}, a + " Failed - " + b + " Sucessful"},
        {{T, T, F}, {F, T, F}, a + " Sucessful - " + b + " Failed"},
        {{T, F, T}, {F, F, T}, a + " Successful- " + c + " Failed"},
        {{F, T, T}, {F, T, T}, b + " Failed- " + c + " Failed"},
        {{F, T, F}, {F, T, F}, b + " Failed"},
        {{T, T, T}, {F, F, F}, ""},
        {{F, F, F}, {T, T, T}, ""},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.box);
        prompts.clear();
        config.record.AutoSend1 = one.active[0];
        config.record.AutoSend2 = one.active[1];
        config.record.AutoSend3 = one.active[2];
        for (int n = 1; n <= 3; ++n)
            pipeline.DestFailed(n) = one.failed[static_cast<std::size_t>(n - 1)];
        pipeline.ReportOutcomeToUser();
        EXPECT_EQ(boxes(),
                  one.box.empty() ? std::vector<std::string>{} : std::vector<std::string>{one.box});
    }
}

TEST_F(AutoSendTest, AFailedSendActionKeepsItsFlagForTheNextEndOfLetter) {
    config.record.TCP = true;
    const SendWording wording{
        "File has been sending to Destination Three for 10 Seconds. Would you like to keep trying "
        "to send?",
        "File may have not been sent to Destination Three",
        "Destination " + dest[2] + "  File not in deestination -Bypassing step: " + copied(3),
        "Destination " + dest[2] + ": File not in deestination"};
    blockCopyTo(3);
    pipeline.sendToDestination(3, letter, wording);
    EXPECT_TRUE(logged(wording.missingTrace));
    ASSERT_EQ(prompts.notices.size(), 1u);
    EXPECT_EQ(prompts.notices[0].body, "OVQDUDR Sending Status :       " + wording.missingNotice);
    EXPECT_TRUE(pipeline.DestFailed(3));
    EXPECT_TRUE(peer.receive(0, Milliseconds(100)).empty()) << "a send action makes no report";

    fs::remove(copied(3));
    EXPECT_TRUE(pipeline.deliver(letter));
    EXPECT_EQ(peer.receive(3),
              (std::vector<std::string>{"DICTERR_AB0001.WAV\r\n", "ERRDST3_AB0001.WAV\r\n",
                                        "ERRDST2_AB0001.WAV\r\n"}));
}

TEST_F(AutoSendTest, TheCompanionMenuFollowsTheProcessAndTogglesIt) {
    menu.mnAutoSend_Click();
    EXPECT_EQ(companion.starts, 0) << "nothing to send: the menu does nothing";
    config.record.AutoFTP = config.record.AutoEmail = true;
    menu.mnAutoSend_Click();
    EXPECT_EQ(menu.Caption, "Manually Stop AutoSend");
    EXPECT_TRUE(companion.isRunning);
    menu.mnAutoSend_Click();
    EXPECT_EQ(menu.Caption, "Manually Start AutoSend");
    EXPECT_FALSE(companion.isRunning);
    companion.isRunning = true;  // started from elsewhere
    menu.tmchkAutoSend.setEnabled(true);
    loop.advance(Milliseconds(600));
    EXPECT_EQ(menu.Caption, "Manually Stop AutoSend");
}

}  // namespace
}  // namespace ovd::delivery
