#pragma once

#include "Runtime/FrameTime.h"

#include <optional>

namespace Halvane::Quorvex::Frei0r {

// The unit of the time a frei0r host passes with a frame, and the conversion
// of that time into the effect's. MLT and GStreamer pass seconds; ffmpeg's
// frei0r filter (libavfilter) passes milliseconds. The environment variable
// QUORVEX_FREI0R_TIME_UNIT (`seconds` or `milliseconds`) overrides what is
// found, for hosts that this does not recognise.
class HostClock {
public:
    enum class Unit { Seconds, Milliseconds };

    static constexpr const char* kUnitVariable = "QUORVEX_FREI0R_TIME_UNIT";

    explicit HostClock(Unit unit) : mUnit(unit) {}

    // The clock of the host whose code at `callerAddress` called into the
    // plug-in: milliseconds when that code is libavfilter's (or, in a static
    // build, an ff* program's), seconds otherwise, unless the environment
    // says otherwise. An unknown value of the variable is reported once on
    // standard error and ignored.
    static HostClock forCaller(const void* callerAddress);

    Unit unit() const { return mUnit; }

    // The host's time as the effect's time: the exact fraction the host
    // meant (a frame at n / 25 s stays n / 25, whether it came as seconds or
    // milliseconds), so the effect computes the same time as `quorvex` does
    // for the same frame. Nothing for a time that is not a number or lies
    // beyond what the effect can be told.
    std::optional<Host::FrameTime> frameTime(double hostTime) const;

private:
    Unit mUnit;
};

}  // namespace Halvane::Quorvex::Frei0r
