#include "ftp/curl_parts.h"

#include <cstdio>
#include <mutex>
#include <vector>

namespace ovd::ftp::curl_parts {

void initialiseCurlOnce() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

std::string normalisedPath(const std::string& path) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (start <= path.size()) {
        std::size_t end = path.find('/', start);
        if (end == std::string::npos) end = path.size();
        const std::string part = path.substr(start, end - start);
        if (part == "..") {
            if (!parts.empty()) parts.pop_back();
        } else if (!part.empty() && part != ".") {
            parts.push_back(part);
        }
        start = end + 1;
    }
    std::string result;
    for (const auto& part : parts) result += "/" + part;
    return result.empty() ? "/" : result;
}

void TransferProgress::followProgress(CURL* handle, const ProgressCallback& callback,
                                      std::uint64_t size) {
    progress = &callback;
    total = size;
    curl_easy_setopt(handle, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(handle, CURLOPT_XFERINFOFUNCTION, &TransferProgress::onProgress);
    curl_easy_setopt(handle, CURLOPT_XFERINFODATA, this);
}

int TransferProgress::onProgress(void* self, curl_off_t /*downloadTotal*/, curl_off_t downloaded,
                                 curl_off_t /*uploadTotal*/, curl_off_t uploaded) {
    // Often enough that a bar moves smoothly, seldom enough not to flood the loop.
    constexpr auto kProgressInterval = std::chrono::milliseconds(50);
    auto& state = *static_cast<TransferProgress*>(self);
    if (state.cancelRequested.load()) return 1;
    const auto now = static_cast<std::uint64_t>(downloaded > 0 ? downloaded : uploaded);
    if (now != state.done) {
        state.done = now;
        const auto clock = std::chrono::steady_clock::now();
        const bool finished = state.done >= state.total;
        if (state.progress != nullptr && *state.progress &&
            (finished || clock - state.lastReport >= kProgressInterval)) {
            state.lastReport = clock;
            (*state.progress)(state.done, state.total);
        }
    }
    return 0;
}

size_t appendToText(char* data, size_t size, size_t count, void* text) {
    static_cast<std::string*>(text)->append(data, size * count);
    return size * count;
}

size_t discard(char* /*data*/, size_t size, size_t count, void* /*unused*/) { return size * count; }

size_t writeToFile(char* data, size_t size, size_t count, void* file) {
    return std::fwrite(data, size, count, static_cast<std::FILE*>(file)) * size;
}

size_t readFromFile(char* buffer, size_t size, size_t count, void* file) {
    const size_t read = std::fread(buffer, size, count, static_cast<std::FILE*>(file)) * size;
    if (read == 0 && std::ferror(static_cast<std::FILE*>(file)) != 0) return CURL_READFUNC_ABORT;
    return read;
}

}  // namespace ovd::ftp::curl_parts
