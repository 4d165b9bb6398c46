#pragma once
// The file a document's audio lives in while it is edited: a WAV file of 16-bit
// frames in the Temp folder, only ever appended to. Its data and header are
// written at every flush, so a station that is killed leaves a file the recovery
// can open, short of at most the audio since the last flush; a thread of the
// file's own then makes them durable, so a power cut loses no more, while the
// recording never waits on the disk. The document refers to ranges of it; an
// edit never rewrites it.

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "engine/audio_backend.h"
#include "platform/locked_file.h"
#include "platform/result.h"

namespace ovd::engine {

class WorkFile {
  public:
    // Creates the file (replacing any of that name) with an empty data chunk.
    static platform::Result<std::shared_ptr<WorkFile>> create(const std::string& path,
                                                              const PcmFormat& format);
    ~WorkFile();
    WorkFile(const WorkFile&) = delete;
    WorkFile& operator=(const WorkFile&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] const PcmFormat& format() const { return format_; }
    [[nodiscard]] SampleCount frames() const;

    // Adds frames at the end; returns the frame index they start at.
    SampleCount append(const std::int16_t* frames, std::size_t frameCount);
    // Writes what is buffered and updates the header, and has both synced to the
    // disk without waiting for it; fails with what the disk refused, here or at
    // the last sync.
    platform::Result<void> flush();
    // Reads frames from any thread; frames past the end read as nothing (returns fewer).
    std::size_t read(SampleCount start, std::int16_t* out, std::size_t frameCount) const;
    // Writes frames to fd at its file position, from any thread: what is on disk
    // is copied inside the kernel where the file systems allow, so saving an hour
    // as a wave file costs what copying the file costs. Frames past the end (a
    // failed write) go out as silence, as they read.
    platform::Result<void> copyTo(int fd, SampleCount start, SampleCount frameCount) const;

    // Deletes the file from the folder; readers that still hold it keep their audio.
    void removeFromDisk();

    static constexpr std::size_t kHeaderBytes = 44;

  private:
    WorkFile(std::string path, platform::LockedFile file, const PcmFormat& format);
    platform::Result<void> writeBuffered();
    platform::Result<void> writeHeader();
    void syncInBackground();
    void syncWhenAsked();
    void stopSyncing();

    std::string path_;
    platform::LockedFile file_;
    int fd_;  // file_'s, for the many reads and writes
    PcmFormat format_;
    std::size_t frameBytes_;
    mutable std::mutex mutex_;
    SampleCount framesOnDisk_ = 0;
    std::vector<std::int16_t> pending_;  // appended, not yet written
    bool removed_ = false;

    std::mutex syncMutex_;
    std::condition_variable syncAsked_;
    bool syncWanted_ = false;
    bool syncStopping_ = false;
    std::string syncError_;  // what the disk said at the last sync; empty when it took it
    std::thread syncer_;     // started at the first flush
};

}  // namespace ovd::engine
