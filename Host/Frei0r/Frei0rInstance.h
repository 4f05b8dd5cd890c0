#pragma once

#include "HostClock.h"
#include "SharedEffect.h"

#include "Runtime/TimeSeed.h"

#include <atomic>
#include <cstdint>

namespace Halvane::Quorvex::Frei0r {

// One frei0r instance: a frame size, the parameters as the host sets them,
// and the clock of the host that made it. Hosts may set parameters on one
// thread while another renders, so the values are atomic.
class Frei0rInstance {
public:
    struct ParameterInfo {
        const char* name;
        const char* explanation;
        double defaultValue;
    };
    static constexpr int kGlitchType = 0;
    static constexpr int kSpeed = 1;
    static constexpr int kSeed = 2;
    static constexpr int kParameterCount = 3;
    static const ParameterInfo kParameters[kParameterCount];

    // The effect's Speed of a frei0r Speed: 0 to 1 onto 0 to 3.
    static constexpr double kSpeedScale = 3.0;

    Frei0rInstance(unsigned width, unsigned height, HostClock clock);

    // Speed and Seed are clamped to 0..1; an unknown index or a value that
    // is not a number is ignored.
    void setParameter(int index, double value);
    // The value as set (after clamping); 0 for an unknown index.
    double parameter(int index) const;

    // The frame at the host's `time`, RGBA8888 with straight alpha.
    void update(double time, const std::uint32_t* input, std::uint32_t* output) const;

    // What the effect is given for the current values.
    SharedEffect::Settings settings() const;
    // The seed that moves the time of every frame.
    Host::TimeSeed seed() const { return Host::TimeSeed::fromUnitValue(mValues[kSeed]); }

private:
    unsigned mWidth;
    unsigned mHeight;
    HostClock mClock;
    std::atomic<double> mValues[kParameterCount];
};

}  // namespace Halvane::Quorvex::Frei0r
