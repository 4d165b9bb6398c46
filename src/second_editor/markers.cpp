#include "second_editor/markers.h"

#include <algorithm>

namespace ovd::second_editor {

void Markers::add(std::string name, engine::SampleCount position) {
    if (name.empty()) name = "Marker";
    const auto taken = [this](const std::string& candidate) {
        return std::any_of(markers_.begin(), markers_.end(),
                           [&](const Marker& m) { return m.name == candidate; });
    };
    if (taken(name)) {
        int number = 2;
        while (taken(name + " " + std::to_string(number))) ++number;
        name += " " + std::to_string(number);
    }
    const auto at =
        std::upper_bound(markers_.begin(), markers_.end(), position,
                         [](engine::SampleCount p, const Marker& m) { return p < m.position; });
    markers_.insert(at, Marker{std::move(name), std::max<engine::SampleCount>(0, position)});
}

void Markers::remove(std::size_t index) {
    if (index < markers_.size()) markers_.erase(markers_.begin() + static_cast<long>(index));
}

void Markers::clampTo(engine::SampleCount length) {
    for (Marker& m : markers_)
        m.position = std::min(m.position, std::max<engine::SampleCount>(0, length));
}

}  // namespace ovd::second_editor
