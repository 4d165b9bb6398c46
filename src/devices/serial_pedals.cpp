#include "devices/serial_pedals.h"

namespace ovd::devices {

namespace {

constexpr int kDrainReads = 10;

}  // namespace

SerialPedals::SerialPedals(settings::ConfigFile& config, platform::Prompts& prompts,
                           platform::EventLoop& loop, PedalEventSink& sink, PedalHits& hits,
                           dictation::DictationState& dictation, platform::Timer& timSERStepBACK,
                           SerialPedalsHost& host)
    : config_(config),
      prompts_(prompts),
      host_(host),
      port_(loop),
      // PedalSwap and NOSMARTPEDAL stay false: no setting reaches them, the branches are kept.
      decoder_(config.record, dictation, hits, sink,
               SerialPedalHooks{[&h = host] { return h.pedalInputSilenced(); },
                                [&t = timSERStepBACK] { t.setEnabled(false); }}) {
    port_.setOnReceive([this] { OnComm(); });
}

std::string SerialPedals::programTitle() const {
    return config_.record.HandsFreeEdition ? "Orvane Voice Desk" : "Orvane Station Recorder Desk";
}

bool SerialPedals::mnuComPortItemChecked(int index) const {
    if (index < 0 || index >= kPortCount) return false;
    return portItemChecked_[static_cast<std::size_t>(index)];
}

void SerialPedals::checkPortItem(int port) {
    for (int i = 0; i < kPortCount; ++i)
        portItemChecked_[static_cast<std::size_t>(i)] = (i == port - 1);
}

std::optional<SerialError> SerialPedals::openDevice() {
    auto error = port_.open(serialDevicePath(config_.dataFolder(), config_.record.Port));
    if (error) lastError_ = error;
    return error;
}

std::optional<SerialError> SerialPedals::openAndReset() {
    if (auto error = openDevice()) return error;
    port_.resetPedal();
    return std::nullopt;
}

void SerialPedals::OpenSerialPedals() {
    if (PortINUse_) return;
    checkPortItem(config_.record.Port);
    if (!port_.isOpen()) {
        if (auto error = openDevice()) {
            // A start that finds the port refused says nothing: the foot pedal menu
            // tries again and tells the user then.
            PortINUse_ = true;
            return;
        }
    }
    port_.resetPedal();
    host_.clearLabel17();
    decoder_.clearLastSerCode();
    // Whatever the pedal sent while powering up is no press.
    for (int i = 0; i < kDrainReads; ++i) (void)port_.readByte();
    OnComm();
}

void SerialPedals::CloseSerialPedals() { port_.close(); }

void SerialPedals::OnComm() { decoder_.OnComm(port_); }

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

void SerialPedals::reportPortError(const SerialError& error, int oldPort) {
    switch (error.kind) {
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
    PortINUse_ = false;
    port_.close();
    const std::string title = config_.record.HandsFreeEdition
                                  ? "Orvane Voice Desk COM Port Settings"
                                  : "Orvane Station Recorder COM Port Settings";
    if (portChangeEndsProgram(oldPort, title)) return;
    if (auto error = openAndReset()) reportPortError(*error, oldPort);
}

void SerialPedals::mnuComPortItem(int index) {
    if (index < 0 || index >= kPortCount) return;
    if (host_.GamePortPedals()) {
        prompts_.showMessage(kGamePortPedalsNeedNoComPort, programTitle());
        return;
    }
    if (host_.USBPedals()) {
        prompts_.showMessage(kUsbPedalsNeedNoComPort, programTitle());
        return;
    }
    port_.close();
    const int oldPort = config_.record.Port;
    config_.record.Port = static_cast<std::int16_t>(index + 1);
    checkPortItem(config_.record.Port);
    const std::string title = config_.record.HandsFreeEdition
                                  ? "Orvane Voice Desk Settngs"
                                  : "Orvane Station Recorder COM Port Settings";
    if (portChangeEndsProgram(oldPort, title)) return;
    // Cancel opens the newly chosen port all the same, and it is kept.
    if (auto error = openAndReset()) {
        reportPortError(*error, oldPort);
        return;
    }
    host_.clearLabel17();
    config_.WriteConfig();
}

void SerialPedals::mnuSERFootPedals() {
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
