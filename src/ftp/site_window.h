#pragma once
// The FTP window worked by hand, as data: a local folder pane, the remote list of
// the site, the status line and the bar, and every command of its tool bar and
// button twins. The Qt window draws the view and hands the user's doings here;
// tests drive it the same way. Transfers go through the session, off the loop's
// thread; quick commands (list, make, delete, rename) use the idle client.

#include <functional>
#include <string>
#include <vector>

#include "ftp/ftp_session.h"
#include "ftp/site_connection.h"
#include "ftp/site_context.h"
#include "platform/event_loop.h"
#include "platform/prompts.h"

namespace ovd::ftp {

// One row of the remote list view `lv`: the first row is always "..".
struct RemoteRow {
    std::string name;
    std::string size;
    std::string date;
    std::string marks;
    bool directory = false;
};

struct FtpWindowView {
    std::string status;   // the status label
    std::string session;  // "Session is Established" or "no Session"
    bool connected = false;
    bool transferring = false;
    int percent = 0;  // the progress bar
    std::string remoteFolder;
    std::vector<RemoteRow> remoteRows;
    std::string localFolder;
    std::vector<std::string> localFiles;
    bool FTPFailed = false;
    std::string FTPError;
};

class FtpSiteWindow {
  public:
    FtpSiteWindow(platform::EventLoop& loop, platform::Prompts& prompts, FtpSession& session,
                  SiteContext site);

    [[nodiscard]] const FtpWindowView& view() const { return view_; }
    [[nodiscard]] const SiteContext& site() const { return site_; }
    // Runs after every change of the view.
    std::function<void()> onChange;
    // Runs when a transfer starts (true) and when it ends (false): the schedule holds
    // its timers meanwhile.
    std::function<void(bool)> onTransferring;

    // Another site or other settings: refused while connected.
    bool changeSite(SiteContext site);
    // The connection as the window will open it (the manual window overrides the
    // record's mode and type with its stored choices).
    void setConnection(const ConnectionSettings& settings) { connection_ = settings; }
    [[nodiscard]] const ConnectionSettings& connection() const { return connection_; }

    void setLocalFolder(const std::string& folder);
    void refreshLocal();
    void selectLocal(std::vector<std::string> names) { selectedLocal_ = std::move(names); }
    void selectRemote(std::vector<std::string> names) { selectedRemote_ = std::move(names); }

    // A tool bar key or its button twin; false for a key this window does not handle
    // (the window itself handles exit, settings, about and the like).
    bool command(const std::string& key);

    void connect(std::function<void(bool)> connected = nullptr);
    void disconnect();
    void refreshRemote();
    // A double click on a row: ".." goes up, a folder is entered.
    void openRemote(const std::string& name);
    void createDirectory();
    void deleteItems(const std::vector<std::string>& names);
    void renameFile(const std::string& name);
    // The files one after the other; the first failure stops the rest.
    void upload(const std::vector<std::string>& localNames);
    void download(const std::vector<std::string>& remoteNames);
    void cancel();

    // For the unattended run, which shares the window's connection and status line.
    void setStatus(const std::string& text);
    void reportFailure(const std::string& error);
    void setPercent(int percent);
    void markConnected(bool connected);

  private:
    // An SFTP server not yet known: its key's fingerprint is shown once, and a Yes
    // trusts it and connects again. True when the question was asked and answered Yes.
    bool trustedOnFirstUse(const platform::Result<void>& refused);
    bool hostKeyJustTrusted_ = false;

    FtpClient* idleClient();
    void changed();
    void uploadNext(std::vector<std::string> names, std::size_t index);
    void downloadNext(std::vector<std::string> names, std::size_t index);
    void transferEnded();
    [[nodiscard]] const RemoteRow* row(const std::string& name) const;

    platform::EventLoop& loop_;
    platform::Prompts& prompts_;
    FtpSession& session_;
    SiteContext site_;
    ConnectionSettings connection_;
    FtpWindowView view_;
    std::vector<std::string> selectedLocal_;
    std::vector<std::string> selectedRemote_;
};

std::vector<RemoteRow> remoteRowsOf(const cDirList& list);

}  // namespace ovd::ftp
