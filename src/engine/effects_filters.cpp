// What each effect's fixed numbers mean here, and the filters that carry it out.
//
// clang-format off
// | Menu entry     | Numbers          | Meaning                                                  |
// |----------------|------------------|----------------------------------------------------------|
// | Amplify +      | 120              | every sample times 1.20, clipped at full scale           |
// | Amplify -      | 80               | every sample times 0.80                                  |
// | Fade +         | 100              | gain rises in a straight line from 0 to 100 % over the   |
// |                |                  | whole stretch                                            |
// | Fade -         | 100              | gain falls in a straight line from 100 % to 0            |
// | Stretch +      | 120              | the stretch lasts 120 % as long, its pitch kept          |
// | Stretch -      | 80               | the stretch lasts 80 % as long, its pitch kept           |
// | Delay          | 120, 85, 10      | 120 ms between repeats, each repeat at 85 % of the one   |
// |                |                  | before, 10 repeats; the mix is brought down so that the  |
// |                |                  | voice and its first repeat together can't clip           |
// | DeleteSilence  | 40, 1, 10        | below -40 dB full scale, the power measured over 10 ms,  |
// |                |                  | is silence; silences of 1 s and longer go whole,         |
// |                |                  | anywhere in the stretch; the pauses of speech stay       |
// | Insert Silence | 500              | 500 ms of silence in at the cursor                       |
// | Flanger        | 50, 30, 10,      | 50 % of the swept copy mixed in, 30 % of it fed back,    |
// |                | 50, 5            | swept up to 10 ms, the channels' sweeps 50 % apart,      |
// |                |                  | 5 tenths of a sweep a second                             |
// | Vibrato        | 25, 3            | pitch swept over 25 % of the filter's depth, 3 times a   |
// |                |                  | second                                                   |
// | Invert         |                  | every sample negated (-32768 becomes 32767)              |
// | Normalize      |                  | the loudest sample brought to full scale                 |
// | Band pass      | rate / 200, 100  | two-pole band pass at that frequency, 100 Hz wide        |
// | High pass      | rate / 50, 100   | two-pole high pass there, Q 1.00 (width in hundredths)   |
// | Low pass       | rate / 100, 50   | two-pole low pass there, Q 0.50                          |
// | High Shelf     | rate / 50, -10,  | -10 dB above that frequency, slope 1.00 (width in        |
// |                | 100              | hundredths)                                              |
// | Low Shelf      | rate / 400, -10, | -10 dB below that frequency, slope 1.00                  |
// |                | 100              |                                                          |
// clang-format on
//
// At 16000 Hz that is a band pass at 80 Hz, a high pass at 320 Hz, a low pass at
// 160 Hz, a high shelf at 320 Hz and a low shelf at 40 Hz; at 8000 Hz a band pass
// at 40 Hz and a high pass at 160 Hz.

#include <cstdio>
#include <optional>
#include <string>

#include "engine/effects_run.h"

namespace ovd::engine {

namespace {

constexpr double kAmplifyUp = 1.20;
constexpr double kAmplifyDown = 0.80;
constexpr double kStretchLonger = 1.20;
constexpr double kStretchShorter = 0.80;

constexpr int kDelayMs = 120;
constexpr double kDelayRepeatLevel = 0.85;
constexpr int kDelayRepeats = 10;

constexpr int kSilenceBelowDb = 40;
constexpr double kSilenceLongestKeptSeconds = 1.0;
constexpr int kSilenceWindowMs = 10;

std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
}

std::string delayFilter() {
    std::string delays;
    std::string decays;
    double level = 1.0;
    for (int repeat = 1; repeat <= kDelayRepeats; ++repeat) {
        level *= kDelayRepeatLevel;
        if (repeat > 1) {
            delays += '|';
            decays += '|';
        }
        delays += std::to_string(repeat * kDelayMs);
        decays += number(level);
    }
    return "aecho=in_gain=1:out_gain=" + number(1.0 / (1.0 + kDelayRepeatLevel)) +
           ":delays=" + delays + ":decays=" + decays;
}

std::string silenceFilter() {
    const std::string threshold = "-" + std::to_string(kSilenceBelowDb) + "dB";
    // Silence at the start goes as any other: a stretch is cut wherever it is quiet
    // for long enough, not only at its ends. Nothing of a cut silence is left: the
    // filter's own way of leaving some takes quiet speech with it.
    return "silenceremove=start_periods=1:start_threshold=" + threshold +
           ":stop_periods=-1:stop_threshold=" + threshold +
           ":stop_duration=" + number(kSilenceLongestKeptSeconds) +
           ":detection=rms:window=" + number(kSilenceWindowMs / 1000.0);
}

std::string biquad(const char* name, double frequency, const std::string& shape) {
    return std::string(name) + "=f=" + number(frequency) + ":" + shape;
}

}  // namespace

std::string effectFilters(Effect effect, const PcmFormat& format) {
    const double rate = format.sampleRate;
    switch (effect) {
        case Effect::AmplifyUp:
            return "volume=" + number(kAmplifyUp);
        case Effect::AmplifyDown:
            return "volume=" + number(kAmplifyDown);
        // The fade's length is the stretch's, set where the stretch is known.
        case Effect::FadeIn:
            return "afade=t=in:curve=tri";
        case Effect::FadeOut:
            return "afade=t=out:curve=tri";
        case Effect::StretchLonger:
            return "atempo=" + number(1.0 / kStretchLonger);
        case Effect::StretchShorter:
            return "atempo=" + number(1.0 / kStretchShorter);
        case Effect::Delay:
            return delayFilter();
        case Effect::DeleteSilence:
            return silenceFilter();
        case Effect::Flanger:
            return "flanger=width=50:regen=30:depth=10:phase=50:speed=" + number(5 / 10.0);
        case Effect::Vibrato:
            return "vibrato=d=" + number(25 / 100.0) + ":f=3";
        case Effect::BandPass:
            return biquad("bandpass", rate / 200, "t=h:w=100");
        case Effect::HighPass:
            return biquad("highpass", rate / 50, "t=q:w=" + number(100 / 100.0));
        case Effect::LowPass:
            return biquad("lowpass", rate / 100, "t=q:w=" + number(50 / 100.0));
        case Effect::HighShelf:
            return biquad("highshelf", rate / 50, "g=-10:t=s:w=" + number(100 / 100.0));
        case Effect::LowShelf:
            return biquad("lowshelf", rate / 400, "g=-10:t=s:w=" + number(100 / 100.0));
        case Effect::InsertSilence:
        case Effect::Invert:
        case Effect::Normalize:
            return "";
    }
    return "";
}

std::optional<double> effectLengthFactor(Effect effect) {
    switch (effect) {
        case Effect::StretchLonger:
            return kStretchLonger;
        case Effect::StretchShorter:
            return kStretchShorter;
        case Effect::DeleteSilence:
        case Effect::InsertSilence:
            return std::nullopt;
        case Effect::AmplifyUp:
        case Effect::AmplifyDown:
        case Effect::FadeIn:
        case Effect::FadeOut:
        case Effect::Delay:
        case Effect::Flanger:
        case Effect::Vibrato:
        case Effect::Invert:
        case Effect::Normalize:
        case Effect::BandPass:
        case Effect::HighPass:
        case Effect::LowPass:
        case Effect::HighShelf:
        case Effect::LowShelf:
            return 1.0;
    }
    return 1.0;
}

}  // namespace ovd::engine
