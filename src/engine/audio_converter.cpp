#include "engine/audio_converter.h"

#include <unistd.h>

#include <cmath>

#include "engine/codec_backends.h"

namespace ovd::engine {

namespace {

struct Job {
    std::string sourcePath;
    std::optional<TargetFormat> hint;
    std::string targetPath;
    TargetFormat target;
    std::string comment;
};

}  // namespace

AudioConverter::AudioConverter(platform::EventLoop& loop) : loop_(loop) {}

AudioConverter::~AudioConverter() {
    alive_->store(false);
    cancel();
    waitUntilDone();
}

void AudioConverter::setSource(const std::string& path, std::optional<TargetFormat> hint) {
    sourcePath_ = path;
    sourceHint_ = std::move(hint);
    givenSource_.reset();
}

void AudioConverter::setSource(std::unique_ptr<PcmSource> source) {
    sourcePath_.clear();
    sourceHint_.reset();
    givenSource_ = std::move(source);
}

void AudioConverter::setTarget(const std::string& path, const TargetFormat& format) {
    targetPath_ = path;
    target_ = format;
    targetSet_ = true;
}

void AudioConverter::setComment(const std::string& comment) { comment_ = comment; }

void AudioConverter::setOnComplete(Completion onComplete) { onComplete_ = std::move(onComplete); }

std::string AudioConverter::error() const {
    const std::lock_guard lock(errorMutex_);
    return error_;
}

void AudioConverter::cancel() { cancelled_.store(true); }

void AudioConverter::waitUntilDone() {
    if (worker_.joinable()) worker_.join();
}

platform::Result<void> AudioConverter::start() {
    if (busy_.load()) return platform::failure("a conversion is still running");
    waitUntilDone();  // the one before has ended; its thread is collected here
    if (!targetSet_ || targetPath_.empty()) return platform::failure("no target to convert to");
    if (sourcePath_.empty() && !givenSource_) return platform::failure("no source to convert");
    // Locked before this returns: whoever checks the target from now on finds it busy.
    auto locked = openLockedForWriting(targetPath_);
    if (!locked) return locked.failed();

    {
        const std::lock_guard lock(errorMutex_);
        error_.clear();
    }
    percent_.store(0);
    cancelled_.store(false);
    busy_.store(true);
    Job job{sourcePath_, sourceHint_, targetPath_, target_, comment_};
    worker_ = std::thread([this, lockedTarget = std::move(*locked), job = std::move(job),
                           source = std::move(givenSource_), onComplete = onComplete_,
                           alive = alive_]() mutable {
        platform::Result<void> result = platform::Result<void>::success();
        if (!source) {
            auto opened = AudioFileReader::open(job.sourcePath, job.hint ? &*job.hint : nullptr);
            if (opened)
                source = std::move(*opened);
            else
                result = opened.failed();
        }
        if (source) {
            result = encodeIntoLockedFile(
                *source, lockedTarget.fd(), job.targetPath, job.target, job.comment,
                [this](double fraction) {
                    percent_.store(static_cast<int>(std::floor(fraction * 100.0)));
                    return !cancelled_.load();
                });
        } else {
            ::unlink(job.targetPath.c_str());  // nothing was converted: no target either
        }
        {
            const std::lock_guard lock(errorMutex_);
            error_ = result ? std::string() : result.error();
        }
        if (result) percent_.store(100);
        // Not busy any more before the lock goes: while busy() says true the target is never free.
        busy_.store(false);
        lockedTarget.release();
        loop_.postFromAnyThread([alive, onComplete, result] {
            if (alive->load() && onComplete) onComplete(result);
        });
    });
    return platform::Result<void>::success();
}

}  // namespace ovd::engine
