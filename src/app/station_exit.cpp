// The ways out of the station and the one unload they all end in.

#include "app/station.h"
#include "dictation/hand_off.h"

namespace ovd::app {

void Station::mnuExit_Click() {
    parts_.log.trace(" User selected File Menu Exit");
    // Unanswered, the link keeps the message for a later reconnection.
    if (peerLink_.linkOn()) {
        parts_.log.timlog.setEnabled(true);
        peerLink_.send({"UserExit_", " -69"});
    }
    parts_.config.WriteConfig();
    KillAllPedals();
    unloadForm();
}

void Station::TCPSaysExit() {
    parts_.config.WriteConfig();
    KillAllPedals();
    unloadForm();
}

void Station::TCPSaysClose() {
    parts_.log.trace("TCPSaysClose");
    parts_.config.WriteConfig();
    dictation::Dictation& d = *dictation_;
    d.state.TCPClose = true;
    d.Image10_Click();
    d.state.TCPClose = false;
    d.Timer28.setEnabled(true);
}

void Station::KillAllPedals() { handsFree_->stop(); }

void Station::unloadForm() {
    // A routine still waiting further down the stack (a save without room, a
    // letter waiting for its file) sees the end coming and lets go.
    dictation_->state.Imclosing = true;
    if (onExit) onExit();
}

void Station::Form_Unload() {
    if (unloaded_) return;
    unloaded_ = true;
    dictation::Dictation& d = *dictation_;
    d.state.Imclosing = true;
    d.tmCommand.setEnabled(false);
    d.Timer28.setEnabled(false);
    d.Timer34.setEnabled(false);
    peerLink_.stop();
    autoSendMenu_.tmchkAutoSend.setEnabled(false);
    companion_.stop();
    if (d.state.FileChanged) d.Image10_Click();
    KillAllPedals();
    parts_.config.record.gNormalShutDown = true;
    parts_.config.WriteConfig();
    dictation::deleteHandOff(parts_.dataFolder);
    parts_.log.trace("Station ended in order");
    parts_.log.SaveEventLog();
}

}  // namespace ovd::app
