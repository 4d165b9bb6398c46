// Saving: the document written in the chosen format on a thread of its own, the
// target locked from the moment SaveAs returns until the file is complete, and
// the saved file kept open so that the next save of a take that only grew adds
// what is new instead of encoding the whole take again.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "engine/wave_editor.h"
#include "platform/files.h"

namespace ovd::engine {

namespace {

constexpr std::size_t kBlockFrames = 64 * 1024;
// Frames copied straight into a wave file go in stretches of this many, so the
// progress moves on an hour-long take too.
constexpr SampleCount kCopyStretchFrames = 4 * 1024 * 1024;
constexpr const char* kSaving = "Saving";
constexpr const char* kPartialSuffix = ".partial";

SampleCount framesIn(const PieceList& pieces) {
    SampleCount frames = 0;
    for (const Piece& piece : pieces) frames += piece.length;
    return frames;
}

// The pieces at the end of the encoder's file: copied as they lie in the work
// files where the file takes the document's own frames, encoded otherwise.
platform::Result<void> writePieces(StreamEncoder& encoder, const PcmFormat& format,
                                   const PieceList& pieces,
                                   const std::function<void(SampleCount)>& progress) {
    SampleCount done = 0;
    if (encoder.copiesSourceFrames()) {
        for (const Piece& piece : pieces) {
            for (SampleCount offset = 0; offset < piece.length; offset += kCopyStretchFrames) {
                const SampleCount count = std::min(kCopyStretchFrames, piece.length - offset);
                platform::Result<void> copied = encoder.appendCopied(count, [&](int fd) {
                    return piece.file->copyTo(fd, piece.start + offset, count);
                });
                if (!copied) return copied;
                done += count;
                progress(done);
            }
        }
        return platform::Result<void>::success();
    }
    DocumentSource source(format, pieces);
    std::vector<std::int16_t> block(kBlockFrames * static_cast<std::size_t>(format.channels));
    while (const std::size_t got = source.read(block.data(), kBlockFrames)) {
        if (platform::Result<void> written = encoder.write(block.data(), got); !written)
            return written;
        done += static_cast<SampleCount>(got);
        progress(done);
    }
    return platform::Result<void>::success();
}

}  // namespace

void WaveEditor::finishSaving() {
    if (saveThread_.joinable()) saveThread_.join();
    takeOverSavedFile();
}

void WaveEditor::takeOverSavedFile() {
    const std::lock_guard lock(savedFileMutex_);
    if (justSaved_) onDisk_ = std::move(justSaved_);
    justSaved_.reset();
}

namespace {

std::optional<struct stat> statOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
    return status;
}

std::int64_t changedNs(const struct stat& status) {
    return static_cast<std::int64_t>(status.st_mtim.tv_sec) * 1'000'000'000 +
           status.st_mtim.tv_nsec;
}

}  // namespace

void WaveEditor::rememberFileOnDisk(const std::string& path, const PieceList& pieces,
                                    const LetterDetails& details, std::optional<FileOnDisk>& into) {
    into.reset();
    const auto status = statOf(path);
    if (!status) return;
    into = FileOnDisk{
        path, pieces, status->st_dev, status->st_ino, status->st_size, changedNs(*status), details};
}

bool WaveEditor::documentIsOnDisk(const std::string& path) const {
    if (!onDisk_ || onDisk_->path != path || !sameAudio(onDisk_->pieces, document_.pieces()) ||
        onDisk_->details != details_)
        return false;
    const auto status = statOf(path);
    return status && status->st_dev == onDisk_->device && status->st_ino == onDisk_->inode &&
           status->st_size == onDisk_->size && changedNs(*status) == onDisk_->changedNs;
}

void WaveEditor::finishSavedFile() {
    finishSaving();
    if (!session_) return;
    const std::unique_ptr<SaveSession> session = std::move(session_);
    // Completed through the encoder's own descriptor: a file renamed since (a
    // letter handed on under another name) is completed all the same, and a file
    // that took its old name is not touched.
    // The save that grew it was told of already; a file that can't be completed
    // goes back to what its last sync left.
    if (!session->encoder->finish().ok()) session->encoder->rollBack();
}

platform::Result<platform::LockedFile> WaveEditor::lockExistingFile(const std::string& path) {
    if (!platform::fileExists(path)) return platform::LockedFile{};
    const int fd = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
    if (fd < 0) return platform::failure("can't write " + path + ": " + std::strerror(errno));
    auto locked = platform::LockedFile::lock(fd);
    if (!locked) return platform::failure(path + " is in use");
    return locked;
}

platform::Result<AudioEditor::SaveOutcome> WaveEditor::SaveAs(const std::string& path) {
    if (!workFile_) return platform::failure("no document to save");
    finishSaving();
    syncTick();
    // Opened to listen, or saved and not touched since: the file already holds
    // this document, and it stays byte for byte as it is.
    if (!session_ && documentIsOnDisk(path)) {
        std::promise<platform::Result<void>> nothingToWrite;
        nothingToWrite.set_value(platform::Result<void>::success());
        return SaveOutcome(nothingToWrite.get_future());
    }
    // An existing file is locked before this call returns, so whoever waits for it
    // to be free waits for this save, not for the one before it. A new file is not
    // made here: until the save is complete only the file beside it exists.
    auto existing = lockExistingFile(path);
    if (!existing) return existing.failed();
    SaveJob job{path,
                chosen_,
                FileTags(comment_, details_),
                document_.format(),
                document_.pieces(),
                std::nullopt,
                std::move(*existing),
                state_ == EditorState::Recording};
    if (session_) {
        if (session_->path == path && job.lock.held() &&
            session_->encoder->sameFileAs(job.lock.fd()) && session_->target == job.target &&
            session_->tags == job.tags && session_->format == job.format) {
            job.added = piecesAddedTo(session_->saved, job.pieces);
        }
        // Saved whole, here or elsewhere: the file the session grew is completed first.
        if (!job.added) finishSavedFile();
    }
    const SampleCount range = framesIn(job.added ? *job.added : job.pieces);
    emitBlock(BlockOperationEvent::Phase::Start, kSaving, 0, range);
    saving_ = true;
    std::promise<platform::Result<void>> settled;
    SaveOutcome outcome = settled.get_future().share();
    saveThread_ = std::thread([this, alive = alive_, job = std::move(job), range,
                               settled = std::move(settled)]() mutable {
        const SaveProgress progress = [this, alive, range](SampleCount done) {
            loop_.postFromAnyThread([this, alive, done, range] {
                if (*alive) emitBlock(BlockOperationEvent::Phase::Progress, kSaving, done, range);
            });
        };
        platform::Result<void> result =
            job.added ? addToSavedFile(job, progress) : saveWhole(job, progress);
        if (result) {
            const std::lock_guard lock(savedFileMutex_);
            rememberFileOnDisk(job.path, job.pieces, job.tags.details, justSaved_);
        }
        // Known before the file is free: whoever waits for the file reads the outcome.
        settled.set_value(std::move(result));
        job.lock.release();
        loop_.postFromAnyThread([this, alive, range] {
            if (!*alive) return;
            emitBlock(BlockOperationEvent::Phase::End, kSaving, range, range);
        });
        saving_ = false;
    });
    return outcome;
}

platform::Result<void> WaveEditor::addToSavedFile(const SaveJob& job,
                                                  const SaveProgress& progress) {
    SaveSession& session = *session_;
    // Added in place: the header counts only what the last sync completed, so the
    // file reads whole up to the last save at every moment.
    platform::Result<void> result = writePieces(*session.encoder, job.format, *job.added, progress);
    if (result) result = job.keepGrowing ? session.encoder->sync() : session.encoder->finish();
    if (!result) {
        // The file goes back to what the last save left; the next save starts afresh.
        session.encoder->rollBack();
        session_.reset();
        return result;
    }
    session.saved = job.pieces;
    if (!job.keepGrowing) session_.reset();
    return result;
}

platform::Result<void> WaveEditor::saveWhole(const SaveJob& job, const SaveProgress& progress) {
    // Written beside the target and moved over it once complete: until then the
    // old file (or no file) stands, after it the complete new one. A crash leaves
    // at most this file beside it, which the recovery clears away.
    const std::string partial = job.path + kPartialSuffix;
    std::unique_ptr<StreamEncoder> encoder;
    // A file that can't be started to grow is written whole below, which says why if it fails too.
    if (const int fd = ::open(partial.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        fd >= 0) {
        auto opened = StreamEncoder::open(fd, partial, job.target, job.format, job.tags);
        if (opened) encoder = std::move(*opened);
    }
    platform::Result<void> result = platform::Result<void>::success();
    if (encoder) {
        result = writePieces(*encoder, job.format, job.pieces, progress);
        // Completed before it takes the target's name, unless the take goes on.
        if (result) result = job.keepGrowing ? encoder->sync() : encoder->finish();
        if (!result) {
            encoder.reset();
            std::remove(partial.c_str());
        }
    } else {
        DocumentSource source(job.format, job.pieces);
        const SampleCount range = source.frames();
        result = encodeFile(source, partial, job.target, job.tags, [&](double fraction) {
            progress(static_cast<SampleCount>(fraction * static_cast<double>(range)));
            return true;
        });
    }
    if (result && std::rename(partial.c_str(), job.path.c_str()) != 0) {
        result = platform::failure("can't replace " + job.path + ": " + std::strerror(errno));
        std::remove(partial.c_str());
    }
    // A format without room for the details carries them in the text file beside it.
    // The audio is safe whatever becomes of that file; details it could not take are
    // still the document's and go out with the next save.
    if (result && !formatCarriesDetails(job.target)) {
        (void)writeDetailsFile(job.path, job.tags.details);
    }
    if (result && encoder && job.keepGrowing) {
        session_ = std::make_unique<SaveSession>(SaveSession{
            job.path, job.target, job.tags, job.format, job.pieces, std::move(encoder)});
    }
    return result;
}

}  // namespace ovd::engine
