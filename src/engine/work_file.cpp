#include "engine/work_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace ovd::engine {

namespace {

constexpr std::size_t kPendingLimitSamples = 64 * 1024;

void putU32(std::uint8_t* at, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) at[i] = static_cast<std::uint8_t>(value >> (8 * i));
}
void putU16(std::uint8_t* at, std::uint16_t value) {
    at[0] = static_cast<std::uint8_t>(value);
    at[1] = static_cast<std::uint8_t>(value >> 8);
}

std::array<std::uint8_t, WorkFile::kHeaderBytes> waveHeader(const PcmFormat& format,
                                                             std::uint64_t dataBytes) {
    // A WAV header can't count past 4 GiB; a longer take stays readable up to there.
    const auto data = static_cast<std::uint32_t>(std::min<std::uint64_t>(dataBytes, 0xFFFFFFFFu - 36));
    std::array<std::uint8_t, WorkFile::kHeaderBytes> header{};
    std::memcpy(header.data(), "RIFF", 4);
    putU32(header.data() + 4, 36 + data);
    std::memcpy(header.data() + 8, "WAVEfmt ", 8);
    putU32(header.data() + 16, 16);
    putU16(header.data() + 20, 1);  // PCM
    putU16(header.data() + 22, static_cast<std::uint16_t>(format.channels));
    putU32(header.data() + 24, static_cast<std::uint32_t>(format.sampleRate));
    const auto blockAlign = static_cast<std::uint16_t>(format.channels * 2);
    putU32(header.data() + 28, static_cast<std::uint32_t>(format.sampleRate) * blockAlign);
    putU16(header.data() + 32, blockAlign);
    putU16(header.data() + 34, 16);
    std::memcpy(header.data() + 36, "data", 4);
    putU32(header.data() + 40, data);
    return header;
}

std::string systemError(const std::string& what) { return what + ": " + std::strerror(errno); }

}  // namespace

std::shared_ptr<WorkFile> WorkFile::create(const std::string& path, const PcmFormat& format,
                                           std::string& error) {
    if (format.sampleRate <= 0 || format.channels <= 0) {
        error = "unusable format for a work file";
        return nullptr;
    }
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) {
        error = systemError("can't create the work file " + path);
        return nullptr;
    }
    std::shared_ptr<WorkFile> file(new WorkFile(path, fd, format));
    if (const EngineResult written = file->writeHeader(); !written) {
        error = written.error();
        return nullptr;
    }
    return file;
}

WorkFile::WorkFile(std::string path, int fd, const PcmFormat& format)
    : path_(std::move(path)),
      fd_(fd),
      format_(format),
      frameBytes_(static_cast<std::size_t>(format.channels) * sizeof(std::int16_t)) {}

WorkFile::~WorkFile() {
    if (!removed_) (void)flush();
    ::close(fd_);
}

SampleCount WorkFile::frames() const {
    const std::lock_guard lock(mutex_);
    return framesOnDisk_ +
           static_cast<SampleCount>(pending_.size() / static_cast<std::size_t>(format_.channels));
}

SampleCount WorkFile::append(const std::int16_t* frames, std::size_t frameCount) {
    SampleCount start = 0;
    bool full = false;
    {
        const std::lock_guard lock(mutex_);
        start = framesOnDisk_ +
                static_cast<SampleCount>(pending_.size() / static_cast<std::size_t>(format_.channels));
        pending_.insert(pending_.end(), frames,
                        frames + frameCount * static_cast<std::size_t>(format_.channels));
        full = pending_.size() >= kPendingLimitSamples;
    }
    if (full) (void)writeBuffered();
    return start;
}

EngineResult WorkFile::writeBuffered() {
    const std::lock_guard lock(mutex_);
    if (pending_.empty()) return EngineResult::success();
    const auto offset = static_cast<off_t>(kHeaderBytes + static_cast<std::size_t>(framesOnDisk_) * frameBytes_);
    const std::size_t bytes = pending_.size() * sizeof(std::int16_t);
    const auto* data = reinterpret_cast<const char*>(pending_.data());
    std::size_t done = 0;
    while (done < bytes) {
        const ssize_t n = ::pwrite(fd_, data + done, bytes - done, offset + static_cast<off_t>(done));
        if (n < 0) {
            if (errno == EINTR) continue;
            // What could not be written stays buffered for the next try: a full
            // disk loses nothing that is still in memory.
            return EngineResult::failure(systemError("can't write the work file " + path_));
        }
        done += static_cast<std::size_t>(n);
    }
    framesOnDisk_ += static_cast<SampleCount>(pending_.size() / static_cast<std::size_t>(format_.channels));
    pending_.clear();
    return EngineResult::success();
}

EngineResult WorkFile::writeHeader() {
    std::uint64_t dataBytes = 0;
    {
        const std::lock_guard lock(mutex_);
        dataBytes = static_cast<std::uint64_t>(framesOnDisk_) * frameBytes_;
    }
    const auto header = waveHeader(format_, dataBytes);
    if (::pwrite(fd_, header.data(), header.size(), 0) != static_cast<ssize_t>(header.size())) {
        return EngineResult::failure(systemError("can't write the work file's header " + path_));
    }
    return EngineResult::success();
}

EngineResult WorkFile::flush() {
    if (EngineResult written = writeBuffered(); !written) return written;
    if (EngineResult header = writeHeader(); !header) return header;
    if (::fdatasync(fd_) != 0) return EngineResult::failure(systemError("can't sync " + path_));
    return EngineResult::success();
}

std::size_t WorkFile::read(SampleCount start, std::int16_t* out, std::size_t frameCount) const {
    const std::lock_guard lock(mutex_);
    const auto channels = static_cast<std::size_t>(format_.channels);
    std::size_t delivered = 0;
    if (start < framesOnDisk_) {
        const std::size_t fromDisk =
            std::min<std::size_t>(frameCount, static_cast<std::size_t>(framesOnDisk_ - start));
        const auto offset = static_cast<off_t>(kHeaderBytes + static_cast<std::size_t>(start) * frameBytes_);
        const ssize_t n = ::pread(fd_, out, fromDisk * frameBytes_, offset);
        if (n <= 0) return 0;
        delivered = static_cast<std::size_t>(n) / frameBytes_;
        if (delivered < fromDisk) return delivered;
    }
    const SampleCount pendingStart = std::max<SampleCount>(0, start + static_cast<SampleCount>(delivered) - framesOnDisk_);
    const std::size_t pendingFrames = pending_.size() / channels;
    if (static_cast<std::size_t>(pendingStart) < pendingFrames && delivered < frameCount) {
        const std::size_t fromMemory =
            std::min(frameCount - delivered, pendingFrames - static_cast<std::size_t>(pendingStart));
        std::copy_n(pending_.begin() + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(pendingStart) * channels),
                    fromMemory * channels, out + delivered * channels);
        delivered += fromMemory;
    }
    return delivered;
}

void WorkFile::removeFromDisk() {
    removed_ = true;
    ::unlink(path_.c_str());
}

}  // namespace ovd::engine
