#include "walk/walk_checks.h"

#include <chrono>
#include <cstdlib>
#include <thread>
#include <vector>

#include "engine/codecs.h"
#include "platform/files.h"
#include "platform/text.h"

namespace ovd::walk {

namespace {

constexpr const char* kSaved = " File Save Successfull";

std::uint64_t fnv(std::uint64_t hash, const void* data, std::size_t bytes) {
    const auto* p = static_cast<const unsigned char*>(data);
    for (std::size_t i = 0; i < bytes; ++i) hash = (hash ^ p[i]) * 0x100000001B3ULL;
    return hash;
}
constexpr std::uint64_t kFnvStart = 0xCBF29CE484222325ULL;

std::uint64_t documentChecksum(engine::WaveEditor& editor) {
    std::uint64_t hash = kFnvStart;
    std::vector<std::int16_t> chunk(65536 *
                                    static_cast<std::size_t>(std::max(editor.Channels(), 1)));
    engine::SampleCount at = 0;
    const engine::SampleCount length = editor.Length();
    while (at < length) {
        const auto want =
            static_cast<std::size_t>(std::min<engine::SampleCount>(length - at, 65536));
        const std::size_t got = editor.readFrames(at, chunk.data(), want);
        if (got == 0) break;
        hash = fnv(
            hash, chunk.data(),
            got * sizeof(std::int16_t) * static_cast<std::size_t>(std::max(editor.Channels(), 1)));
        at += static_cast<engine::SampleCount>(got);
    }
    return hash;
}

std::optional<std::uint64_t> fileChecksum(const std::string& path) {
    const auto bytes = platform::readWholeFile(path);
    if (!bytes) return std::nullopt;
    return fnv(kFnvStart, bytes->data(), bytes->size());
}

std::map<std::string, std::uint64_t> lettersOnDisk(WalkStation& station) {
    std::map<std::string, std::uint64_t> letters;
    for (const std::string& name : platform::filesInFolder(station.recordings)) {
        const std::string path = station.recordings + "/" + name;
        if (const auto sum = fileChecksum(path)) letters[path] = *sum;
    }
    return letters;
}

// Frames of a saved file, read to its end; nothing when it can't be read.
std::optional<std::pair<engine::SampleCount, int>> decodedFrames(const std::string& path) {
    auto opened = engine::AudioFileReader::open(path);
    if (!opened) return std::nullopt;
    auto& reader = *opened;
    const int channels = std::max(reader->format().channels, 1);
    std::vector<std::int16_t> chunk(8192 * static_cast<std::size_t>(channels));
    engine::SampleCount frames = 0;
    while (const std::size_t got = reader->read(chunk.data(), 8192))
        frames += static_cast<engine::SampleCount>(got);
    return std::make_pair(frames, reader->format().sampleRate);
}

std::string describe(const Observation& o) {
    return "file '" + platform::withoutFolder(o.filename) + "' " + std::to_string(o.length) +
           " samples, engine states " + std::to_string(o.state1) + "/" + std::to_string(o.state21) +
           ", Recordingstatus " + (o.Recordingstatus ? "true" : "false");
}

bool contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

}  // namespace

Observation observe(WalkStation& station) {
    Observation o;
    engine::WaveEditor& e1 = station.editor1();
    const dictation::DictationState& state = station.d().state();
    o.hasDocument = e1.hasDocument();
    o.filename = state.Filename;
    o.length = e1.Length();
    o.rate = e1.SamplesPerSecond();
    o.checksum = o.hasDocument ? documentChecksum(e1) : 0;
    o.selection = e1.SelectionActive() && e1.SelectionEnd() > e1.SelectionStart();
    o.state1 = e1.State();
    o.state21 = station.editor21().State();
    o.Recordingstatus = state.Recordingstatus;
    o.scratchTake = state.DoingInsertUpdate || state.OverWriteFile || state.DoingAppending;
    o.logLength = station.log.text().size();
    return o;
}

bool WalkChecks::checking(const char* invariant) {
    if (skipped_.count(invariant) != 0) return false;
    ++checks_;
    ++byRule_[invariant];
    return true;
}

void WalkChecks::beforeStep(WalkStation& station, const Step& step) {
    watchScreen(station);
    if (!haveBefore_) {
        before_ = observe(station);
        haveBefore_ = true;
    }
    const WalkCommand* command = findWalkCommand(step.command);
    lettersBefore_.clear();
    if (command != nullptr && command->opensFile) lettersBefore_ = lettersOnDisk(station);
}

std::optional<Violation> WalkChecks::afterCommand(WalkStation& station, const Step& step) {
    const WalkCommand* command = findWalkCommand(step.command);
    if (command == nullptr || !command->needsSelection || before_.selection ||
        !checking("selection")) {
        return std::nullopt;
    }
    const Observation now = observe(station);
    const Observation& was = before_;
    if (now.filename == was.filename && now.length == was.length && now.checksum == was.checksum)
        return std::nullopt;
    return Violation{"selection", "'" + step.command +
                                      "' with no selection changed the audio from " +
                                      describe(was) + " to " + describe(now)};
}

std::optional<Violation> WalkChecks::afterGreyedRoute(WalkStation& station, const Step& step,
                                                      const std::string& route) {
    if (route.empty() || !checking("greyed")) return std::nullopt;
    const Observation now = observe(station);
    const Observation& was = before_;
    const bool same = now.filename == was.filename && now.hasDocument == was.hasDocument &&
                      now.length == was.length && now.checksum == was.checksum;
    const bool takeStarted = (now.engineRecords() && !was.engineRecords()) ||
                             (now.Recordingstatus && !was.Recordingstatus);
    if (same && !takeStarted) return std::nullopt;
    return Violation{"greyed", "'" + step.command + "' was greyed, yet " + route + " went from " +
                                   describe(was) + " to " + describe(now)};
}

std::optional<Violation> WalkChecks::afterStep(WalkStation& station, const Step& step) {
    const Observation now = observe(station);
    std::optional<Violation> found = screenAgreesWithEngine(station, now);
    if (!found) found = audioKeptUnlessEdited(station, step, now);
    if (!found) found = savedFileIsWhole(station, now);
    if (!found) found = listenedFileUntouched(station, step, now);
    if (!found) found = everyChangeAnnounced(station);
    if (!found) found = letterKeepsTheSoundDevice(station, now);
    before_ = now;
    return found;
}

std::optional<Violation> WalkChecks::letterKeepsTheSoundDevice(WalkStation& station,
                                                               const Observation& now) {
    if (!station.running() || !now.engineRecords() || !checking("second")) return std::nullopt;
    const bool holds = station.station().soundDevice().captureHolder() ==
                       station::SharedSoundDevice::Holder::MainWindow;
    const int second = station.station().secondEditor().editor().State();
    if (holds && second == 0) return std::nullopt;
    return Violation{"second", std::string("the letter records while ") +
                                   (holds ? "" : "it does not hold the microphone and ") +
                                   "the second editor's state is " + std::to_string(second) + "; " +
                                   describe(now)};
}

void WalkChecks::watchScreen(WalkStation& station) {
    if (watchingScreen_ || !station.running()) return;
    watchingScreen_ = true;
    dictation::Dictation& d = station.d();
    drawn_ = d.view();  // the window's first full drawing
    d.onViewChanged = [this, &d, previous = d.onViewChanged] {
        drawn_ = d.view();
        if (previous) previous();
    };
}

std::optional<Violation> WalkChecks::everyChangeAnnounced(WalkStation& station) {
    if (!watchingScreen_ || !station.running() || !checking("announced")) return std::nullopt;
    const dictation::MainView& v = station.d().view();
    if (station.d().viewAnnouncementDue()) {
        return Violation{"announced", "a change of the view still waits for its announcement"};
    }
    if (dictation::sameScreen(drawn_, v)) return std::nullopt;
    std::string stale;
    if (drawn_.caption != v.caption)
        stale += " caption '" + drawn_.caption + "' for '" + v.caption + "'";
    if (drawn_.statusLine != v.statusLine)
        stale += " status '" + drawn_.statusLine + "' for '" + v.statusLine + "'";
    if (drawn_.timeElapsed != v.timeElapsed)
        stale += " time " + drawn_.timeElapsed + " for " + v.timeElapsed;
    if (!(drawn_.transportBar == v.transportBar)) stale += " the transport bar";
    if (stale.empty()) stale = " some control";
    return Violation{"announced", "the view changed unannounced; the window shows" + stale};
}

std::optional<Violation> WalkChecks::screenAgreesWithEngine(WalkStation& station,
                                                            const Observation& now) {
    const dictation::MainView& v = station.d().view();
    const bool onAir =
        v.onAirLamp1 || v.onAirLamp2 || (v.lblOnAirVisible && v.lblOnAir == "ON AIR");
    if (checking("onair") && onAir && !now.engineRecords()) {
        return Violation{"onair", "the lamps show ON AIR (lamps " + std::to_string(v.onAirLamp1) +
                                      "/" + std::to_string(v.onAirLamp2) + ", label '" +
                                      v.lblOnAir + "' " + (v.lblOnAirVisible ? "shown" : "hidden") +
                                      ") while no engine records; " + describe(now)};
    }
    if (checking("status") && now.Recordingstatus != now.engineRecords()) {
        return Violation{"status", std::string("Recordingstatus is ") +
                                       (now.Recordingstatus ? "true" : "false") + " but " +
                                       describe(now)};
    }
    if (checking("caption")) {
        const bool saysRecording = contains(v.caption, "File is being Recorded");
        const bool saysPlaying = contains(v.caption, "File is Playing");
        const bool plainTake = now.state1 == 2 && !now.scratchTake;
        if (saysRecording && !now.engineRecords()) {
            return Violation{
                "caption", "caption '" + v.caption + "' while no engine records; " + describe(now)};
        }
        if (plainTake && !saysRecording) {
            return Violation{"caption", "a take runs but the caption reads '" + v.caption + "'; " +
                                            describe(now)};
        }
        if (saysPlaying && now.state1 != 1) {
            return Violation{"caption", "caption '" + v.caption +
                                            "' while the file does not play; " + describe(now)};
        }
        if (now.state1 == 1 && !saysPlaying) {
            return Violation{"caption", "the file plays but the caption reads '" + v.caption +
                                            "'; " + describe(now)};
        }
    }
    return std::nullopt;
}

std::optional<Violation> WalkChecks::audioKeptUnlessEdited(WalkStation& station, const Step& step,
                                                           const Observation& now) {
    const Observation& was = before_;
    const bool same = now.filename == was.filename && now.hasDocument == was.hasDocument &&
                      now.length == was.length && now.checksum == was.checksum;
    const std::string change = "from " + describe(was) + " to " + describe(now);
    const bool takeAround = was.takeUnderWay() || now.takeUnderWay();
    if (!stepIsAuthorEdit(station, step) && !takeAround && checking("document") && !same) {
        return Violation{
            "document",
            "'" + step.command + "' is no edit of the author's, yet the audio went " + change};
    }
    return std::nullopt;
}

std::optional<Violation> WalkChecks::savedFileIsWhole(WalkStation& station,
                                                      const Observation& now) {
    const std::string& log = station.log.text();
    const auto at = log.rfind(kSaved);
    if (at == std::string::npos || at < before_.logLength) return std::nullopt;
    const auto lineStart = log.rfind('\n', at);
    std::string line = log.substr(lineStart == std::string::npos ? 0 : lineStart + 1,
                                  at - (lineStart == std::string::npos ? 0 : lineStart + 1));
    // "yyyy-mm-dd hh:mm:ss " before the name.
    const std::string path = line.size() > 20 ? line.substr(20) : line;
    engine::SampleCount expected = -1;
    int rate = 0;
    if (path == now.filename && now.hasDocument && !now.takeUnderWay()) {
        expected = now.length;
        rate = now.rate;
    } else if (path == before_.filename && before_.hasDocument && !before_.takeUnderWay()) {
        expected = before_.length;
        rate = before_.rate;
    }
    if (expected < 0 || !checking("saved")) return std::nullopt;
    // A periodic save may have begun since: the file is read once it is let go.
    for (int i = 0; i < 5000 && station.editor1().saving(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const auto decoded = decodedFrames(path);
    if (!decoded) {
        if (!platform::fileExists(path)) return std::nullopt;  // erased or moved on by the author
        return Violation{"saved",
                         "the saved file " + platform::withoutFolder(path) + " can't be read"};
    }
    if (rate <= 0) rate = decoded->second;
    const engine::SampleCount want = expected * decoded->second / std::max(rate, 1);
    const bool mp3 = platform::toUpper(path).ends_with(".MP3");
    const engine::SampleCount frame = mp3 ? (decoded->second >= 32000 ? 1152 : 576) : 0;
    if (std::llabs(decoded->first - want) > frame) {
        return Violation{"saved", "the saved file " + platform::withoutFolder(path) +
                                      " decodes to " + std::to_string(decoded->first) +
                                      " samples, the document holds " + std::to_string(want)};
    }
    return std::nullopt;
}

std::optional<Violation> WalkChecks::listenedFileUntouched(WalkStation& /*station*/,
                                                           const Step& step,
                                                           const Observation& now) {
    if (listened_) {
        if (now.filename == listened_->path) {
            // Saved by the author's own hand, the file is no longer one only listened to.
            if (step.command == "save" || now.takeUnderWay() || before_.takeUnderWay() ||
                now.length != listened_->length || now.checksum != listened_->checksum) {
                listened_->edited = true;
            }
        } else {
            const Listened gone = *listened_;
            listened_.reset();
            const bool erased = step.command == "button" && step.a == 8;
            if (!gone.edited && !erased && checking("listen")) {
                const auto bytes = fileChecksum(gone.path);
                if (!bytes) {
                    return Violation{"listen", "the file " + platform::withoutFolder(gone.path) +
                                                   ", opened only to listen, is gone"};
                }
                if (*bytes != gone.bytes) {
                    return Violation{"listen", "the file " + platform::withoutFolder(gone.path) +
                                                   ", opened only to listen, was rewritten"};
                }
            }
        }
    }
    if (!listened_ && now.hasDocument) {
        const auto known = lettersBefore_.find(now.filename);
        if (known != lettersBefore_.end() && now.filename != before_.filename &&
            !now.takeUnderWay()) {
            listened_ = Listened{now.filename, known->second, now.length, now.checksum, false};
        }
    }
    return std::nullopt;
}

std::optional<Violation> WalkChecks::afterExit(WalkStation& station) {
    if (listened_ && !listened_->edited && checking("listen")) {
        const auto bytes = fileChecksum(listened_->path);
        if (bytes && *bytes != listened_->bytes) {
            return Violation{"listen", "the file " + platform::withoutFolder(listened_->path) +
                                           ", opened only to listen, was rewritten by the exit"};
        }
    }
    if (checking("workfiles")) {
        std::string left;
        for (const std::string& name : platform::filesInFolder(station.temporaryFolder())) {
            if (platform::toUpper(name).ends_with(".TMP"))
                left += (left.empty() ? "" : ", ") + name;
        }
        if (!left.empty())
            return Violation{"workfiles", "work files left in Temp after an orderly exit: " + left};
    }
    return std::nullopt;
}

}  // namespace ovd::walk
