// Writing a recording in the chosen format: the target is locked for the whole
// write, so nobody sends or moves a half-written dictation, and a write that
// fails or is given up leaves no file behind to be mistaken for one.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "engine/codec_backends.h"
#include "engine/resampler.h"

namespace ovd::engine {

namespace {

// The rates the MP3 encoder takes (MPEG 1, 2 and 2.5).
constexpr std::array<int, 9> kMp3Rates = {8000,  11025, 12000, 16000, 22050,
                                          24000, 32000, 44100, 48000};
// MPEG layer II has no 2.5 extension: nothing under 16 kHz.
constexpr std::array<int, 6> kMp2Rates = {16000, 22050, 24000, 32000, 44100, 48000};
constexpr int kWmaHighestRate = 48000;
// GSM 6.10 is a telephone codec: 8 kHz mono and nothing else.
constexpr PcmFormat kGsmFormat{8000, 1};

template <std::size_t N>
int nearestRate(int wanted, const std::array<int, N>& rates) {
    int best = rates.front();
    for (const int rate : rates) {
        if (std::abs(rate - wanted) <= std::abs(best - wanted)) best = rate;
    }
    return best;
}

bool throughFfmpeg(FormatWord word) {
    return word == FormatWord::MP3 || word == FormatWord::MP2 || word == FormatWord::WMA ||
           word == FormatWord::OGG;
}

}  // namespace

PcmFormat encodedPcmFormat(const TargetFormat& target, const PcmFormat& source) {
    PcmFormat out;
    out.sampleRate = target.sampleRate > 0 ? target.sampleRate : source.sampleRate;
    out.channels = target.channels == 1 || target.channels == 2 ? target.channels
                                                                : std::clamp(source.channels, 1, 2);
    switch (target.word) {
        case FormatWord::DSP:
            return kGsmFormat;
        case FormatWord::VOX:
            out.channels = 1;  // VOX files are mono by definition
            break;
        case FormatWord::MP3:
            out.sampleRate = nearestRate(out.sampleRate, kMp3Rates);
            break;
        case FormatWord::MP2:
            out.sampleRate = nearestRate(out.sampleRate, kMp2Rates);
            break;
        case FormatWord::WMA:
            out.sampleRate = std::min(out.sampleRate, kWmaHighestRate);
            break;
        case FormatWord::WAV:
        case FormatWord::RAW:
        case FormatWord::OGG:
            break;
    }
    return out;
}

platform::Result<platform::LockedFile> openLockedForWriting(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0) return platform::failure("can't write " + path + ": " + std::strerror(errno));
    auto locked = platform::LockedFile::lock(fd);
    if (!locked) return platform::failure(path + " is in use");
    return locked;
}

platform::Result<void> encodeIntoLockedFile(PcmSource& source, int fd, const std::string& path,
                                            const TargetFormat& target, const FileTags& tags,
                                            const ProgressCallback& progress) {
    const auto giveUp = [&](platform::Result<void> failed) {
        // Readers that still have the file open must not find half a recording either.
        if (::ftruncate(fd, 0) != 0) { /* the unlink below still takes the name away */
        }
        ::unlink(path.c_str());
        return failed;
    };
    if (::ftruncate(fd, 0) != 0 || ::lseek(fd, 0, SEEK_SET) != 0) {
        return giveUp(platform::failure("can't write " + path + ": " + std::strerror(errno)));
    }
    auto converting = ConvertingSource::create(source, encodedPcmFormat(target, source.format()));
    if (!converting) return giveUp(converting.failed());
    std::unique_ptr<ConvertingSource> pcm = std::move(*converting);

    const SampleCount total = source.frames();
    const EncodeJob job{*pcm, target, tags, [&] {
                            if (!progress) return true;
                            const double fraction =
                                total > 0 ? static_cast<double>(pcm->sourceFramesRead()) /
                                                static_cast<double>(total)
                                          : 1.0;
                            return progress(std::min(fraction, 1.0));
                        }};
    platform::Result<void> result = throughFfmpeg(target.word) ? encodeWithFfmpeg(job, fd, path)
                                                               : encodeWithSndfile(job, fd, path);
    if (result && !pcm->error().empty()) result = platform::failure(pcm->error());
    // A dictation counts as saved once it would survive a power cut.
    if (result && ::fsync(fd) != 0) {
        result = platform::failure("can't write " + path + ": " + std::strerror(errno));
    }
    if (!result) return giveUp(std::move(result));
    if (progress) progress(1.0);
    return result;
}

platform::Result<void> encodeFile(PcmSource& source, const std::string& path,
                                  const TargetFormat& target, const FileTags& tags,
                                  const ProgressCallback& progress) {
    auto locked = openLockedForWriting(path);
    if (!locked) return locked.failed();
    // The lock goes as this returns: the file is complete, or gone.
    return encodeIntoLockedFile(source, locked->fd(), path, target, tags, progress);
}

}  // namespace ovd::engine
