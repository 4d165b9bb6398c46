// The formats the sound-file library writes: PCM WAV, VOX ADPCM, headerless RAW
// samples, and GSM 6.10 in a WAV file for "DSP". It also reads them back, and
// MP3 through mpg123.

#include <sndfile.h>

#include <algorithm>
#include <cctype>
#include <vector>

#include "engine/codec_backends.h"
#include "engine/sndfile_formats.h"

namespace ovd::engine {

namespace {

constexpr std::size_t kBlockFrames = 64 * 1024;

struct SndfileCloser {
    void operator()(SNDFILE* file) const { sf_close(file); }
};
using SndfileHandle = std::unique_ptr<SNDFILE, SndfileCloser>;

int wavSubtype(int bitsPerSample) {
    switch (bitsPerSample) {
        case 8:
            return SF_FORMAT_PCM_U8;  // 8-bit WAV samples are unsigned
        case 24:
            return SF_FORMAT_PCM_24;
        case 32:
            return SF_FORMAT_PCM_32;
        default:
            return SF_FORMAT_PCM_16;
    }
}

int rawSubtype(RawEncoding encoding) {
    switch (encoding) {
        case RawEncoding::MuLaw:
            return SF_FORMAT_ULAW;
        case RawEncoding::ALaw:
            return SF_FORMAT_ALAW;
        case RawEncoding::Pcm16:
            break;
    }
    return SF_FORMAT_PCM_16;
}

std::string extensionOf(int majorFormat) {
    SF_FORMAT_INFO info{};
    info.format = majorFormat;
    if (sf_command(nullptr, SFC_GET_FORMAT_INFO, &info, sizeof info) != 0 || !info.extension)
        return "";
    std::string text = info.extension;
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

// The format word a file was found to hold; other formats are named by their extension.
std::string formatNameOf(int format) {
    const int major = format & SF_FORMAT_TYPEMASK;
    const int subtype = format & SF_FORMAT_SUBMASK;
    switch (major) {
        case SF_FORMAT_WAV:
        case SF_FORMAT_WAVEX:
        case SF_FORMAT_RF64:
            return subtype == SF_FORMAT_GSM610 ? "DSP" : "WAV";
        case SF_FORMAT_MPEG:
            return subtype == SF_FORMAT_MPEG_LAYER_II  ? "MP2"
                   : subtype == SF_FORMAT_MPEG_LAYER_I ? "MP1"
                                                       : "MP3";
        case SF_FORMAT_RAW:
            return subtype == SF_FORMAT_VOX_ADPCM ? "VOX" : "RAW";
        default:
            return extensionOf(major);
    }
}

class SndfileReader : public AudioFileReader {
  public:
    SndfileReader(SndfileHandle file, const SF_INFO& info, std::string name)
        : file_(std::move(file)), info_(info), name_(std::move(name)) {}

    [[nodiscard]] PcmFormat format() const override { return {info_.samplerate, info_.channels}; }
    [[nodiscard]] SampleCount frames() const override { return info_.frames; }
    [[nodiscard]] std::string formatName() const override { return name_; }
    std::size_t read(std::int16_t* out, std::size_t frameCount) override {
        const sf_count_t got =
            sf_readf_short(file_.get(), out, static_cast<sf_count_t>(frameCount));
        return got > 0 ? static_cast<std::size_t>(got) : 0;
    }

  private:
    SndfileHandle file_;
    SF_INFO info_;
    std::string name_;
};

platform::Result<std::unique_ptr<AudioFileReader>> openReader(const std::string& path,
                                                              SF_INFO info) {
    SndfileHandle file(sf_open(path.c_str(), SFM_READ, &info));
    if (!file) return platform::failure("can't read " + path + ": " + sf_strerror(nullptr));
    if (info.channels < 1 || info.samplerate <= 0)
        return platform::failure("can't read " + path + ": no usable audio in it");
    return std::unique_ptr<AudioFileReader>(
        std::make_unique<SndfileReader>(std::move(file), info, formatNameOf(info.format)));
}

platform::Result<void> writeAll(SNDFILE* file, const EncodeJob& job, const std::string& path) {
    const auto channels = static_cast<std::size_t>(job.pcm.format().channels);
    std::vector<std::int16_t> block(kBlockFrames * channels);
    while (const std::size_t got = job.pcm.read(block.data(), kBlockFrames)) {
        if (sf_writef_short(file, block.data(), static_cast<sf_count_t>(got)) !=
            static_cast<sf_count_t>(got)) {
            return platform::failure("can't write " + path + ": " + sf_strerror(file));
        }
        if (!job.keepGoing()) return platform::failure(kCancelledText);
    }
    return platform::Result<void>::success();
}

}  // namespace

int sndfileFormatOf(const TargetFormat& target) {
    switch (target.word) {
        case FormatWord::WAV:
            return SF_FORMAT_WAV | wavSubtype(target.bitsPerSample);
        case FormatWord::VOX:
            return SF_FORMAT_RAW | SF_FORMAT_VOX_ADPCM;
        // Headerless samples keep the byte order of the wave files they stand in for.
        case FormatWord::RAW:
            return SF_FORMAT_RAW | rawSubtype(target.raw) | SF_ENDIAN_LITTLE;
        case FormatWord::DSP:
            return SF_FORMAT_WAV | SF_FORMAT_GSM610;
        case FormatWord::MP3:
        case FormatWord::MP2:
        case FormatWord::WMA:
        case FormatWord::OGG:
            break;
    }
    return 0;
}

bool sndfileCarriesComment(FormatWord word) {
    return word == FormatWord::WAV || word == FormatWord::DSP;
}

platform::Result<void> encodeWithSndfile(const EncodeJob& job, int fd, const std::string& path) {
    const PcmFormat pcm = job.pcm.format();
    SF_INFO info{};
    info.samplerate = pcm.sampleRate;
    info.channels = pcm.channels;
    info.format = sndfileFormatOf(job.target);
    const std::string word = formatWordText(job.target.word);
    if (info.format == 0 || !sf_format_check(&info)) {
        return platform::failure("can't write " + word + " at " + std::to_string(pcm.sampleRate) +
                                 " Hz, " + std::to_string(pcm.channels) + " channels");
    }
    // The descriptor stays ours: it carries the lock until the caller lets go.
    SndfileHandle file(sf_open_fd(fd, SFM_WRITE, &info, SF_FALSE));
    if (!file)
        return platform::failure("can't write " + path + " as " + word + ": " +
                                 sf_strerror(nullptr));
    // The letter's details of these formats travel in the text file beside them.
    const std::string& comment = job.tags.comment;
    if (!comment.empty() && sndfileCarriesComment(job.target.word) &&
        sf_set_string(file.get(), SF_STR_COMMENT, comment.c_str()) != 0) {
        return platform::failure("can't write the comment into " + path + ": " +
                                 sf_strerror(file.get()));
    }
    if (platform::Result<void> written = writeAll(file.get(), job, path); !written) return written;
    const int closed = sf_close(file.release());
    if (closed != 0)
        return platform::failure("can't finish " + path + ": " + sf_error_number(closed));
    return platform::Result<void>::success();
}

platform::Result<std::unique_ptr<AudioFileReader>> openWithSndfile(const std::string& path) {
    return openReader(path, SF_INFO{});
}

platform::Result<std::unique_ptr<AudioFileReader>> openHeaderless(const std::string& path,
                                                                  FormatWord kind,
                                                                  const TargetFormat& layout) {
    SF_INFO info{};
    info.samplerate = layout.sampleRate;
    info.channels = kind == FormatWord::VOX ? 1 : layout.channels;
    TargetFormat asWritten = layout;
    asWritten.word = kind;
    info.format = sndfileFormatOf(asWritten);
    if (info.samplerate <= 0 || info.channels < 1 || !sf_format_check(&info)) {
        return platform::failure("can't read " + path + ": no usable layout for a " +
                                 formatWordText(kind) + " file");
    }
    return openReader(path, info);
}

}  // namespace ovd::engine
