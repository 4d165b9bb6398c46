#pragma once
// The wave editor's effects and filters: what each menu entry does to the audio,
// with its fixed parameters and what each of them means here. They run over a
// stretch of the document as a graph of the filter library's filters, a block at
// a time, so an hour-long selection never sits in memory.

#include <atomic>
#include <string>
#include <string_view>
#include <thread>

namespace ovd::engine {

enum class Effect {
    AmplifyUp,
    AmplifyDown,
    FadeIn,
    FadeOut,
    StretchLonger,
    StretchShorter,
    Delay,
    DeleteSilence,
    InsertSilence,
    Flanger,
    Vibrato,
    Invert,
    Normalize,
    BandPass,
    HighPass,
    LowPass,
    HighShelf,
    LowShelf
};

// "Amplify +", "DeleteSilence", "High Shelf"...: the menu's words, and the name
// the progress of the effect goes out under.
std::string_view effectMenuText(Effect effect);

// An effect running on a thread of its own. Going away asks it to stop and waits.
struct EffectWork {
    std::thread thread;
    std::atomic<bool> cancelled{false};

    EffectWork() = default;
    EffectWork(const EffectWork&) = delete;
    EffectWork& operator=(const EffectWork&) = delete;
    ~EffectWork() {
        cancelled = true;
        if (thread.joinable()) thread.join();
    }
};

}  // namespace ovd::engine
