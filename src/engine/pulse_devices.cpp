#include "engine/pulse_devices.h"

#include <pulse/pulseaudio.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "engine/pulse_connection.h"

namespace ovd::engine {

namespace {

constexpr int kStationVolumeMax = 65535;

// The station's volumes run 0 to 65535; the server's unity gain is one more than
// that. Gains above unity (the server allows boosting) show as full scale.
int toStationVolume(std::uint32_t volume) {
    const std::uint64_t capped = std::min<std::uint64_t>(volume, PA_VOLUME_NORM);
    return static_cast<int>((capped * kStationVolumeMax + PA_VOLUME_NORM / 2) / PA_VOLUME_NORM);
}

pa_volume_t toServerVolume(int volume) {
    const auto clamped = static_cast<std::uint64_t>(std::clamp(volume, 0, kStationVolumeMax));
    return static_cast<pa_volume_t>((clamped * PA_VOLUME_NORM + kStationVolumeMax / 2) /
                                    kStationVolumeMax);
}

pa_cvolume serverVolumes(const std::vector<std::uint32_t>& volumes) {
    pa_cvolume result;
    pa_cvolume_init(&result);
    result.channels = static_cast<std::uint8_t>(volumes.size());
    std::copy(volumes.begin(), volumes.end(), result.values);
    return result;
}

pa_channel_map serverChannelMap(const PulseDevices::Device& device) {
    pa_channel_map result;
    pa_channel_map_init(&result);
    result.channels = static_cast<std::uint8_t>(device.channelPositions.size());
    for (std::size_t i = 0; i < device.channelPositions.size(); ++i) {
        result.map[i] = static_cast<pa_channel_position_t>(device.channelPositions[i]);
    }
    return result;
}

// Sinks and sources are described by twin structures with the same field names.
template <typename Info>
PulseDevices::Device deviceFrom(const Info& info) {
    PulseDevices::Device device;
    device.serverIndex = info.index;
    device.serverName = info.name != nullptr ? info.name : "";
    device.label = info.description != nullptr && *info.description != '\0' ? info.description
                                                                            : device.serverName;
    for (std::uint32_t i = 0; i < info.n_ports; ++i) {
        device.portNames.emplace_back(info.ports[i]->name);
        const char* description = info.ports[i]->description;
        device.portLabels.emplace_back(
            description != nullptr && *description != '\0' ? description : info.ports[i]->name);
        if (info.ports[i] == info.active_port) device.activePort = static_cast<int>(i);
    }
    for (std::uint8_t c = 0; c < info.volume.channels; ++c) {
        device.channelVolumes.push_back(info.volume.values[c]);
        device.channelPositions.push_back(c < info.channel_map.channels ? info.channel_map.map[c]
                                                                        : PA_CHANNEL_POSITION_MONO);
    }
    device.mute = info.mute != 0;
    return device;
}

struct ListQuery {
    PulseConnection* connection = nullptr;
    DeviceDirection direction = DeviceDirection::Recording;
    std::vector<PulseDevices::Device> devices;
    std::string defaultName;
    bool listDone = false;
    bool serverDone = false;
    bool failed = false;

    template <typename Info>
    static void onDevice(pa_context*, const Info* info, int eol, void* self) {
        auto* query = static_cast<ListQuery*>(self);
        if (eol != 0) {
            query->failed = query->failed || eol < 0;
            query->listDone = true;
            query->connection->wake();
            return;
        }
        query->devices.push_back(deviceFrom(*info));
    }

    static void onServer(pa_context*, const pa_server_info* info, void* self) {
        auto* query = static_cast<ListQuery*>(self);
        const char* name = info == nullptr ? nullptr
                           : query->direction == DeviceDirection::Playback
                               ? info->default_sink_name
                               : info->default_source_name;
        query->defaultName = name != nullptr ? name : "";
        query->serverDone = true;
        query->connection->wake();
    }
};

// Two devices may describe themselves alike (two identical headsets); the lists
// need names that pick one, so later ones get a number.
void makeLabelsUnique(std::vector<PulseDevices::Device>& devices) {
    std::map<std::string, int> seen;
    for (auto& device : devices) {
        const int count = ++seen[device.label];
        if (count > 1) device.label += " (" + std::to_string(count) + ")";
    }
}

// What a box showing the list would show differently: the devices, their names
// and lines. Volumes and mutes move all the time and are read where they are shown.
bool sameDevices(const std::vector<PulseDevices::Device>& before,
                 const std::vector<PulseDevices::Device>& after) {
    return std::equal(before.begin(), before.end(), after.begin(), after.end(),
                      [](const PulseDevices::Device& a, const PulseDevices::Device& b) {
                          return a.serverName == b.serverName && a.label == b.label &&
                                 a.portLabels == b.portLabels && a.activePort == b.activePort;
                      });
}

}  // namespace

PulseDevices::PulseDevices(std::shared_ptr<PulseConnection> connection, DeviceDirection direction)
    : connection_(std::move(connection)), direction_(direction) {}

platform::Result<void> PulseDevices::refresh() {
    const PulseConnection::Lock held = connection_->lock();
    ListQuery query;
    query.connection = connection_.get();
    query.direction = direction_;
    pa_context* context = connection_->context();
    pa_operation* server = pa_context_get_server_info(context, &ListQuery::onServer, &query);
    pa_operation* list =
        direction_ == DeviceDirection::Playback
            ? pa_context_get_sink_info_list(context, &ListQuery::onDevice<pa_sink_info>, &query)
            : pa_context_get_source_info_list(context, &ListQuery::onDevice<pa_source_info>,
                                              &query);
    const bool serverAnswered = connection_->finish(server);
    const bool listAnswered = connection_->finish(list);
    const char* what = direction_ == DeviceDirection::Playback ? "listing playback devices"
                                                               : "listing recording devices";
    if (!serverAnswered || !listAnswered || query.failed) return connection_->failure(what);
    makeLabelsUnique(query.devices);
    if (!sameDevices(devices_, query.devices) || defaultName_ != query.defaultName) ++changes_;
    devices_ = std::move(query.devices);
    defaultName_ = std::move(query.defaultName);
    return platform::Result<void>::success();
}

void PulseDevices::refreshLater(platform::EventLoop& loop) {
    if (refreshQueued_.exchange(true)) return;
    loop.postFromAnyThread([weak = weak_from_this()] {
        const auto self = weak.lock();
        if (!self) return;
        self->refreshQueued_ = false;
        const unsigned long before = self->changes_;
        // A failed read keeps the list as it was; the next change tries again.
        if (!self->refresh()) return;
        if (self->onRefreshed) self->onRefreshed();
        if (self->changes_ != before && self->onChanged) self->onChanged();
    });
}

std::string PulseDevices::deviceInUse() const {
    const int current = Current();
    return current < 0 ? std::string() : devices_[static_cast<std::size_t>(current)].serverName;
}

bool PulseDevices::lists(const std::string& serverName) const {
    return std::any_of(devices_.begin(), devices_.end(),
                       [&serverName](const Device& d) { return d.serverName == serverName; });
}

std::string PulseDevices::streamDevice() const {
    const bool present = std::any_of(devices_.begin(), devices_.end(), [this](const Device& d) {
        return d.serverName == chosenName_;
    });
    return present ? chosenName_ : std::string();
}

int PulseDevices::Current() const {
    if (devices_.empty()) return -1;
    for (const std::string* name : {&chosenName_, &defaultName_}) {
        if (name->empty()) continue;
        for (std::size_t i = 0; i < devices_.size(); ++i) {
            if (devices_[i].serverName == *name) return static_cast<int>(i);
        }
    }
    return 0;
}

platform::Result<void> PulseDevices::setCurrent(int index) {
    if (index < 0 || index >= Count()) return platform::failure("no such device");
    // Only this station's streams move; the desktop's default device stays as it is.
    chosenName_ = devices_[static_cast<std::size_t>(index)].serverName;
    return platform::Result<void>::success();
}

std::string PulseDevices::Name(int index) const {
    if (index < 0 || index >= Count()) return {};
    return devices_[static_cast<std::size_t>(index)].label;
}

const PulseDevices::Device* PulseDevices::currentDevice() const {
    const int current = Current();
    return current < 0 ? nullptr : &devices_[static_cast<std::size_t>(current)];
}

const PulseDevices::Device* PulseDevices::lineOwner(int index) const {
    return index >= 0 && index < SourceCount() ? currentDevice() : nullptr;
}

int PulseDevices::SourceCount() const {
    const Device* device = currentDevice();
    if (device == nullptr) return 0;
    return device->portNames.empty() ? 1 : static_cast<int>(device->portNames.size());
}

int PulseDevices::SourceCurrent() const {
    const Device* device = currentDevice();
    return device == nullptr ? -1 : device->activePort;
}

platform::Result<void> PulseDevices::setSourceCurrent(int index) {
    const Device* device = lineOwner(index);
    if (device == nullptr) return platform::failure("no such source line");
    if (device->portNames.empty() || device->activePort == index)
        return platform::Result<void>::success();
    const std::uint32_t serverIndex = device->serverIndex;
    const std::string port = device->portNames[static_cast<std::size_t>(index)];
    {
        const PulseConnection::Lock held = connection_->lock();
        pa_context* context = connection_->context();
        platform::Result<void> set = connection_->call(
            "choosing " + device->portLabels[static_cast<std::size_t>(index)],
            [&](PulseConnection::SuccessCallback done, void* outcome) {
                return direction_ == DeviceDirection::Playback
                           ? pa_context_set_sink_port_by_index(context, serverIndex, port.c_str(),
                                                               done, outcome)
                           : pa_context_set_source_port_by_index(context, serverIndex, port.c_str(),
                                                                 done, outcome);
            });
        if (!set) return set;
    }
    return refresh();
}

std::string PulseDevices::SourceName(int index) const {
    const Device* device = lineOwner(index);
    if (device == nullptr) return {};
    return device->portLabels.empty() ? device->label
                                      : device->portLabels[static_cast<std::size_t>(index)];
}

// Every device of the sound server has a volume, in hardware or in software.
bool PulseDevices::HasVolume(int index) const { return lineOwner(index) != nullptr; }

// Ports share their device's volume, balance and mute: the server keeps them per device.
int PulseDevices::Volume(int index) const {
    const Device* device = lineOwner(index);
    if (device == nullptr || device->channelVolumes.empty()) return 0;
    return toStationVolume(
        *std::max_element(device->channelVolumes.begin(), device->channelVolumes.end()));
}

platform::Result<void> PulseDevices::setVolume(int index, int volume) {
    const Device* device = lineOwner(index);
    if (device == nullptr) return platform::failure("no such source line");
    pa_cvolume volumes = serverVolumes(device->channelVolumes);
    // Scaling keeps the balance between the channels.
    pa_cvolume_scale(&volumes, toServerVolume(volume));
    return applyVolumes(*device, {volumes.values, volumes.values + volumes.channels});
}

int PulseDevices::Balance(int index) const {
    const Device* device = lineOwner(index);
    if (device == nullptr) return 0;
    const pa_cvolume volumes = serverVolumes(device->channelVolumes);
    const pa_channel_map map = serverChannelMap(*device);
    return static_cast<int>(std::lround(pa_cvolume_get_balance(&volumes, &map) * 100.0F));
}

platform::Result<void> PulseDevices::setBalance(int index, int balance) {
    const Device* device = lineOwner(index);
    if (device == nullptr) return platform::failure("no such source line");
    pa_cvolume volumes = serverVolumes(device->channelVolumes);
    const pa_channel_map map = serverChannelMap(*device);
    // A mono microphone has no left and right: its balance stays centred.
    if (pa_channel_map_can_balance(&map) == 0) return platform::Result<void>::success();
    const float position = static_cast<float>(std::clamp(balance, -100, 100)) / 100.0F;
    if (pa_cvolume_set_balance(&volumes, &map, position) == nullptr) {
        return platform::failure("sound server: cannot balance " + device->label);
    }
    return applyVolumes(*device, {volumes.values, volumes.values + volumes.channels});
}

platform::Result<void> PulseDevices::applyVolumes(const Device& device,
                                                  const std::vector<std::uint32_t>& volumes) {
    const std::uint32_t serverIndex = device.serverIndex;
    const pa_cvolume values = serverVolumes(volumes);
    {
        const PulseConnection::Lock held = connection_->lock();
        pa_context* context = connection_->context();
        platform::Result<void> set =
            connection_->call("setting the volume of " + device.label,
                              [&](PulseConnection::SuccessCallback done, void* outcome) {
                                  return direction_ == DeviceDirection::Playback
                                             ? pa_context_set_sink_volume_by_index(
                                                   context, serverIndex, &values, done, outcome)
                                             : pa_context_set_source_volume_by_index(
                                                   context, serverIndex, &values, done, outcome);
                              });
        if (!set) return set;
    }
    return refresh();
}

bool PulseDevices::Mute(int index) const {
    const Device* device = lineOwner(index);
    return device != nullptr && device->mute;
}

platform::Result<void> PulseDevices::setMute(int index, bool mute) {
    const Device* device = lineOwner(index);
    if (device == nullptr) return platform::failure("no such source line");
    const std::uint32_t serverIndex = device->serverIndex;
    {
        const PulseConnection::Lock held = connection_->lock();
        pa_context* context = connection_->context();
        platform::Result<void> set = connection_->call(
            (mute ? "muting " : "unmuting ") + device->label,
            [&](PulseConnection::SuccessCallback done, void* outcome) {
                return direction_ == DeviceDirection::Playback
                           ? pa_context_set_sink_mute_by_index(context, serverIndex, mute ? 1 : 0,
                                                               done, outcome)
                           : pa_context_set_source_mute_by_index(context, serverIndex, mute ? 1 : 0,
                                                                 done, outcome);
            });
        if (!set) return set;
    }
    return refresh();
}

}  // namespace ovd::engine
