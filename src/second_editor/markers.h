#pragma once
// Marked places in the second editor's document (the markers window): kept in
// memory beside the window for as long as it runs, never written into the file.

#include <string>
#include <vector>

#include "engine/audio_format.h"

namespace ovd::second_editor {

struct Marker {
    std::string name;
    engine::SampleCount position = 0;
};

class Markers {
  public:
    // Kept in the order of their places; a name already used is numbered on.
    void add(std::string name, engine::SampleCount position);
    void remove(std::size_t index);
    void clear() { markers_.clear(); }
    // Places past the document's end (after a cut) move to the end.
    void clampTo(engine::SampleCount length);
    [[nodiscard]] const std::vector<Marker>& list() const { return markers_; }

  private:
    std::vector<Marker> markers_;
};

}  // namespace ovd::second_editor
