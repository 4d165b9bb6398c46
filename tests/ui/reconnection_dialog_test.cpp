// The reconnection dialog on the desktop: it follows the link's view of it, asks
// with both buttons when the peer can't be reached, and hands the buttons back.

#include "ui/reconnection_dialog.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>

#include "support/loopback_peer.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "ui/qt_event_loop.h"

namespace ovd::ui {
namespace {

TEST(ReconnectionDialogTest, AsksWithBothButtonsAndOkClosesItKeepingTheQueue) {
    ovd::testing::TempFolder folder;
    QtEventLoop loop;
    settings::ConfigFile config(folder.path());
    settings::EventLog log(loop, folder.path(), config.record);
    ovd::testing::ScriptedPrompts prompts;
    config.record.TCP = true;
    config.record.TCPIP = "127.0.0.1";
    config.record.TCPPort = std::to_string(ovd::testing::unusedLoopbackPort());
    config.record.TCPDelay = 0;
    delivery::PeerLink link({loop, config, log, prompts, ovd::testing::unusedLoopbackPort()});
    QWidget mainWindow;
    mainWindow.move(200, 150);
    mainWindow.show();
    auto* dialog = new ReconnectionDialogWindow(link, &mainWindow);
    link.onDialogChanged = [dialog] { dialog->render(); };

    EXPECT_FALSE(link.send({"LOADED_AB0001.WAV", " -58"}));
    link.timShowTCPError_Timer();
    ASSERT_TRUE(dialog->isVisible());
    EXPECT_EQ(dialog->windowTitle(), "TCP ReConnection");
    EXPECT_EQ(dialog->windowModality(), Qt::ApplicationModal);
    EXPECT_EQ(dialog->waitText()->text(), "** CAN NOT CONNECT TO SERVER **");
    EXPECT_TRUE(dialog->okButton()->isVisible());
    EXPECT_TRUE(dialog->connectButton()->isVisible());

    dialog->okButton()->click();
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(link.queued(), std::vector<std::string>{"LOADED_AB0001.WAV"});
}

}  // namespace
}  // namespace ovd::ui
