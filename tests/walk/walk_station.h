#pragma once
// The station a walk drives: the real composition root over the virtual sound
// backend and the virtual clock, on a fresh data folder, wired as the program
// wires it, with the file boxes answered by the walk itself. The microphone plays
// a tone whose period is no whole number of samples, at whatever rate a take
// asks for, so that audio moved to another place shows in a checksum.

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "engine/virtual_backend.h"
#include "platform/prompts.h"
#include "platform/timer.h"
#include "settings/config_file.h"
#include "settings/event_log.h"
#include "station/station.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"
#include "walk/walk_plan.h"

namespace ovd::walk {

// Boxes take their default button; a file box takes the answer the walk put up
// for it, once, and is cancelled otherwise.
class WalkPrompts : public platform::Prompts {
  public:
    platform::Answer message(const platform::MessageRequest& request) override;
    std::optional<std::string> input(const platform::InputRequest& request) override;
    std::optional<std::string> chooseFile(const platform::FileRequest& request) override;
    std::optional<std::string> chooseFolder(const platform::FolderRequest& request) override;
    void notify(const platform::Notification& notification) override;

    std::optional<std::string> nextFile;
    int shown = 0;
};

// The audio files a walk may open, made once per run: a ramp as WAV and as MP3.
struct SeedFiles {
    std::string shortWave;
    std::string rampMp3;
};
const SeedFiles& seedFiles();

// The virtual clock, but a save under way on its own thread is let finish before
// virtual time moves on: a save then takes no virtual time at all, and a walk runs
// the same however fast the machine encodes.
class WalkEventLoop : public ::ovd::testing::VirtualEventLoop {
  public:
    using VirtualEventLoop::VirtualEventLoop;
    void wait(platform::Milliseconds duration) override {
        if (beforeTimeMoves) beforeTimeMoves();
        VirtualEventLoop::wait(duration);
    }
    std::function<void()> beforeTimeMoves;
};

struct WalkHang : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class WalkStation {
  public:
    explicit WalkStation(const WalkSettings& settings);
    ~WalkStation();
    WalkStation(const WalkStation&) = delete;
    WalkStation& operator=(const WalkStation&) = delete;

    // The load of the station and the first file, which opens by itself.
    void start();
    // The program's orderly end: File > Exit, the unload, the station gone.
    void exitInOrder();

    void advance(int milliseconds) {
        letSavesFinish();
        loop.advance(platform::Milliseconds(milliseconds));
    }
    void letSavesFinish();
    // A step begins: the watchdog measures from here.
    void stepBegins() { stepBegan_ = loop.now(); }
    [[nodiscard]] bool running() const { return station_ != nullptr && !exitAsked_; }

    station::Station& station() { return *station_; }
    dictation::Dictation& d() { return station_->dictation(); }
    engine::WaveEditor& editor1() { return station_->recordingEditor(); }
    engine::WaveEditor& editor21() { return station_->scratchEditor(); }

    // A pedal edge as the serial or USB reader hands it on: index 0 to 2 are the
    // serial pedals, 3 to 5 the USB ones. Each call turns the pedal the other way.
    void pedal(int index);
    [[nodiscard]] std::string pedalKeyword(int index) const;
    [[nodiscard]] bool pedalDown(int index) const {
        return pedalsDown_[static_cast<std::size_t>(index)];
    }

    [[nodiscard]] std::string temporaryFolder() const { return recordings + "/Temp"; }
    [[nodiscard]] std::string destinationFolder() const { return folder.file("Dest1"); }

    WalkSettings settings;
    ::ovd::testing::TempFolder folder;
    std::string recordings = folder.file("Rec");
    WalkEventLoop loop{::ovd::testing::localTime(2026, 11, 23, 9, 0, 0)};
    settings::ConfigFile config{folder.path()};
    settings::EventLog log{loop, folder.path(), config.record};
    WalkPrompts prompts;
    engine::VirtualBackend backend{loop, {437.3, 0.25, ""}};

  private:
    // No step of a walk needs more than a few virtual seconds: a step that runs on
    // for minutes waits for something that will never come. The watchdog ends the
    // walk there by throwing WalkHang out of the loop.
    platform::Timer watchdog_{loop, "walkWatchdog", 1000};
    platform::WallClock::time_point stepBegan_ = loop.now();
    std::unique_ptr<station::Station> station_;
    bool exitAsked_ = false;
    std::array<bool, 6> pedalsDown_{};
};

}  // namespace ovd::walk
