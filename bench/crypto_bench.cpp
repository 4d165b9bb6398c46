// Figures for enciphering and deciphering a 100 MB file: our speed against the
// openssl command line on the same file in the same run, and the resident memory
// while doing it (it should stay flat: the file goes through in pieces).
// Run: build/release/bench/crypto_bench [scratch folder]

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "bench_figures.h"
#include "crypto/aes_cbc.h"
#include "crypto/file_cipher.h"

namespace {

using namespace ovd::bench;
constexpr std::size_t kFileBytes = 100U * 1024U * 1024U;

double timedOpenssl(bool decipher, const std::string& hex, const std::string& in,
                    const std::string& out) {
    const std::string command = std::string("openssl enc -aes-128-cbc ") + (decipher ? "-d " : "") +
                                "-K " + hex + " -iv " + hex + " -in '" + in + "' -out '" + out +
                                "'";
    const auto start = Clock::now();
    if (std::system(command.c_str()) != 0) {
        std::fprintf(stderr, "openssl failed: %s\n", command.c_str());
        std::exit(1);
    }
    return secondsSince(start);
}

double timedOurs(ovd::crypto::Direction direction, const ovd::crypto::CipherKey& key,
                 const std::string& in, const std::string& out) {
    const auto start = Clock::now();
    if (!ovd::crypto::transformFile(direction, in, out, key).ok()) {
        std::fprintf(stderr, "our cipher failed on %s\n", in.c_str());
        std::exit(1);
    }
    return secondsSince(start);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string folder = argc > 1 ? argv[1] : "/tmp";
    const std::string plain = folder + "/crypto_bench.plain";
    const std::string ours = folder + "/crypto_bench.ours.enc";
    const std::string theirs = folder + "/crypto_bench.theirs.enc";
    const std::string back = folder + "/crypto_bench.back";
    writeRandomFile(plain, kFileBytes);

    const std::string keyText = "OurKeyTranscriber Co";
    const ovd::crypto::CipherKey key = ovd::crypto::keyFromText(keyText);
    std::string hex;
    for (const auto byte : key) {
        char two[3];
        std::snprintf(two, sizeof two, "%02x", byte);
        hex += two;
    }

    const long startKb = statusKilobytes("VmRSS:");
    const double oursEncipher = timedOurs(ovd::crypto::Direction::Encipher, key, plain, ours);
    const double oursDecipher = timedOurs(ovd::crypto::Direction::Decipher, key, ours, back);
    const long peakKb = statusKilobytes("VmHWM:");
    const double theirsEncipher = timedOpenssl(false, hex, plain, theirs);
    const double theirsDecipher = timedOpenssl(true, hex, theirs, back);

    const double megabytes = static_cast<double>(kFileBytes) / (1024.0 * 1024.0);
    std::printf(
        "encipher 100 MB: ours %.3f s (%.0f MB/s), openssl enc %.3f s (%.0f MB/s), ratio %.2f\n",
        oursEncipher, megabytes / oursEncipher, theirsEncipher, megabytes / theirsEncipher,
        theirsEncipher / oursEncipher);
    std::printf(
        "decipher 100 MB: ours %.3f s (%.0f MB/s), openssl enc -d %.3f s (%.0f MB/s), ratio %.2f\n",
        oursDecipher, megabytes / oursDecipher, theirsDecipher, megabytes / theirsDecipher,
        theirsDecipher / oursDecipher);
    std::printf("resident memory: %ld kB at start, %ld kB at most while working (+%ld kB)\n",
                startKb, peakKb, peakKb - startKb);
    for (const auto& path : {plain, ours, theirs, back}) std::remove(path.c_str());
    return 0;
}
