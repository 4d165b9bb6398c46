#pragma once
// The SFTP client on libcurl (libssh2 underneath): the same operations and error
// names as the FTP client, over SSH. The server's host key must stand in the
// known-hosts file of the settings, else nothing is sent; the login is by password
// or by a private key file.

#include "ftp/curl_client.h"

namespace ovd::ftp {

class CurlSftpClient final : public CurlClient {
  public:
    CurlSftpClient();
};

}  // namespace ovd::ftp
