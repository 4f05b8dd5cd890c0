#pragma once

#include "Runtime/FrameTime.h"

#include <cstdint>
#include <optional>

namespace Halvane::Quorvex::Host {

// The Seed of a render: another repeatable glitch of the same clip. The
// effect draws its glitch from the time alone, so two clips cut from their
// first frames glitch alike. A seed moves the time the effect sees by a whole
// number of seconds per step, the same in every host: each seed is a glitch
// that still moves smoothly and comes out the same on every run, and Seed 0
// is the host's time untouched. Hosts whose parameters run from 0 to 1
// (frei0r) state seed N as N / 999.
class TimeSeed {
public:
    static constexpr int kLargest = 999;
    // The effect computes its shaders' time in binary32, as float(time) x
    // Speed. A moved time stays below 2^16 s for clips of up to 93 minutes
    // (999 x 60 s = 59940 s), where binary32 resolves 1/256 s: a 60 fps frame
    // is still four units in the last place from the next, and at Speed 3
    // (shaders' time below 2^18, units of 1/64) three. A larger step would
    // bring frames to two units apart and their motion to visible jitter;
    // a minute apart, neighbouring seeds do not show each other's glitch in
    // shots of up to a minute.
    static constexpr int kSecondsPerStep = 60;

    TimeSeed() = default;
    // Throws std::out_of_range outside 0 to kLargest.
    explicit TimeSeed(int number);
    // The seed of a 0 to 1 host value: the nearest of 0, 1/999, ..., 1.
    // Values outside 0 to 1 are clamped; one that is not a number is Seed 0.
    static TimeSeed fromUnitValue(double value);
    // The 0 to 1 host value of seed `number`.
    static double unitValue(int number);

    int number() const { return mNumber; }
    std::int64_t offsetSeconds() const { return std::int64_t{mNumber} * kSecondsPerStep; }

    // The time the effect is given for the host's `time`: `time` itself for
    // Seed 0. Otherwise the moment offsetSeconds() later as its fraction in
    // lowest terms, so that hosts stating one moment at different scales
    // (3/25 s and 120/1000 s) give the effect the same numbers, hence the
    // same binary32 time; where that fraction's numerator outgrows 32 bits,
    // the nearest time at the finest scale that holds it. Nothing when not
    // even whole seconds fit. A time of scale 0 is passed on unchanged, for
    // the effect to refuse.
    std::optional<FrameTime> shift(const FrameTime& time) const;

private:
    int mNumber = 0;
};

}  // namespace Halvane::Quorvex::Host
