#pragma once
// The host keys of SFTP servers. A server is trusted when its key stands in the
// known-hosts file of the data folder (OpenSSH's format). A server not yet known is
// refused by the unattended sender, which logs the key's fingerprint; a window asks
// the user about that fingerprint once, and a Yes adds the key to the file.

#include <string>

#include "ftp/ftp_client.h"
#include "platform/result.h"

namespace ovd::ftp {

// What a refused login says when the server's key is not in the known-hosts file yet.
inline constexpr const char* kHostKeyNotKnownText = " The server's host key is not known yet: ";

struct HostKey {
    std::string type;         // "ssh-ed25519", "ecdsa-sha2-nistp256", "ssh-rsa"...
    std::string base64;       // the key itself, as known-hosts files hold it
    std::string fingerprint;  // "SHA256:..." as ssh shows it
};

// The key a server's raw key blob is; empty type when the blob can't be read.
HostKey hostKeyFromBlob(const std::string& blob);

// The line the known-hosts file holds for the key: "[host]:port type key", or
// "host type key" on the SSH port.
std::string knownHostsLine(const std::string& host, int port, const HostKey& key);

// Connects to the server just far enough to see its key, and goes no further:
// what a window shows before it asks whether to trust the server.
platform::Result<HostKey> offeredHostKey(const ConnectionSettings& settings);

// The user said Yes to the fingerprint: the key joins the known-hosts file.
platform::Result<void> trustHostKey(const std::string& knownHostsFile, const std::string& host,
                                    int port, const HostKey& key);

}  // namespace ovd::ftp
