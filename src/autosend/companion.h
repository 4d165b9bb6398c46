#pragma once
// The companion sender's work: it looks through FTPTemp and EmailTemp below the
// recordings folder, with all their sub-folders, and sends each staged file that
// has settled, one at a time; a file sent is deleted, a file that failed stays for
// the next look and the failure goes to the peer or to the error pop-up. It looks
// when a file arrives (inotify) and on a rescan timer, and at nothing else: an
// idle companion sleeps in its loop.

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <thread>

#include "autosend/folder_watch.h"
#include "autosend/ftp_sender.h"
#include "autosend/staged_files.h"
#include "delivery/peer_link.h"
#include "platform/event_loop.h"
#include "platform/prompts.h"
#include "platform/result.h"
#include "platform/timer.h"
#include "settings/config_file.h"
#include "settings/event_log.h"

namespace ovd::autosend {

// The e-mail sender the companion hands a staged file to; sent means the server
// took all of it. Empty when this build has none.
using EmailSend = std::function<platform::Result<void>(const std::string& stagedFile)>;

inline constexpr const char* kEmailNotAvailable =
    "E-mail sending is not available in this build of orvane-autosend: files staged in "
    "EmailTemp wait there";
// The companion's work folder inside FTPTemp; its dot keeps it out of every scan.
inline constexpr const char* kWorkFolder = ".outgoing";
inline constexpr std::chrono::milliseconds kDefaultSettleTime{2000};

struct CompanionParts {
    platform::EventLoop& loop;
    std::string dataFolder;
    // Its record is read again from the data folder at each look: the station
    // changes the settings while the companion runs.
    settings::ConfigFile& config;
    settings::EventLog& log;
    platform::Prompts& prompts;
    delivery::PeerLink& peer;
    ClientFactory makeClient;
    EmailSend sendEmail;
    // Cuts short an e-mail under way (from the loop's thread while it is sent).
    std::function<void()> cancelEmail;
    std::string soundFolder;  // ding.wav of the error pop-up
    std::chrono::milliseconds settleTime = kDefaultSettleTime;
    std::chrono::milliseconds rescanInterval = std::chrono::seconds(60);
};

class Companion {
  public:
    explicit Companion(CompanionParts parts);
    ~Companion();
    Companion(const Companion&) = delete;
    Companion& operator=(const Companion&) = delete;

    // Makes and watches the staging folders and looks through them at once.
    void start();
    // Cancels a transfer under way (its file stays staged) and looks no more.
    void stop();

    // How many looks through the folders have ended, for those who wait on one.
    [[nodiscard]] int looksDone() const { return looksDone_; }
    [[nodiscard]] bool sending() const { return sending_; }

  private:
    enum class Kind { Ftp, Email };
    struct Staged {
        Kind kind;
        std::string folder;
        std::string name;
        FileLook look;
    };

    void lookSoon(std::chrono::milliseconds delay);
    void look();
    // scandirFTP / scandirEmail over one folder, then scansubs over its sub-folders.
    void collect(Kind kind, const std::string& folder, bool& unsettled,
                 std::set<std::string>& seen);
    void sendNext();
    // The next file after the loop has heard of this one, so a stop in between holds.
    void sendNextSoon();
    void sendEmail(const Staged& file);
    void outcome(const Staged& file, const platform::Result<void>& result);
    void letGo(const Staged& file);
    void trace(const std::string& text);
    void watchStaging();
    [[nodiscard]] std::string stagingFolder(Kind kind) const;

    CompanionParts parts_;
    std::string recordings_;
    FtpSender ftp_;
    SettleTracker settle_;
    FolderWatch watch_;
    std::set<std::string> watched_;
    platform::Timer rescan_;
    platform::Timer soon_;
    std::deque<Staged> queue_;
    FtpSite site_;
    bool siteKnown_ = false;
    bool sending_ = false;
    bool lookAgain_ = false;
    bool stopped_ = false;
    int looksDone_ = 0;
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
    // An e-mail goes out on a thread of its own, so a stop is heard while it is sent.
    std::thread emailWorker_;
};

}  // namespace ovd::autosend
