// Documents and files: new, open and close, the work file's life, and bringing
// whole files into a document.

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "engine/resampler.h"
#include "engine/wave_editor.h"
#include "platform/files.h"

namespace ovd::engine {

namespace {
constexpr std::size_t kCopyFrames = 64 * 1024;
constexpr const char* kWorkFileExtension = ".tmp";
}  // namespace

std::string WaveEditor::TempFileName() const { return workFile_ ? workFile_->path() : tempFolder_; }

void WaveEditor::setTempFileName(const std::string& folderOrPath) {
    // A path ending in the work file extension names the file; anything else is the folder.
    const std::filesystem::path given(folderOrPath);
    tempFolder_ =
        given.extension() == kWorkFileExtension ? given.parent_path().string() : folderOrPath;
}

platform::Result<void> WaveEditor::startDocument(const PcmFormat& format) {
    Close();
    const std::string folder =
        tempFolder_.empty() ? std::filesystem::temp_directory_path().string() : tempFolder_;
    if (!platform::createFolder(folder))
        return platform::failure("can't make the folder " + folder);
    // The process id keeps two stations on one folder apart; the counter, this
    // editor's successive documents.
    const std::string name = "ovd" + std::to_string(::getpid()) + "-" + name_ + "-" +
                             std::to_string(++workFilesMade_) + kWorkFileExtension;
    auto created = WorkFile::create(platform::joinPath(folder, name), format);
    if (!created) return created.failed();
    workFile_ = std::move(*created);
    document_ = AudioDocument(format);
    syncedFrames_ = 0;
    syncTimer_.setEnabled(true);
    return platform::Result<void>::success();
}

platform::Result<void> WaveEditor::New(int samplesPerSecond, int channels) {
    if (samplesPerSecond <= 0 || channels < 1 || channels > 2) {
        return platform::failure("a new document needs a rate and one or two channels");
    }
    // A new letter starts without details: what the last letter was about is not this one's.
    details_.clear();
    return startDocument({samplesPerSecond, channels});
}

platform::Result<void> WaveEditor::ConvertSampleType(int samplesPerSecond, int channels) {
    if (state_ != EditorState::Stopped) return platform::failure("stop first");
    if (!workFile_) return platform::failure("no document");
    if (samplesPerSecond <= 0 || channels < 1 || channels > 2) {
        return platform::failure("a document needs a rate and one or two channels");
    }
    const PcmFormat from = document_.format();
    if (from == PcmFormat{samplesPerSecond, channels}) return platform::Result<void>::success();
    // The old pieces keep the old work file readable while the new one is filled.
    DocumentSource old(from, document_.pieces());
    const std::string name = formatName_;
    const double cursorSeconds = static_cast<double>(cursor_) / from.sampleRate;
    if (platform::Result<void> started = startDocument({samplesPerSecond, channels}); !started)
        return started;
    PieceList converted;
    if (platform::Result<void> appended = appendSource(old, "Converting", converted); !appended)
        return appended;
    document_.replaceAll(converted);
    formatName_ = name;
    cursor_ =
        std::min(document_.length(), static_cast<SampleCount>(cursorSeconds * samplesPerSecond));
    viewChanged();
    return platform::Result<void>::success();
}

platform::Result<PcmSource*> WaveEditor::inDocumentFormat(
    PcmSource& source, std::unique_ptr<ConvertingSource>& holder) const {
    if (source.format() == document_.format()) return &source;
    auto created = ConvertingSource::create(source, document_.format());
    if (!created) return created.failed();
    holder = std::move(*created);
    return static_cast<PcmSource*>(holder.get());
}

platform::Result<void> WaveEditor::appendSource(PcmSource& source, const char* operation,
                                                PieceList& added) {
    // Audio of another rate or channel count is brought to the document's on the way in.
    std::unique_ptr<ConvertingSource> converted;
    auto converting = inDocumentFormat(source, converted);
    if (!converting) return converting.failed();
    PcmSource* input = *converting;
    const SampleCount range = input->frames();
    emitBlock(BlockOperationEvent::Phase::Start, operation, 0, range);
    const SampleCount first = workFile_->frames();
    std::vector<std::int16_t> block(kCopyFrames *
                                    static_cast<std::size_t>(document_.format().channels));
    SampleCount copied = 0;
    while (const std::size_t got = input->read(block.data(), kCopyFrames)) {
        workFile_->append(block.data(), got);
        copied += static_cast<SampleCount>(got);
        emitBlock(BlockOperationEvent::Phase::Progress, operation, copied, range);
    }
    emitBlock(BlockOperationEvent::Phase::End, operation, copied, range);
    if (converted && !converted->error().empty()) return platform::failure(converted->error());
    added = {Piece{workFile_, first, copied}};
    syncTick();
    return platform::Result<void>::success();
}

platform::Result<void> WaveEditor::appendFile(const std::string& path, const char* operation,
                                              PieceList& added) {
    TargetFormat hint = chosen_;
    auto opened = AudioFileReader::open(path, &hint);
    if (!opened) return opened.failed();
    std::unique_ptr<AudioFileReader> reader = std::move(*opened);
    if (!workFile_) {
        if (platform::Result<void> started = startDocument(reader->format()); !started)
            return started;
    }
    if (platform::Result<void> appended = appendSource(*reader, operation, added); !appended)
        return appended;
    if (formatName_.empty()) formatName_ = reader->formatName();
    return platform::Result<void>::success();
}

platform::Result<void> WaveEditor::Open(const std::string& path) {
    Close();
    PieceList added;
    if (platform::Result<void> appended = appendFile(path, "Opening", added); !appended) {
        Close();
        return appended;
    }
    document_.replaceAll(added);
    cursor_ = 0;
    details_ = readLetterDetails(path);
    // Until the author changes it, a save leaves this file as it is.
    rememberFileOnDisk(path, document_.pieces(), details_, onDisk_);
    viewChanged();
    return platform::Result<void>::success();
}

void WaveEditor::Close() { dropDocument(true); }

void WaveEditor::dropDocument(bool removeWorkFile) {
    Stop();
    // An effect's result has nowhere to go once its document is gone.
    if (effect_) effect_->cancelled = true;
    // The saved file is completed before the document goes.
    finishSavedFile();
    syncTimer_.setEnabled(false);
    if (workFile_) {
        // Closed, the document was saved or given up by the dictation: its work file
        // goes. Audio still on the clipboard stays readable through the open file.
        if (removeWorkFile) workFile_->removeFromDisk();
        workFile_.reset();
    }
    document_ = AudioDocument();
    formatName_.clear();
    details_.clear();
    undo_.clear();
    redo_.clear();
    onDisk_.reset();
    cursor_ = selectionStart_ = selectionEnd_ = 0;
    selectionActive_ = false;
}

}  // namespace ovd::engine
