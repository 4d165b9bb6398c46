// Mixing a file or the clipboard in, saving the selection, the desktop's
// clipboard as wave bytes, and the spectral view's data.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <future>
#include <vector>

#include "engine/clipboard_wav.h"
#include "engine/resampler.h"
#include "engine/scratch_work_file.h"
#include "engine/spectrum.h"
#include "engine/wave_editor.h"
#include "platform/files.h"

namespace ovd::engine {

namespace {
constexpr std::size_t kMixFrames = 64 * 1024;
constexpr const char* kSavingSelection = "Saving";
constexpr const char* kPartialSuffix = ".partial";

std::int16_t mixed(int a, int b) {
    return static_cast<std::int16_t>(std::clamp(a + b, -32768, 32767));
}
}  // namespace

std::string WaveEditor::scratchFolder() const {
    if (workFile_) return std::filesystem::path(workFile_->path()).parent_path().string();
    return tempFolder_.empty() ? std::filesystem::temp_directory_path().string() : tempFolder_;
}

platform::Result<void> WaveEditor::mixSource(PcmSource& source, const char* operation) {
    std::unique_ptr<ConvertingSource> converted;
    auto converting = inDocumentFormat(source, converted);
    if (!converting) return converting.failed();
    PcmSource* input = *converting;
    const SampleCount at = cursor_;
    const auto channels = static_cast<std::size_t>(document_.format().channels);
    DocumentSource under(document_.format(), document_.slice(at, document_.length()));
    std::vector<std::int16_t> added(kMixFrames * channels);
    std::vector<std::int16_t> existing(kMixFrames * channels);
    const SampleCount range = input->frames();
    emitBlock(BlockOperationEvent::Phase::Start, operation, 0, range);
    // Nothing else writes to the work file while the editor stands still, so what
    // is appended here is one piece.
    const SampleCount first = workFile_->frames();
    SampleCount total = 0;
    SampleCount overlapped = 0;
    while (const std::size_t got = input->read(added.data(), kMixFrames)) {
        const std::size_t below = under.read(existing.data(), got);
        for (std::size_t i = 0; i < below * channels; ++i) added[i] = mixed(added[i], existing[i]);
        workFile_->append(added.data(), got);
        total += static_cast<SampleCount>(got);
        overlapped += static_cast<SampleCount>(below);
        emitBlock(BlockOperationEvent::Phase::Progress, operation, total, range);
    }
    emitBlock(BlockOperationEvent::Phase::End, operation, total, range);
    if (converted && !converted->error().empty()) return platform::failure(converted->error());
    if (total == 0) return platform::failure("there is no audio to mix in");
    rememberForUndo();
    document_.remove(at, at + overlapped);
    document_.insert(at, {Piece{workFile_, first, total}});
    selectionActive_ = false;
    selectionStart_ = selectionEnd_ = cursor_;
    viewChanged();
    syncTick();
    return platform::Result<void>::success();
}

platform::Result<void> WaveEditor::MixFile(const std::string& path) {
    if (state_ != EditorState::Stopped) return platform::failure("stop first");
    if (!workFile_) return platform::failure("no document");
    if (effect_) return platform::failure("wait until the effect has ended");
    TargetFormat hint = chosen_;
    auto opened = AudioFileReader::open(path, &hint);
    if (!opened) return opened.failed();
    return mixSource(**opened, "Mixing File");
}

platform::Result<void> WaveEditor::MixClipboard() {
    if (state_ != EditorState::Stopped) return platform::failure("stop first");
    if (!workFile_) return platform::failure("no document");
    if (effect_) return platform::failure("wait until the effect has ended");
    if (clipboard_->empty()) return platform::failure("the clipboard is empty");
    DocumentSource source(clipboard_->format, clipboard_->pieces);
    return mixSource(source, "Mixing");
}

platform::Result<AudioEditor::SaveOutcome> WaveEditor::SaveSelectionAs(const std::string& path) {
    if (!workFile_) return platform::failure("no document to save");
    const SampleCount from = std::min(selectionStart_, selectionEnd_);
    const SampleCount to = std::max(selectionStart_, selectionEnd_);
    if (!selectionActive_ || from == to) return platform::failure("nothing is selected");
    finishSaving();
    // The file a take has been growing is completed before anything else is written there.
    if (session_ && session_->path == path) finishSavedFile();
    auto existing = lockExistingFile(path);
    if (!existing) return existing.failed();
    const SampleCount range = to - from;
    emitBlock(BlockOperationEvent::Phase::Start, kSavingSelection, 0, range);
    saving_ = true;
    std::promise<platform::Result<void>> settled;
    SaveOutcome outcome = settled.get_future().share();
    saveThread_ = std::thread([this, alive = alive_, path, target = chosen_, comment = comment_,
                               format = document_.format(), pieces = document_.slice(from, to),
                               lock = std::move(*existing), range,
                               settled = std::move(settled)]() mutable {
        // Written beside the target and moved over it once complete, as every save is.
        const std::string partial = path + kPartialSuffix;
        DocumentSource source(format, std::move(pieces));
        platform::Result<void> result =
            encodeFile(source, partial, target, comment, [&](double fraction) {
                const auto done = static_cast<SampleCount>(fraction * static_cast<double>(range));
                loop_.postFromAnyThread([this, alive, done, range] {
                    if (*alive)
                        emitBlock(BlockOperationEvent::Phase::Progress, kSavingSelection, done,
                                  range);
                });
                return true;
            });
        if (result && std::rename(partial.c_str(), path.c_str()) != 0) {
            result = platform::failure("can't replace " + path + ": " + std::strerror(errno));
            std::remove(partial.c_str());
        }
        settled.set_value(std::move(result));
        lock.release();
        loop_.postFromAnyThread([this, alive, range] {
            if (*alive) emitBlock(BlockOperationEvent::Phase::End, kSavingSelection, range, range);
        });
        saving_ = false;
    });
    return outcome;
}

std::string WaveEditor::ClipboardAsWav() const {
    if (clipboard_->empty()) return {};
    DocumentSource source(clipboard_->format, clipboard_->pieces);
    return waveFileBytes(source);
}

platform::Result<void> WaveEditor::setClipboardFromWav(const std::string& wavBytes) {
    auto parsed = parseWaveFileBytes(wavBytes);
    if (!parsed) return parsed.failed();
    auto scratch = scratchWorkFile(scratchFolder(), parsed->format);
    if (!scratch) return scratch.failed();
    const std::size_t frames =
        parsed->samples.size() / static_cast<std::size_t>(parsed->format.channels);
    (*scratch)->append(parsed->samples.data(), frames);
    clipboard_->format = parsed->format;
    clipboard_->pieces = {Piece{*scratch, 0, static_cast<SampleCount>(frames)}};
    return platform::Result<void>::success();
}

std::vector<std::vector<float>> WaveEditor::Spectrum(SampleCount from, SampleCount to, int columns,
                                                     int bins) const {
    from = clampToDocument(from);
    to = clampToDocument(to);
    const FrameReader read = [this](SampleCount position, std::int16_t* out, std::size_t count) {
        return document_.read(position, out, count);
    };
    return spectrumColumns(read, document_.format().channels, from, to, columns, bins);
}

}  // namespace ovd::engine
