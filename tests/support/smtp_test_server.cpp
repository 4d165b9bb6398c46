#include "support/smtp_test_server.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>

namespace ovd::testing {

namespace {

constexpr const char* kPython = "/usr/bin/python3";

std::string messagesFolder(const TempFolder& folder) { return folder.file("received"); }

}  // namespace

SmtpTestServer::SmtpTestServer(SmtpTestOptions options) {
    namespace fs = std::filesystem;
    if (::access(kPython, X_OK) != 0) {
        error_ = "python3 is not installed (scripts/install-deps.sh installs it)";
        return;
    }
    fs::create_directories(messagesFolder(folder_));
    std::vector<std::string> arguments = {kPython, OVD_TEST_SUPPORT_DIR "/smtp_server.py",
                                          "--folder", messagesFolder(folder_)};
    if (options.tls != SmtpTestOptions::Tls::None) {
        if (!makeTestCertificate(certificateFile(), folder_.file("key.pem"))) {
            error_ = "openssl could not make the server's certificate";
            return;
        }
        arguments.insert(
            arguments.end(),
            {"--tls", options.tls == SmtpTestOptions::Tls::StartTls ? "starttls" : "implicit",
             "--cert", certificateFile(), "--key", folder_.file("key.pem")});
    }
    if (!options.user.empty()) {
        arguments.insert(arguments.end(), {"--user", options.user, "--password", options.password,
                                           "--mechanisms", options.mechanisms});
    }
    for (const auto& address : options.refused) {
        arguments.insert(arguments.end(), {"--refuse", address});
    }
    port_ = freeLoopbackPort();
    arguments.insert(arguments.end(), {"--port", std::to_string(port_)});
    const std::string output = folder_.file("server.out");
    const std::string ready = messagesFolder(folder_) + "/ready";
    if (!process_.start(arguments, output) ||
        !process_.waitUntil([&] { return fs::exists(ready); })) {
        error_ = "the SMTP test server did not start: " + readTextFile(output);
        process_.stop();
        return;
    }
    fs::remove(ready);
}

std::vector<std::string> SmtpTestServer::messages() const {
    std::vector<std::pair<int, std::string>> numbered;
    for (const auto& entry : std::filesystem::directory_iterator(messagesFolder(folder_))) {
        if (entry.path().extension() != ".eml") continue;
        numbered.emplace_back(std::stoi(entry.path().stem().string()), entry.path().string());
    }
    std::sort(numbered.begin(), numbered.end());
    std::vector<std::string> paths;
    for (auto& [number, path] : numbered) paths.push_back(std::move(path));
    return paths;
}

std::vector<std::string> SmtpTestServer::envelopeOf(const std::string& messagePath) const {
    std::filesystem::path path(messagePath);
    path.replace_extension(".envelope");
    std::vector<std::string> lines;
    std::string text = readTextFile(path.string());
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t end = text.find('\n', at);
        lines.push_back(text.substr(at, end - at));
        if (end == std::string::npos) break;
        at = end + 1;
    }
    return lines;
}

void SmtpTestServer::clear() {
    for (const auto& entry : std::filesystem::directory_iterator(messagesFolder(folder_))) {
        std::filesystem::remove(entry.path());
    }
}

}  // namespace ovd::testing
