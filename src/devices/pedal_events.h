#pragma once
// A pedal edge as the device layers hand it on: which pedal ("LEFT", "MIDDLE",
// "RIGHT") and which way ("DOWN", "UP"), per kind of device. The dispatcher that
// turns edges into command words implements this.

#include <string>

#include "dictation/pedal_hits.h"

namespace ovd::devices {

inline constexpr const char* kLeft = "LEFT";
inline constexpr const char* kMiddle = "MIDDLE";
inline constexpr const char* kRight = "RIGHT";
inline constexpr const char* kDown = "DOWN";
inline constexpr const char* kUp = "UP";

class PedalEventSink {
  public:
    virtual ~PedalEventSink() = default;
    virtual void PedalEventSER(const std::string& pedal, const std::string& direction) = 0;
    virtual void PedalEventUSB(const std::string& pedal, const std::string& direction) = 0;
    virtual void PedalEventGAME(const std::string& pedal, const std::string& direction) = 0;
};

using dictation::PedalHits;

}  // namespace ovd::devices
