// Figures for a letter with a 20 MB attachment sent through our mail client to the
// loopback test relay against the curl command line sending the same message (built
// beforehand) in the same run, best of three each, with the resident memory: the
// attachment is encoded on the way, never held whole.
// Run: build/release/bench/mail_bench [MEGABYTES]   (20 unless given)

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "bench_figures.h"
#include "mail/curl_mail_transport.h"
#include "mail/send_step.h"
#include "support/smtp_test_server.h"
#include "support/temp_folder.h"

namespace {

using namespace ovd::bench;
constexpr std::size_t kMegabyte = 1024U * 1024U;
constexpr int kRounds = 3;

}  // namespace

int main(int argc, char** argv) {
    using namespace ovd;
    const std::size_t attachmentBytes =
        (argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 20U) * kMegabyte;
    testing::SmtpTestServer relay;
    if (!relay.running()) {
        std::fprintf(stderr, "%s\n", relay.error().c_str());
        return 1;
    }
    testing::TempFolder scratch;
    const std::string attachment = scratch.file("0001 Long letter.wav");
    writeRandomFile(attachment, attachmentBytes);

    mail::MailMessage message;
    message.fromName = "Bench";
    message.fromAddress = "bench@clinic.example";
    message.to = {"typist@pool.example"};
    message.subject = "0001 Long letter.wav";
    message.body = "Letter attached.";
    message.attachments = {{attachment, "0001 Long letter.wav"}};
    const std::string prepared = scratch.file("message.eml");
    if (!mail::saveMessage(message, prepared)) return 1;

    mail::SendPlan plan;
    plan.relay = true;
    plan.relayServer.host = "127.0.0.1";
    plan.relayServer.port = relay.port();
    plan.envelope = {message.fromAddress, message.to};
    const std::string command = "curl -s --url smtp://127.0.0.1:" + std::to_string(relay.port()) +
                                " --mail-from bench@clinic.example --mail-rcpt typist@pool.example"
                                " --upload-file '" +
                                prepared + "'";

    const long residentBefore = statusKilobytes("VmRSS:");
    double ours = 1e9;
    double theirs = 1e9;
    for (int round = 0; round < kRounds; ++round) {
        mail::CurlMailTransport transport;
        auto start = Clock::now();
        const auto outcome = mail::deliver(plan, message, transport, {});
        if (!outcome.delivered) {
            std::fprintf(stderr, "send failed: %s\n", outcome.error.text.c_str());
            return 1;
        }
        ours = std::min(ours, secondsSince(start));
        relay.clear();
        start = Clock::now();
        if (std::system(command.c_str()) != 0) {
            std::fprintf(stderr, "failed: %s\n", command.c_str());
            return 1;
        }
        theirs = std::min(theirs, secondsSince(start));
        relay.clear();
    }
    const double megabytes = static_cast<double>(attachmentBytes / kMegabyte);
    std::printf("%zu MB attachment", attachmentBytes / kMegabyte);
    std::printf(": ours %.2f s (%.1f MB/s)   curl command %.2f s   ratio %.2f\n", ours,
                megabytes / ours, theirs, ours / theirs);
    std::printf("resident memory: before %ld kB, peak %ld kB, attachment %zu kB\n", residentBefore,
                statusKilobytes("VmHWM:"), attachmentBytes / 1024);
    return 0;
}
