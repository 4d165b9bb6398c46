#pragma once
// The sound server's devices as the station lists them: sources for recording,
// sinks for playback. A device's source lines are its ports; a device without
// ports has one line named after itself. The list is a copy read on the station's
// thread: it is read again after each change made here, and whenever the server
// reports a change (a device plugged in, a volume moved by another mixer).
//
// Monitor sources (what a sink plays) stay in the recording list: they are how a
// user records what the machine plays, and how the tests hear their own output.

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/audio_editor.h"
#include "platform/event_loop.h"

namespace ovd::engine {

class PulseConnection;

enum class DeviceDirection { Recording, Playback };

class PulseDevices : public DeviceList, public std::enable_shared_from_this<PulseDevices> {
  public:
    PulseDevices(std::shared_ptr<PulseConnection> connection, DeviceDirection direction);

    // Reads the devices and the server's default device again (one round trip).
    platform::Result<void> refresh();
    // From any thread: has the list read again on the loop's thread, once however
    // many changes come in before it gets there.
    void refreshLater(platform::EventLoop& loop);

    // The server's name of the device the station's streams use; empty means the
    // server's default, followed wherever it moves.
    [[nodiscard]] std::string streamDevice() const;
    // The server's name of the device a stream opened now would use.
    [[nodiscard]] std::string deviceInUse() const;
    // Whether the server still lists the device of this server name.
    [[nodiscard]] bool lists(const std::string& serverName) const;
    // Called on the loop's thread after a read that refreshLater asked for.
    std::function<void()> onRefreshed;

    [[nodiscard]] int Count() const override { return static_cast<int>(devices_.size()); }
    [[nodiscard]] int Current() const override;
    platform::Result<void> setCurrent(int index) override;
    [[nodiscard]] std::string Name(int index) const override;

    [[nodiscard]] int SourceCount() const override;
    [[nodiscard]] int SourceCurrent() const override;
    platform::Result<void> setSourceCurrent(int index) override;
    [[nodiscard]] std::string SourceName(int index) const override;
    [[nodiscard]] bool HasVolume(int index) const override;
    [[nodiscard]] int Volume(int index) const override;
    platform::Result<void> setVolume(int index, int volume) override;
    [[nodiscard]] int Balance(int index) const override;
    platform::Result<void> setBalance(int index, int balance) override;
    [[nodiscard]] bool Mute(int index) const override;
    platform::Result<void> setMute(int index, bool mute) override;
    [[nodiscard]] unsigned long Changes() const override { return changes_; }

    // What the library reports of one device, in plain types.
    struct Device {
        std::uint32_t serverIndex = 0;
        std::string serverName;  // stable across restarts of the server
        std::string label;       // what the lists show, unique within the list
        std::vector<std::string> portNames;
        std::vector<std::string> portLabels;
        int activePort = 0;
        std::vector<std::uint32_t> channelVolumes;
        std::vector<int> channelPositions;
        bool mute = false;
    };

  private:
    [[nodiscard]] const Device* currentDevice() const;
    // The current device when index names one of its lines.
    [[nodiscard]] const Device* lineOwner(int index) const;
    platform::Result<void> applyVolumes(const Device& device,
                                        const std::vector<std::uint32_t>& volumes);

    std::shared_ptr<PulseConnection> connection_;
    DeviceDirection direction_;
    std::vector<Device> devices_;
    std::string defaultName_;
    std::string chosenName_;  // what setCurrent picked for the station's streams
    std::atomic<bool> refreshQueued_{false};
    unsigned long changes_ = 0;
};

}  // namespace ovd::engine
