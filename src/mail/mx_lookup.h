#pragma once
// Direct sending finds the recipient's own mail server the way every mail server
// does: the domain's MX records in order of preference, each with its addresses;
// a domain with no MX record is its own exchanger (its A record).

#include <string>
#include <vector>

#include "platform/result.h"

namespace ovd::mail {

// Which name server answers. Empty: the machine's own resolver. Tests point it at
// a name server of their own on loopback.
struct ResolverSettings {
    std::string nameserver;  // IPv4 address
    int port = 53;
};

struct MailExchanger {
    std::string host;
    int preference = 0;
    std::vector<std::string> addresses;  // IPv4, as text
};

// Lowest preference first; exchangers without an address are left out.
platform::Result<std::vector<MailExchanger>> findMailExchangers(const std::string& domain,
                                                                const ResolverSettings& resolver);

}  // namespace ovd::mail
