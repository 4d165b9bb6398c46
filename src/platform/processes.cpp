#include "platform/processes.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <thread>

extern char** environ;

namespace ovd::platform {

std::string executableFolder() {
    std::error_code error;
    const auto exe = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string() : exe.parent_path().string();
}

std::optional<int> startProgram(const std::string& path, const std::vector<std::string>& arguments,
                                std::string& error) {
    std::vector<std::string> words{path};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    pid_t pid = 0;
    const int status = ::posix_spawn(&pid, path.c_str(), nullptr, nullptr, argv.data(), environ);
    if (status != 0) {
        error = path + ": " + std::strerror(status);
        return std::nullopt;
    }
    return static_cast<int>(pid);
}

std::optional<int> runProgram(const std::string& path, const std::vector<std::string>& arguments,
                              int timeoutMilliseconds, std::string& error) {
    const auto pid = startProgram(path, arguments, error);
    if (!pid) return std::nullopt;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMilliseconds);
    while (true) {
        int status = 0;
        const pid_t done = ::waitpid(*pid, &status, WNOHANG);
        if (done == *pid) return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        if (done < 0 && errno != EINTR) {
            error = path + ": " + std::strerror(errno);
            return std::nullopt;
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            error = path + " did not end within " + std::to_string(timeoutMilliseconds) + " ms";
            return std::nullopt;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

}  // namespace ovd::platform
