#include "support/mail_servers.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

namespace ovd::testing {

namespace {

constexpr const char* kDovecot = "/usr/sbin/dovecot";
constexpr const char* kDnsmasq = "/usr/sbin/dnsmasq";

std::string dovecotConfiguration(const TempFolder& folder, int port, uid_t uid) {
    const std::string root = folder.path();
    return "base_dir = " + root + "/run\n" + "state_dir = " + root + "/state\n" +
           "log_path = " + root + "/dovecot.log\n" +
           "protocols = pop3\nlisten = 127.0.0.1\nssl = no\n"
           "disable_plaintext_auth = no\nauth_mechanisms = plain login\n"
           // A refused login answers at once: the tests wait for no penalty.
           "auth_failure_delay = 0\n"
           "default_login_user = dovenull\ndefault_internal_user = dovecot\n"
           "first_valid_uid = " +
           std::to_string(uid) + "\n" + "mail_location = maildir:" + root + "/mail/%u\n" +
           "passdb {\n  driver = passwd-file\n  args = scheme=PLAIN " + root + "/users\n}\n" +
           "userdb {\n  driver = static\n  args = uid=dovecot gid=dovecot home=" + root +
           "/mail/%u\n}\n" + "service pop3-login {\n  inet_listener pop3 {\n" +
           "    address = 127.0.0.1\n    port = " + std::to_string(port) + "\n  }\n}\n";
}

}  // namespace

Pop3TestServer::Pop3TestServer() {
    const bool loginUser = ::getpwnam("dovenull") != nullptr;
    // getpwnam's answer lives until its next call: this one is read last.
    const passwd* owner = ::getpwnam("dovecot");
    if (::access(kDovecot, X_OK) != 0 || owner == nullptr || !loginUser) {
        error_ = "dovecot is not installed (scripts/install-deps.sh installs dovecot-pop3d)";
        return;
    }
    ::chmod(folder_.path().c_str(), 0755);
    const std::string mail = folder_.file("mail");
    std::filesystem::create_directories(mail);
    if (::chown(mail.c_str(), owner->pw_uid, owner->pw_gid) != 0) {
        error_ = "can't give the mail folder to dovecot (not root?)";
        return;
    }
    std::ofstream(folder_.file("users")) << kUser << ":{PLAIN}" << kPassword << "::::::\n";
    port_ = freeLoopbackPort();
    const std::string config = folder_.file("dovecot.conf");
    std::ofstream(config) << dovecotConfiguration(folder_, port_, owner->pw_uid);
    const std::string output = folder_.file("dovecot.out");
    if (!process_.start({kDovecot, "-F", "-c", config}, output) ||
        !process_.waitUntil([this] { return greets(port_, "+OK"); })) {
        error_ = "dovecot did not start: " + readTextFile(output) + log();
        process_.stop();
    }
}

DnsTestServer::DnsTestServer(const DnsRecords& records) {
    if (::access(kDnsmasq, X_OK) != 0) {
        error_ = "dnsmasq is not installed (scripts/install-deps.sh installs dnsmasq-base)";
        return;
    }
    port_ = freeLoopbackPort(/*udp=*/true);
    std::vector<std::string> arguments = {kDnsmasq,
                                          "--keep-in-foreground",
                                          "--conf-file=/dev/null",
                                          "--port=" + std::to_string(port_),
                                          "--listen-address=127.0.0.1",
                                          "--bind-interfaces",
                                          "--no-resolv",
                                          "--no-hosts",
                                          "--user=root",
                                          "--pid-file=" + folder_.file("dnsmasq.pid"),
                                          "--log-facility=" + folder_.file("dnsmasq.log")};
    for (const auto& mx : records.mx) {
        arguments.push_back("--mx-host=" + mx.domain + "," + mx.exchanger + "," +
                            std::to_string(mx.preference));
    }
    for (const auto& address : records.addresses) {
        arguments.push_back("--host-record=" + address.host + "," + address.ipv4);
    }
    const std::string output = folder_.file("dnsmasq.out");
    const std::string log = folder_.file("dnsmasq.log");
    if (!process_.start(arguments, output) || !process_.waitUntil([&] {
            return readTextFile(log).find("started") != std::string::npos;
        })) {
        error_ = "dnsmasq did not start: " + readTextFile(output) + readTextFile(log);
        process_.stop();
    }
}

}  // namespace ovd::testing
