#pragma once
// The FTP client on libcurl: plain FTP, or FTP over explicit TLS with the
// server's certificate checked (or pinned by the site).

#include "ftp/curl_client.h"

namespace ovd::ftp {

class CurlFtpClient final : public CurlClient {
  public:
    CurlFtpClient();
};

}  // namespace ovd::ftp
