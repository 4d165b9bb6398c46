// Documents and files: new, open, close and save, the work file's life, and
// bringing whole files into a document.

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <vector>

#include "engine/codecs.h"
#include "engine/wave_editor.h"
#include "platform/files.h"

namespace ovd::engine {

namespace {
constexpr std::size_t kCopyFrames = 64 * 1024;
constexpr const char* kWorkFileExtension = ".tmp";
}  // namespace

std::string WaveEditor::TempFileName() const {
    return workFile_ ? workFile_->path() : tempFolder_;
}

void WaveEditor::setTempFileName(const std::string& folderOrPath) {
    // A path ending in the work file extension names the file; anything else is the folder.
    const std::filesystem::path given(folderOrPath);
    tempFolder_ = given.extension() == kWorkFileExtension ? given.parent_path().string() : folderOrPath;
}

EngineResult WaveEditor::startDocument(const PcmFormat& format) {
    Close();
    const std::string folder = tempFolder_.empty() ? std::filesystem::temp_directory_path().string() : tempFolder_;
    if (!platform::createFolder(folder)) return EngineResult::failure("can't make the folder " + folder);
    // The process id keeps two stations on one folder apart; the counter, this
    // editor's successive documents.
    const std::string name = "ovd" + std::to_string(::getpid()) + "-" + name_ + "-" +
                             std::to_string(++workFilesMade_) + kWorkFileExtension;
    std::string error;
    workFile_ = WorkFile::create(platform::joinPath(folder, name), format, error);
    if (!workFile_) return EngineResult::failure(error);
    document_ = AudioDocument(format);
    syncedFrames_ = 0;
    syncTimer_.setEnabled(true);
    return EngineResult::success();
}

EngineResult WaveEditor::New(int samplesPerSecond, int channels) {
    if (samplesPerSecond <= 0 || channels < 1 || channels > 2) {
        return EngineResult::failure("a new document needs a rate and one or two channels");
    }
    return startDocument({samplesPerSecond, channels});
}

EngineResult WaveEditor::appendFile(const std::string& path, const char* operation, PieceList& added) {
    std::string error;
    TargetFormat hint = chosen_;
    auto reader = AudioFileReader::open(path, error, &hint);
    if (!reader) return EngineResult::failure(error);
    if (workFile_ && !(reader->format() == document_.format())) {
        return EngineResult::failure(path + " is not at the document's rate and channels");
    }
    if (!workFile_) {
        if (EngineResult started = startDocument(reader->format()); !started) return started;
    }
    const SampleCount range = reader->frames();
    emitBlock(BlockOperationEvent::Phase::Start, operation, 0, range);
    const SampleCount first = workFile_->frames();
    std::vector<std::int16_t> block(kCopyFrames * static_cast<std::size_t>(reader->format().channels));
    SampleCount copied = 0;
    while (const std::size_t got = reader->read(block.data(), kCopyFrames)) {
        workFile_->append(block.data(), got);
        copied += static_cast<SampleCount>(got);
        emitBlock(BlockOperationEvent::Phase::Progress, operation, copied, range);
    }
    emitBlock(BlockOperationEvent::Phase::End, operation, copied, range);
    added = {Piece{workFile_, first, copied}};
    if (formatName_.empty()) formatName_ = reader->formatName();
    syncTick();
    return EngineResult::success();
}

EngineResult WaveEditor::Open(const std::string& path) {
    Close();
    PieceList added;
    if (EngineResult appended = appendFile(path, "Opening", added); !appended) {
        Close();
        return appended;
    }
    document_.replaceAll(added);
    cursor_ = 0;
    viewChanged();
    return EngineResult::success();
}

void WaveEditor::Close() {
    Stop();
    syncTimer_.setEnabled(false);
    if (workFile_) {
        // The document was saved or given up by the dictation: its work file goes.
        // Audio still on the clipboard stays readable through the open file.
        workFile_->removeFromDisk();
        workFile_.reset();
    }
    document_ = AudioDocument();
    formatName_.clear();
    undo_.clear();
    redo_.clear();
    cursor_ = selectionStart_ = selectionEnd_ = 0;
    selectionActive_ = false;
}

void WaveEditor::finishSaving() {
    if (saveThread_.joinable()) saveThread_.join();
}

EngineResult WaveEditor::SaveAs(const std::string& path) {
    if (!workFile_) return EngineResult::failure("no document to save");
    finishSaving();
    // The file is locked before this call returns, so whoever waits for it to be
    // free waits for this save, not for the one before it.
    const bool existedBefore = platform::fileExists(path);
    const int lockFd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (lockFd < 0) return EngineResult::failure("can't write " + path + ": " + std::strerror(errno));
    if (::flock(lockFd, LOCK_EX | LOCK_NB) != 0) {
        ::close(lockFd);
        return EngineResult::failure(path + " is in use");
    }
    syncTick();
    auto source = std::make_shared<DocumentSource>(document_.format(), document_.pieces());
    const TargetFormat target = chosen_;
    const std::string comment = comment_;
    const SampleCount range = source->frames();
    const std::shared_ptr<bool> alive = alive_;
    emitBlock(BlockOperationEvent::Phase::Start, "Saving", 0, range);
    saving_ = true;
    lastSaveError_.clear();
    saveThread_ = std::thread([this, alive, source, target, comment, range, path, lockFd, existedBefore] {
        // Written beside the target and moved over it at the end: until then the
        // locked old file stands, after it the complete new one.
        const std::string partial = path + ".partial";
        EngineResult result = encodeFile(*source, partial, target, comment, [&](double fraction) {
            loop_.postFromAnyThread([this, alive, fraction, range] {
                if (*alive) {
                    emitBlock(BlockOperationEvent::Phase::Progress, "Saving",
                              static_cast<SampleCount>(fraction * static_cast<double>(range)), range);
                }
            });
            return true;
        });
        if (result && std::rename(partial.c_str(), path.c_str()) != 0) {
            result = EngineResult::failure("can't replace " + path + ": " + std::strerror(errno));
            std::remove(partial.c_str());
        }
        // A failed first save leaves no empty file behind to be mistaken for a dictation.
        if (!result && !existedBefore) std::remove(path.c_str());
        ::close(lockFd);
        const std::string error = result ? std::string() : result.error();
        loop_.postFromAnyThread([this, alive, error, range] {
            if (!*alive) return;
            lastSaveError_ = error;
            emitBlock(BlockOperationEvent::Phase::End, "Saving", range, range);
        });
        saving_ = false;
    });
    return EngineResult::success();
}

}  // namespace ovd::engine
