#pragma once
// The companion sender, orvane-autosend: it delivers what the station stages for
// e-mail and FTP while the station goes on dictating. The station starts it when
// automatic sending is on, and stops it where it must not run and at exit.

#include <memory>
#include <string>
#include <vector>

#include "platform/event_loop.h"
#include "platform/processes.h"
#include "platform/timer.h"
#include "settings/config_file.h"
#include "settings/event_log.h"

namespace ovd::delivery {

// What the delivery needs of the companion: is it running, start it, stop it.
class CompanionSender {
  public:
    virtual ~CompanionSender() = default;
    [[nodiscard]] virtual bool running() const = 0;
    virtual void start() = 0;
    virtual void stop() = 0;
};

class AutoSendCompanion : public CompanionSender {
  public:
    static constexpr const char* kProgramName = "orvane-autosend";

    // binaryFolder: where the station's own program is installed.
    AutoSendCompanion(platform::EventLoop& loop, settings::EventLog& log, std::string binaryFolder,
                      std::string dataFolder);
    ~AutoSendCompanion() override;
    AutoSendCompanion(const AutoSendCompanion&) = delete;
    AutoSendCompanion& operator=(const AutoSendCompanion&) = delete;

    [[nodiscard]] bool installed() const;
    [[nodiscard]] bool running() const override;
    // Starts it unless one runs already; a missing program is logged, not shown.
    void start() override;
    // Asks a running companion to stop; a request that has not ended within a
    // few seconds is logged. The station does not wait for it.
    void stop() override;

  private:
    [[nodiscard]] std::string programPath() const;
    // Holds a started program until it ends, so that its end is collected.
    void keep(std::unique_ptr<platform::ChildProcess> child);

    platform::EventLoop& loop_;
    settings::EventLog& log_;
    std::string binaryFolder_;
    std::string dataFolder_;
    std::vector<std::unique_ptr<platform::ChildProcess>> children_;
};

inline constexpr const char* kManuallyStopAutoSend = "Manually Stop AutoSend";
inline constexpr const char* kManuallyStartAutoSend = "Manually Start AutoSend";

// The menu item mnAutoSend: its caption follows the companion (tmchkAutoSend looks
// twice a second), and a click starts or stops it by hand.
class AutoSendMenu {
  public:
    AutoSendMenu(platform::EventLoop& loop, const settings::SettingsRecord& settings,
                 CompanionSender& companion);

    void mnAutoSend_Click();
    // The caption as the companion stands now.
    void refresh();
    // The companion was just started by the delivery.
    void started();

    std::string Caption = kManuallyStartAutoSend;
    platform::Timer tmchkAutoSend;

  private:
    const settings::SettingsRecord& settings_;
    CompanionSender& companion_;
};

}  // namespace ovd::delivery
