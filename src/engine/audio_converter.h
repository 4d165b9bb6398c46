#pragma once
// The station's format converter: turns a saved dictation (or any audio) into
// another format, rate or channel count off the loop's thread. The target is
// locked from start() until it is complete, so a sender waiting for the file
// to be free waits for the whole conversion; a conversion that fails or is
// cancelled leaves no target behind.

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "engine/codecs.h"
#include "platform/event_loop.h"

namespace ovd::engine {

class AudioConverter {
  public:
    // Runs on the loop's thread once the work is over: success, or the reason.
    using Completion = std::function<void(const platform::Result<void>&)>;

    explicit AudioConverter(platform::EventLoop& loop);
    // Cancels a conversion still running and waits for it to stop.
    ~AudioConverter();
    AudioConverter(const AudioConverter&) = delete;
    AudioConverter& operator=(const AudioConverter&) = delete;

    // A file; RAW and VOX files need the hint that says how they are laid out.
    void setSource(const std::string& path, std::optional<TargetFormat> hint = std::nullopt);
    // Audio already at hand (a document, say), read front to back on the worker thread.
    void setSource(std::unique_ptr<PcmSource> source);
    void setTarget(const std::string& path, const TargetFormat& format);
    // Written where the target format has a comment field.
    void setComment(const std::string& comment);
    void setOnComplete(Completion onComplete);

    // Locks the target and starts the work. Fails at once when a conversion is
    // still running, nothing was set, or the target can't be locked; everything
    // later (an unreadable source included) comes through error() and the completion.
    platform::Result<void> start();
    // Asks the running conversion to stop; it ends as a failure and removes the target.
    void cancel();
    // Blocks until the running conversion has ended (its completion is still posted).
    void waitUntilDone();

    [[nodiscard]] int progressPercent() const { return percent_.load(); }
    [[nodiscard]] bool busy() const { return busy_.load(); }
    // The reason the last conversion failed; empty after a success.
    [[nodiscard]] std::string error() const;

  private:
    void run(int lockFd, std::unique_ptr<PcmSource> source);

    platform::EventLoop& loop_;
    std::string sourcePath_;
    std::optional<TargetFormat> sourceHint_;
    std::unique_ptr<PcmSource> givenSource_;
    std::string targetPath_;
    TargetFormat target_;
    bool targetSet_ = false;
    std::string comment_;
    Completion onComplete_;

    std::thread worker_;
    std::atomic<int> percent_{0};
    std::atomic<bool> busy_{false};
    std::atomic<bool> cancelled_{false};
    mutable std::mutex errorMutex_;
    std::string error_;
    // Cleared when the converter goes, so a completion still queued on the loop is dropped.
    std::shared_ptr<std::atomic<bool>> alive_ = std::make_shared<std::atomic<bool>>(true);
};

}  // namespace ovd::engine
