#pragma once
// The serial pedals as the main window offers them: switched on and off in the
// foot pedal menu, the port chosen in the COM port menu, opened at start when the
// user chose serial pedals, and closed at exit. Owns the port and the decoder; the
// window renders the check marks from here.

#include <array>
#include <optional>
#include <string>

#include "devices/pedal_events.h"
#include "devices/serial_pedal_decoder.h"
#include "devices/serial_port.h"
#include "dictation/dictation_state.h"
#include "platform/event_loop.h"
#include "platform/prompts.h"
#include "platform/timer.h"
#include "settings/config_file.h"

namespace ovd::devices {

inline constexpr const char* kComPortNotAvailableMessage =
    "COM Port not currently available - Configure COM Port and Restart Program or Select "
    "another COM Port.";
inline constexpr const char* kComPortErrorTitle = "COM Port Error";
inline constexpr const char* kComPortInUseMessage =
    "   COM Port in Use!    Please select another COM Port and Restart Program";
inline constexpr const char* kUsbPedalsNeedNoComPort =
    "Your pedals are designed to plug into the USB port on your PC. Therefore, the COM Port "
    "selections shown here are not needed.";
inline constexpr const char* kGamePortPedalsNeedNoComPort =
    "Your pedals are designed to plug into the Game Port (Joystick connector) on your PC. "
    "Therefore, the COM Port selections shown here are not needed.";

// What the serial pedals need of the main window and of the other pedal kinds.
class SerialPedalsHost {
  public:
    virtual ~SerialPedalsHost() = default;
    [[nodiscard]] virtual bool USBPedals() const = 0;
    [[nodiscard]] virtual bool GamePortPedals() const = 0;
    // FormLoading or PedalsBusy.
    [[nodiscard]] virtual bool pedalInputSilenced() const = 0;
    // Serial, USB and game port pedals exclude one another: mnuUSBFootPedals and
    // mnuGAMEFootPedals lose their check marks.
    virtual void uncheckOtherFootPedalMenus() = 0;
    // frmConfigSERFootPedals, modally.
    virtual void showConfigSERFootPedals() = 0;
    virtual void clearDeskUnitNotice() = 0;
    // A port change takes effect at the next start: the program ends here.
    virtual void endProgram() = 0;
    // The pedal's port could not be opened (or went away), with the reason; told
    // once, while the port is tried again quietly.
    virtual void tellSerialPortProblem(const std::string& /*text*/) {}
    // The port tried again is open now and the pedal works.
    virtual void tellSerialPortOpened(const std::string& /*text*/) {}
};

// The start of every word the station says about the pedal's port on its own.
inline constexpr const char* kFootPedalPortNotice = "Foot pedal port ";
// How often a port that could not be opened is tried again.
inline constexpr int kSerialPortRetryMs = 3000;

class SerialPedals {
  public:
    static constexpr int kPortCount = 8;

    SerialPedals(settings::ConfigFile& config, platform::Prompts& prompts,
                 platform::EventLoop& loop, PedalEventSink& sink, PedalHits& hits,
                 const dictation::DictationState& dictation, platform::Timer& timSERStepBACK,
                 SerialPedalsHost& host);

    void OpenSerialPedals();
    void CloseSerialPedals();
    void ReopenSerialPort(int oldPort);
    void chooseComPort(int index);  // mnuComPortItem
    void toggleSerialPedals();      // mnuSERFootPedals
    // The port's receive event; also run once by hand when the port opens.
    void OnComm();

    // The check marks the window renders.
    [[nodiscard]] bool serialPedalsChecked() const { return serMenuChecked_; }
    // At load from UserSelectSerial, and when another pedal kind is switched on.
    void setSerialPedalsChecked(bool checked) { serMenuChecked_ = checked; }
    [[nodiscard]] bool comPortChecked(int index) const;

    [[nodiscard]] bool PortINUse() const { return PortINUse_; }
    [[nodiscard]] bool PortOpen() const { return port_.isOpen(); }
    // The last refusal of the port, with the system's words; for the log.
    [[nodiscard]] const std::optional<SerialError>& lastPortError() const { return lastError_; }
    [[nodiscard]] const SerialPedalDecoder& decoder() const { return decoder_; }
    [[nodiscard]] SerialPort& port() { return port_; }
    // True while a port that could not be opened is tried again.
    [[nodiscard]] bool retrying() const { return retryOpen_.Enabled(); }

  private:
    // New bytes on the port: the handler runs until all are taken.
    void receive();
    // The pedal on an open port: reset, forget the last press, take what came while
    // it powered up, and the handler once.
    void startPedal();
    // The port refused at start or lost: the author is told once, and the port is
    // tried again every few seconds until it opens or the user takes over.
    void retryLater(const std::string& reason);
    void retryOpenTick();
    void stopRetrying();
    void portLost();
    [[nodiscard]] std::string portName() const;
    [[nodiscard]] std::string programTitle() const;
    void checkPortItem(int port);
    // Opens the device of Port; a refusal is also kept as the last port error.
    platform::Result<void> openDevice();
    // Opens the device of Port and resets the pedal.
    platform::Result<void> openAndReset();
    // The port change question; true when the program is ending.
    bool portChangeEndsProgram(int oldPort, const std::string& title);
    // The answer of the port menus to a refusal of the port.
    void reportPortError(SerialFault fault, int oldPort);

    settings::ConfigFile& config_;
    platform::Prompts& prompts_;
    SerialPedalsHost& host_;
    SerialPort port_;
    SerialPedalDecoder decoder_;
    platform::Timer retryOpen_;
    bool PortINUse_ = false;
    bool serMenuChecked_ = false;
    std::array<bool, kPortCount> portItemChecked_{};
    std::optional<SerialError> lastError_;
};

}  // namespace ovd::devices
