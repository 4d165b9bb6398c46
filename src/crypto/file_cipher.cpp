#include "crypto/file_cipher.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "platform/files.h"

namespace ovd::crypto {

namespace {

constexpr std::size_t kPieceBytes = 256 * 1024;

// Closes the descriptor and, unless kept, removes the scratch file behind it.
class ScratchFile {
  public:
    explicit ScratchFile(const std::string& target)
        : path_(platform::joinPath(
              platform::folderOf(target).empty() ? "." : platform::folderOf(target),
              "." + platform::withoutFolder(target) + ".XXXXXX")) {
        fd_ = ::mkstemp(path_.data());
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile() {
        if (fd_ >= 0) ::close(fd_);
        if (!kept_ && fd_ >= 0) ::unlink(path_.c_str());
    }
    [[nodiscard]] int fd() const { return fd_; }
    [[nodiscard]] const std::string& path() const { return path_; }
    platform::Result<void> moveOnto(const std::string& target) {
        if (::rename(path_.c_str(), target.c_str()) != 0) {
            return platform::systemFailure("Can't move the result onto " + target, errno);
        }
        kept_ = true;
        return {};
    }

  private:
    std::string path_;
    int fd_ = -1;
    bool kept_ = false;
};

class InputFile {
  public:
    explicit InputFile(const std::string& path) : fd_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    ~InputFile() {
        if (fd_ >= 0) ::close(fd_);
    }
    [[nodiscard]] int fd() const { return fd_; }

  private:
    int fd_;
};

}  // namespace

platform::Result<void> transformFile(Direction direction, const std::string& inputPath,
                                     const std::string& outputPath, const CipherKey& key,
                                     bool* refusedByCipher) {
    if (refusedByCipher != nullptr) *refusedByCipher = false;
    const auto cipherFailed = [refusedByCipher](const platform::Result<void>& step) {
        if (refusedByCipher != nullptr) *refusedByCipher = true;
        return step.failed();
    };
    InputFile input(inputPath);
    if (input.fd() < 0) return platform::systemFailure("Can't open " + inputPath, errno);
    struct stat inputInfo {};
    if (::fstat(input.fd(), &inputInfo) != 0 || !S_ISREG(inputInfo.st_mode)) {
        return platform::failure("Can't open " + inputPath + ": not a file");
    }
    auto stream = AesCbcStream::start(direction, key);
    if (!stream) return stream.failed();

    ScratchFile scratch(outputPath);
    if (scratch.fd() < 0) return platform::systemFailure("Can't write beside " + outputPath, errno);
    ::fchmod(scratch.fd(), inputInfo.st_mode & 0777U);

    std::vector<std::uint8_t> piece(kPieceBytes);
    std::vector<std::uint8_t> out;
    out.reserve(kPieceBytes + kBlockBytes);
    for (;;) {
        const ssize_t got = ::read(input.fd(), piece.data(), piece.size());
        if (got < 0) {
            if (errno == EINTR) continue;
            return platform::systemFailure("Can't read " + inputPath, errno);
        }
        out.clear();
        if (got == 0) {
            if (auto last = stream->finish(out); !last) return cipherFailed(last);
        } else if (auto fed = stream->update(piece.data(), static_cast<std::size_t>(got), out);
                   !fed) {
            return cipherFailed(fed);
        }
        if (!out.empty()) {
            if (auto written = platform::writeAll(scratch.fd(), out.data(), out.size()); !written)
                return platform::failure("Can't write " + scratch.path() + ": " + written.error());
        }
        if (got == 0) break;
    }
    return scratch.moveOnto(outputPath);
}

}  // namespace ovd::crypto
