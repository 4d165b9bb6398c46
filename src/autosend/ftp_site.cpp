#include "autosend/ftp_site.h"

#include "ftp/site_connection.h"
#include "platform/text.h"
#include "settings/delivery_defaults.h"
#include "settings/transcriber_records.h"

namespace ovd::autosend {

platform::Result<FtpSite> defaultFtpSite(const settings::CompanyRecords& records) {
    settings::TranscriberRecord record;
    for (auto& [key, value] : settings::LoadDefaultFTP(records)) record.set(key, value);
    if (platform::trim(record.get("FTPServer")).empty())
        return platform::failure("No default FTP site has been selected.");

    FtpSite site;
    site.connection = ftp::connectionFor(record, records.dataFolder()).settings;
    site.description = platform::trim(record.get("FTPDescription"));
    site.remoteFolder = platform::trim(record.get("FTPUFLMRemotePath"));
    site.encrypt = ftp::recordOptionOn(record.get("FTPEncryptOption"));
    site.key = platform::trim(record.get("FTPEncryptKey"));
    return site;
}

}  // namespace ovd::autosend
