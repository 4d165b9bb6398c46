#include "ftp/curl_parts.h"

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
