#include "engine/work_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "engine/wave_header.h"
#include "platform/files.h"

namespace ovd::engine {

using platform::writeAll;

namespace {

constexpr std::size_t kPendingLimitSamples = 64 * 1024;

// Bytes from one file to another's file position: inside the kernel where the
// two file systems allow it, through a buffer where they don't.
bool copyBytes(int from, off_t offset, int to, std::uint64_t bytes) {
    bool inKernel = true;
    std::vector<char> buffer;
    while (bytes > 0) {
        if (inKernel) {
            loff_t in = offset;
            const ssize_t n = ::copy_file_range(from, &in, to, nullptr, bytes, 0);
            if (n < 0 && errno == EINTR) continue;
            if (n > 0) {
                offset += n;
                bytes -= static_cast<std::uint64_t>(n);
                continue;
            }
            // Across file systems, or one that does not take part (some report
            // nothing copied rather than an error): the plain way.
            if (n < 0 && errno != EXDEV && errno != EINVAL && errno != ENOSYS &&
                errno != EOPNOTSUPP && errno != EBADF) {
                return false;
            }
            inKernel = false;
            buffer.resize(1 << 20);
        }
        const ssize_t got =
            ::pread(from, buffer.data(), std::min<std::uint64_t>(bytes, buffer.size()), offset);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return false;
        if (!writeAll(to, buffer.data(), static_cast<std::size_t>(got))) return false;
        offset += got;
        bytes -= static_cast<std::uint64_t>(got);
    }
    return true;
}

}  // namespace

platform::Result<std::shared_ptr<WorkFile>> WorkFile::create(const std::string& path,
                                                             const PcmFormat& format) {
    if (format.sampleRate <= 0 || format.channels <= 0) {
        return platform::failure("unusable format for a work file");
    }
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) return platform::systemFailure("can't create the work file " + path, errno);
    // Held for the file's life: the recovery of work files takes only those nobody holds.
    auto locked = platform::LockedFile::lock(fd);
    if (!locked) {
        return platform::failure("the work file " + path +
                                 " is held by another program: " + locked.error());
    }
    std::shared_ptr<WorkFile> file(new WorkFile(path, std::move(*locked), format));
    if (const platform::Result<void> written = file->writeHeader(); !written) {
        return written.failed();
    }
    return file;
}

WorkFile::WorkFile(std::string path, platform::LockedFile file, const PcmFormat& format)
    : path_(std::move(path)),
      file_(std::move(file)),
      fd_(file_.fd()),
      format_(format),
      frameBytes_(static_cast<std::size_t>(format.channels) * sizeof(std::int16_t)) {}

WorkFile::~WorkFile() {
    stopSyncing();
    if (removed_) return;
    // Let go in order: everything goes to the disk before the file is closed.
    if (writeBuffered() && writeHeader()) (void)::fdatasync(fd_);
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
        start = framesOnDisk_ + static_cast<SampleCount>(
                                    pending_.size() / static_cast<std::size_t>(format_.channels));
        pending_.insert(pending_.end(), frames,
                        frames + frameCount * static_cast<std::size_t>(format_.channels));
        full = pending_.size() >= kPendingLimitSamples;
    }
    if (full) (void)writeBuffered();
    return start;
}

platform::Result<void> WorkFile::writeBuffered() {
    const std::lock_guard lock(mutex_);
    if (pending_.empty()) return platform::Result<void>::success();
    const auto offset =
        static_cast<off_t>(kHeaderBytes + static_cast<std::size_t>(framesOnDisk_) * frameBytes_);
    const std::size_t bytes = pending_.size() * sizeof(std::int16_t);
    const auto* data = reinterpret_cast<const char*>(pending_.data());
    std::size_t done = 0;
    while (done < bytes) {
        const ssize_t n =
            ::pwrite(fd_, data + done, bytes - done, offset + static_cast<off_t>(done));
        if (n < 0) {
            if (errno == EINTR) continue;
            // What could not be written stays buffered for the next try: a full
            // disk loses nothing that is still in memory.
            return platform::systemFailure("can't write the work file " + path_, errno);
        }
        done += static_cast<std::size_t>(n);
    }
    framesOnDisk_ +=
        static_cast<SampleCount>(pending_.size() / static_cast<std::size_t>(format_.channels));
    pending_.clear();
    return platform::Result<void>::success();
}

platform::Result<void> WorkFile::writeHeader() {
    std::uint64_t dataBytes = 0;
    {
        const std::lock_guard lock(mutex_);
        dataBytes = static_cast<std::uint64_t>(framesOnDisk_) * frameBytes_;
    }
    const auto header = pcmWaveHeader(format_, FileTags{}, dataBytes);
    if (::pwrite(fd_, header.data(), header.size(), 0) != static_cast<ssize_t>(header.size())) {
        return platform::systemFailure("can't write the work file's header " + path_, errno);
    }
    return platform::Result<void>::success();
}

platform::Result<void> WorkFile::flush() {
    // Written first, so a killed station leaves it for the recovery at once: the
    // kernel keeps what was written whatever becomes of the process.
    if (platform::Result<void> written = writeBuffered(); !written) return written;
    if (platform::Result<void> header = writeHeader(); !header) return header;
    syncInBackground();
    const std::lock_guard lock(syncMutex_);
    if (!syncError_.empty()) return platform::failure(syncError_);
    return platform::Result<void>::success();
}

void WorkFile::syncInBackground() {
    const std::lock_guard lock(syncMutex_);
    syncWanted_ = true;
    if (!syncer_.joinable()) syncer_ = std::thread([this] { syncWhenAsked(); });
    syncAsked_.notify_one();
}

void WorkFile::syncWhenAsked() {
    std::unique_lock lock(syncMutex_);
    while (true) {
        syncAsked_.wait(lock, [this] { return syncWanted_ || syncStopping_; });
        if (!syncWanted_) return;
        syncWanted_ = false;
        lock.unlock();
        // A disk that takes its time holds up this thread only; flushes asked
        // for meanwhile are met by the next sync.
        const bool synced = ::fdatasync(fd_) == 0;
        const std::string error =
            synced ? "" : platform::systemFailure("can't sync " + path_, errno).reason;
        lock.lock();
        syncError_ = error;
    }
}

void WorkFile::stopSyncing() {
    {
        const std::lock_guard lock(syncMutex_);
        syncStopping_ = true;
        syncAsked_.notify_one();
    }
    if (syncer_.joinable()) syncer_.join();
}

std::size_t WorkFile::read(SampleCount start, std::int16_t* out, std::size_t frameCount) const {
    const std::lock_guard lock(mutex_);
    const auto channels = static_cast<std::size_t>(format_.channels);
    std::size_t delivered = 0;
    if (start < framesOnDisk_) {
        const std::size_t fromDisk =
            std::min<std::size_t>(frameCount, static_cast<std::size_t>(framesOnDisk_ - start));
        const auto offset =
            static_cast<off_t>(kHeaderBytes + static_cast<std::size_t>(start) * frameBytes_);
        const ssize_t n = ::pread(fd_, out, fromDisk * frameBytes_, offset);
        if (n <= 0) return 0;
        delivered = static_cast<std::size_t>(n) / frameBytes_;
        if (delivered < fromDisk) return delivered;
    }
    const SampleCount pendingStart =
        std::max<SampleCount>(0, start + static_cast<SampleCount>(delivered) - framesOnDisk_);
    const std::size_t pendingFrames = pending_.size() / channels;
    if (static_cast<std::size_t>(pendingStart) < pendingFrames && delivered < frameCount) {
        const std::size_t fromMemory = std::min(
            frameCount - delivered, pendingFrames - static_cast<std::size_t>(pendingStart));
        std::copy_n(pending_.begin() + static_cast<std::ptrdiff_t>(
                                           static_cast<std::size_t>(pendingStart) * channels),
                    fromMemory * channels, out + delivered * channels);
        delivered += fromMemory;
    }
    return delivered;
}

platform::Result<void> WorkFile::copyTo(int fd, SampleCount start, SampleCount frameCount) const {
    const auto channels = static_cast<std::size_t>(format_.channels);
    std::vector<std::int16_t> fromMemory;
    while (frameCount > 0) {
        SampleCount onDisk = 0;
        SampleCount count = 0;
        {
            // Frames on disk never change, so only the look at where the disk ends
            // and the copy out of memory need the lock; the recording goes on meanwhile.
            const std::lock_guard lock(mutex_);
            onDisk = framesOnDisk_;
            if (start >= onDisk) {
                const auto inMemory = static_cast<SampleCount>(pending_.size() / channels);
                const SampleCount index = start - onDisk;
                count = std::clamp<SampleCount>(inMemory - index, 0, frameCount);
                if (count == 0) {
                    count = frameCount;
                    fromMemory.assign(static_cast<std::size_t>(count) * channels, 0);
                } else {
                    const auto first =
                        pending_.begin() +
                        static_cast<std::ptrdiff_t>(static_cast<std::size_t>(index) * channels);
                    fromMemory.assign(
                        first, first + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(count) *
                                                                   channels));
                }
            }
        }
        bool copied = false;
        if (start < onDisk) {
            count = std::min(frameCount, onDisk - start);
            const auto offset =
                static_cast<off_t>(kHeaderBytes + static_cast<std::size_t>(start) * frameBytes_);
            copied = copyBytes(fd_, offset, fd, static_cast<std::uint64_t>(count) * frameBytes_);
        } else {
            copied = writeAll(fd, fromMemory.data(), fromMemory.size() * sizeof(std::int16_t)).ok();
        }
        if (!copied)
            return platform::systemFailure("can't copy from the work file " + path_, errno);
        start += count;
        frameCount -= count;
    }
    return platform::Result<void>::success();
}

void WorkFile::removeFromDisk() {
    stopSyncing();
    removed_ = true;
    ::unlink(path_.c_str());
}

}  // namespace ovd::engine
