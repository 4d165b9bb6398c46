#pragma once
// SendOneFile: one staged file to the default FTP site, the way the unattended
// FTP window sends it. The file is enciphered first when the site wants files
// enciphered (the copy is made in a work folder the scan does not look into), and
// goes up quietly through an FtpSession, so the loop runs on while it moves and a
// stop cancels it at once. The connection is kept for the next file of the same
// scan and dropped at its end.

#include <functional>
#include <memory>
#include <string>

#include "autosend/ftp_site.h"
#include "ftp/ftp_client.h"
#include "ftp/ftp_session.h"
#include "platform/event_loop.h"
#include "platform/prompts.h"
#include "platform/result.h"

namespace ovd::autosend {

using ClientFactory =
    std::function<std::unique_ptr<ftp::FtpClient>(const ftp::ConnectionSettings&)>;

class FtpSender {
  public:
    using Done = std::function<void(const platform::Result<void>& outcome)>;

    FtpSender(platform::EventLoop& loop, platform::Prompts& prompts, ClientFactory makeClient);

    // Sends folder/file to the site; `done` runs on the loop with the outcome, whose
    // failure text is what FTPError holds. The work folder takes the enciphered copy.
    void SendOneFile(const FtpSite& site, const std::string& folder, const std::string& file,
                     const std::string& workFolder, Done done);
    // The scan is over: the connection goes.
    void disconnect();
    // Stops a transfer under way; its `done` does not run.
    void cancel();
    [[nodiscard]] bool busy() const { return session_ && session_->busy(); }

  private:
    platform::EventLoop& loop_;
    platform::Prompts& prompts_;
    ClientFactory makeClient_;
    std::unique_ptr<ftp::FtpSession> session_;
    ftp::ConnectionSettings connectedWith_;
};

}  // namespace ovd::autosend
