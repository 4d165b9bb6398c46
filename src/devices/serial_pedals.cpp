#include "devices/serial_pedals.h"

namespace ovd::devices {

namespace {

constexpr int kDrainReads = 10;

}  // namespace

SerialPedals::SerialPedals(settings::ConfigFile& config, platform::Prompts& prompts,
                           platform::EventLoop& loop, PedalEventSink& sink, PedalHits& hits,
                           const dictation::DictationState& dictation,
                           platform::Timer& timSERStepBACK, SerialPedalsHost& host)
    : config_(config),
      prompts_(prompts),
      host_(host),
      port_(loop),
      // PedalSwap and NOSMARTPEDAL stay false: no setting reaches them, the branches are kept.
      decoder_(config.record, dictation, hits, sink,
               SerialPedalHooks{[&h = host] { return h.pedalInputSilenced(); },
                                [&t = timSERStepBACK] { t.setEnabled(false); }}),
      retryOpen_(loop, "serial port retry", kSerialPortRetryMs) {
    port_.setOnReceive([this] { receive(); });
    port_.setOnLost([this] { portLost(); });
    retryOpen_.setOnTick([this] { retryOpenTick(); });
}

std::string SerialPedals::portName() const { return "COM" + std::to_string(config_.record.Port); }

std::string SerialPedals::programTitle() const {
    return config_.record.HandsFreeEdition ? "Orvane Voice Desk" : "Orvane Station Recorder Desk";
}

bool SerialPedals::comPortChecked(int index) const {
    if (index < 0 || index >= kPortCount) return false;
    return portItemChecked_[static_cast<std::size_t>(index)];
}

void SerialPedals::checkPortItem(int port) {
    for (int i = 0; i < kPortCount; ++i)
        portItemChecked_[static_cast<std::size_t>(i)] = (i == port - 1);
}

platform::Result<void> SerialPedals::openDevice() {
    platform::Result<void> opened =
        port_.open(serialDevicePath(config_.dataFolder(), config_.record.Port));
    if (!opened) lastError_ = SerialError{port_.lastOpenFault(), opened.error()};
    return opened;
}

platform::Result<void> SerialPedals::openAndReset() {
    if (platform::Result<void> opened = openDevice(); !opened) return opened;
    port_.resetPedal();
    return platform::Result<void>::success();
}

void SerialPedals::OpenSerialPedals() {
    if (PortINUse_) return;
    checkPortItem(config_.record.Port);
    if (!port_.isOpen()) {
        if (platform::Result<void> opened = openDevice(); !opened) {
            // The foot pedal menu still offers to reopen the port, as after any
            // refused start.
            PortINUse_ = true;
            retryLater(opened.error());
            return;
        }
    }
    startPedal();
}

void SerialPedals::startPedal() {
    port_.resetPedal();
    host_.clearDeskUnitNotice();
    decoder_.clearLastSerCode();
    // Whatever the pedal sent while powering up is no press.
    for (int i = 0; i < kDrainReads; ++i) (void)port_.readByte();
    OnComm();
}

void SerialPedals::retryLater(const std::string& reason) {
    // A pedal that silently does nothing leaves the author talking to no one:
    // say once which port failed and why, then keep trying without a word.
    if (!retryOpen_.Enabled()) {
        host_.tellSerialPortProblem(kFootPedalPortNotice + portName() + " could not be opened (" +
                                    reason + "); trying it again every " +
                                    std::to_string(kSerialPortRetryMs / 1000) + " seconds");
    }
    retryOpen_.setEnabled(true);
}

void SerialPedals::retryOpenTick() {
    if (!PortINUse_ || port_.isOpen()) {
        stopRetrying();
        return;
    }
    if (!openDevice().ok()) return;
    stopRetrying();
    PortINUse_ = false;
    host_.tellSerialPortOpened(kFootPedalPortNotice + portName() + " is open (" +
                               port_.devicePath() + ")");
    startPedal();
}

void SerialPedals::stopRetrying() { retryOpen_.setEnabled(false); }

void SerialPedals::portLost() {
    SerialError gone{SerialFault::NotAvailable, port_.devicePath() + ": the device went away"};
    lastError_ = gone;
    port_.close();
    PortINUse_ = true;
    retryLater(gone.text);
}

void SerialPedals::CloseSerialPedals() {
    stopRetrying();
    port_.close();
}

void SerialPedals::OnComm() { (void)decoder_.OnComm(port_); }

void SerialPedals::receive() {
    // The handler takes eleven bytes a turn; everything that came is handled now,
    // so that noise on the line never stands between the author's foot and the
    // take. A turn left early keeps the rest for the next arrival.
    while (decoder_.OnComm(port_) && port_.isOpen() && port_.waiting() > 0) {
    }
}

bool SerialPedals::portChangeEndsProgram(int oldPort, const std::string& title) {
    if (config_.record.Port == oldPort) return false;
    const std::string program =
        config_.record.HandsFreeEdition ? "Orvane Voice Desk" : "Orvane Station Recorder";
    platform::MessageRequest question;
    question.text = "You have made a port change. The " + program +
                    " program will now exit, so that the COM port change can take effect";
    question.title = title;
    question.buttons = platform::Buttons::OkCancel;
    question.severity = platform::Severity::Question;
    if (prompts_.message(question) != platform::Answer::Ok) return false;
    config_.WriteConfig();
    host_.endProgram();
    return true;
}

void SerialPedals::reportPortError(SerialFault fault, int oldPort) {
    switch (fault) {
        case SerialFault::NotAvailable:
            checkPortItem(oldPort);
            prompts_.showMessage(kComPortNotAvailableMessage, kComPortErrorTitle,
                                 platform::Severity::Critical);
            return;
        case SerialFault::NotOpen:
            return;
        case SerialFault::InUse:
            prompts_.showMessage(kComPortInUseMessage, programTitle(),
                                 platform::Severity::Critical);
            config_.WriteConfig();
            return;
    }
}

void SerialPedals::ReopenSerialPort(int oldPort) {
    stopRetrying();
    PortINUse_ = false;
    port_.close();
    const std::string title = config_.record.HandsFreeEdition
                                  ? "Orvane Voice Desk COM Port Settings"
                                  : "Orvane Station Recorder COM Port Settings";
    if (portChangeEndsProgram(oldPort, title)) return;
    if (!openAndReset().ok()) reportPortError(port_.lastOpenFault(), oldPort);
}

void SerialPedals::chooseComPort(int index) {
    if (index < 0 || index >= kPortCount) return;
    if (host_.GamePortPedals()) {
        prompts_.showMessage(kGamePortPedalsNeedNoComPort, programTitle());
        return;
    }
    if (host_.USBPedals()) {
        prompts_.showMessage(kUsbPedalsNeedNoComPort, programTitle());
        return;
    }
    stopRetrying();
    port_.close();
    const int oldPort = config_.record.Port;
    config_.record.Port = static_cast<std::int16_t>(index + 1);
    checkPortItem(config_.record.Port);
    const std::string title = config_.record.HandsFreeEdition
                                  ? "Orvane Voice Desk Settngs"
                                  : "Orvane Station Recorder COM Port Settings";
    if (portChangeEndsProgram(oldPort, title)) return;
    // Cancel opens the newly chosen port all the same, and it is kept.
    if (!openAndReset().ok()) {
        reportPortError(port_.lastOpenFault(), oldPort);
        return;
    }
    host_.clearDeskUnitNotice();
    config_.WriteConfig();
}

void SerialPedals::toggleSerialPedals() {
    if (PortINUse_) {
        ReopenSerialPort(config_.record.Port);
        serMenuChecked_ = false;
        return;
    }
    if (!serMenuChecked_) {
        serMenuChecked_ = true;
        host_.uncheckOtherFootPedalMenus();
        config_.record.UserSelectSerial = true;
        host_.showConfigSERFootPedals();
        OpenSerialPedals();
    } else {
        serMenuChecked_ = false;
        config_.record.UserSelectSerial = false;
        CloseSerialPedals();
    }
    config_.WriteConfig();
}

}  // namespace ovd::devices
