#pragma once
// A graph of the filter library's filters between our 16-bit frames in and our
// 16-bit frames out, at the same rate and channel count. Audio goes in a block at
// a time and comes out as the filters give it, so memory stays what the filters
// themselves hold whatever the length. Nothing of the library shows here.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "engine/audio_backend.h"
#include "platform/result.h"

namespace ovd::engine {

class FilterGraph {
  public:
    // Handed each block of interleaved frames the graph gives out.
    using Output = std::function<void(const std::int16_t* frames, std::size_t frameCount)>;

    // description is a chain in the library's own notation ("volume=1.2"); fails
    // with the library's reason when it can't be built.
    static platform::Result<std::unique_ptr<FilterGraph>> create(const PcmFormat& format,
                                                                 const std::string& description);
    ~FilterGraph();
    FilterGraph(const FilterGraph&) = delete;
    FilterGraph& operator=(const FilterGraph&) = delete;

    platform::Result<void> push(const std::int16_t* frames, std::size_t frameCount,
                                const Output& output);
    // Ends the input and hands over what the filters still hold.
    platform::Result<void> finish(const Output& output);

  private:
    struct State;
    explicit FilterGraph(std::unique_ptr<State> state);
    platform::Result<void> drain(const Output& output);
    std::unique_ptr<State> state_;
};

}  // namespace ovd::engine
