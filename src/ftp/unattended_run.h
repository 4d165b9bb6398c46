#pragma once
// One unattended run of the automatic FTP window: connect with the site's stored
// settings, send the files of the upload folder by rule (moving each one away once
// it is up, when asked to), fetch the site's files by rule (refusing empty ones,
// deciphering ".enc" files, deleting each from the site once it is down, when asked
// to), play complete.wav, and go away. Every step runs through the session, so the
// window stays responsive; a file that fails stops the run and stays where it was.

#include <functional>
#include <string>
#include <vector>

#include "ftp/site_window.h"

namespace ovd::ftp {

struct RunOutcome {
    bool canceled = false;
    bool complete = true;  // every file of the rules went up (and moved) or came down
    std::vector<std::string> uploaded;
    std::vector<std::string> downloaded;
};

class UnattendedFtpRun {
  public:
    using Finished = std::function<void(const RunOutcome&)>;
    using PlaySound = std::function<void(const std::string& wavePath)>;

    UnattendedFtpRun(FtpSiteWindow& window, FtpSession& session, platform::Prompts& prompts,
                     PlaySound playSound);

    // Refused (false, nothing started) while a run or a transfer is going on.
    bool start(Finished finished);
    // cmdAuto pressed during a run: the transfer stops and the run ends "User canceled".
    void cancel();
    [[nodiscard]] bool running() const { return running_; }

  private:
    void afterConnect(bool connected);
    void uploadNext(std::size_t index);
    void listDownloads();
    void downloadNext(std::size_t index);
    void finish();
    [[nodiscard]] bool stopIfCanceled();
    [[nodiscard]] const SiteContext& site() const { return window_.site(); }

    FtpSiteWindow& window_;
    FtpSession& session_;
    platform::Prompts& prompts_;
    PlaySound playSound_;
    Finished finished_;
    bool running_ = false;
    bool canceled_ = false;
    bool connectedHere_ = false;
    std::vector<std::string> uploads_;
    cDirList downloads_;
    RunOutcome outcome_;
};

}  // namespace ovd::ftp
