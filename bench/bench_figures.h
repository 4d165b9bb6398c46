#pragma once
// What every benchmark measures with: wall time, this process's memory as the
// kernel counts it, a file of random bytes to move, and a command line's time.

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace ovd::bench {

using Clock = std::chrono::steady_clock;

inline double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// VmRSS (now) or VmHWM (the most so far) of this process, in kilobytes.
inline long statusKilobytes(const char* field) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind(field, 0) == 0) return std::atol(line.c_str() + std::string(field).size());
    }
    return -1;
}

// The same bytes at every run, so figures of two runs compare.
inline void writeRandomFile(const std::string& path, std::size_t bytes) {
    std::ofstream out(path, std::ios::binary);
    std::mt19937_64 random(42);
    std::vector<std::uint64_t> piece(1 << 16);
    for (std::size_t written = 0; written < bytes; written += piece.size() * 8) {
        for (auto& word : piece) word = random();
        out.write(reinterpret_cast<const char*>(piece.data()),
                  static_cast<std::streamsize>(piece.size() * 8));
    }
}

// The time a command line takes; a failing command is told, and its time is -1.
inline double timedCommand(const std::string& command) {
    const auto start = Clock::now();
    if (std::system(command.c_str()) != 0) {
        std::fprintf(stderr, "failed: %s\n", command.c_str());
        return -1.0;
    }
    return secondsSince(start);
}

}  // namespace ovd::bench
