#include "mail/mx_lookup.h"

#include <arpa/inet.h>
#include <arpa/nameser.h>
#include <netinet/in.h>
#include <resolv.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace ovd::mail {

namespace {

using platform::Result;

// One resolver state per look-up: the companion and the window may look up at once.
class Resolver {
  public:
    explicit Resolver(const ResolverSettings& settings) {
        ready_ = ::res_ninit(&state_) == 0;
        if (!ready_ || settings.nameserver.empty()) return;
        sockaddr_in server{};
        server.sin_family = AF_INET;
        server.sin_port = htons(static_cast<std::uint16_t>(settings.port));
        if (::inet_pton(AF_INET, settings.nameserver.c_str(), &server.sin_addr) != 1) {
            ready_ = false;
            return;
        }
        // The given server alone; an address of the machine's list set in the IPv4 slot
        // takes precedence over its IPv6 twin.
        state_.nsaddr_list[0] = server;
        state_.nscount = 1;
        state_.retry = 2;
        state_.retrans = 2;
    }
    ~Resolver() {
        if (ready_) ::res_nclose(&state_);
    }
    Resolver(const Resolver&) = delete;
    Resolver& operator=(const Resolver&) = delete;

    [[nodiscard]] bool ready() const { return ready_; }

    // The answer records of one type; empty when the name has none.
    std::vector<ns_rr> query(const std::string& name, int type, ns_msg& message) {
        answer_.assign(NS_MAXMSG, 0);
        const int length = ::res_nquery(&state_, name.c_str(), ns_c_in, type, answer_.data(),
                                        static_cast<int>(answer_.size()));
        std::vector<ns_rr> records;
        if (length < 0 || ::ns_initparse(answer_.data(), length, &message) != 0) return records;
        for (int i = 0; i < ns_msg_count(message, ns_s_an); ++i) {
            ns_rr record;
            if (::ns_parserr(&message, ns_s_an, i, &record) == 0 && ns_rr_type(record) == type) {
                records.push_back(record);
            }
        }
        return records;
    }

    std::vector<std::string> addresses(const std::string& host) {
        ns_msg message;
        std::vector<std::string> found;
        for (const ns_rr& record : query(host, ns_t_a, message)) {
            if (ns_rr_rdlen(record) != 4) continue;
            char text[INET_ADDRSTRLEN];
            ::inet_ntop(AF_INET, ns_rr_rdata(record), text, sizeof text);
            found.emplace_back(text);
        }
        return found;
    }

  private:
    struct __res_state state_ {};
    bool ready_ = false;
    std::vector<unsigned char> answer_;
};

}  // namespace

Result<std::vector<MailExchanger>> findMailExchangers(const std::string& domain,
                                                      const ResolverSettings& settings) {
    Resolver resolver(settings);
    if (!resolver.ready()) return platform::failure("Can't use the name server for " + domain);
    std::vector<MailExchanger> exchangers;
    ns_msg message;
    for (const ns_rr& record : resolver.query(domain, ns_t_mx, message)) {
        if (ns_rr_rdlen(record) < 3) continue;
        char name[NS_MAXDNAME];
        if (::dn_expand(ns_msg_base(message), ns_msg_end(message), ns_rr_rdata(record) + 2, name,
                        sizeof name) < 0) {
            continue;
        }
        exchangers.push_back({name, static_cast<int>(ns_get16(ns_rr_rdata(record))), {}});
    }
    if (exchangers.empty()) exchangers.push_back({domain, 0, {}});
    std::stable_sort(
        exchangers.begin(), exchangers.end(),
        [](const MailExchanger& a, const MailExchanger& b) { return a.preference < b.preference; });
    for (auto& exchanger : exchangers) exchanger.addresses = resolver.addresses(exchanger.host);
    std::erase_if(exchangers, [](const MailExchanger& e) { return e.addresses.empty(); });
    if (exchangers.empty()) {
        return platform::failure("No mail server found for " + domain);
    }
    return exchangers;
}

}  // namespace ovd::mail
