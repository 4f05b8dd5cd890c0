#include "Frei0rInstance.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>

namespace Halvane::Quorvex::Frei0r {

static_assert(Host::TimeSeed::kSecondsPerStep == 60, "the Seed's explanation names its step");

const Frei0rInstance::ParameterInfo Frei0rInstance::kParameters[kParameterCount] = {
    {"Glitch Type", "Below 0.5 Block Glitch, 0.5 and above Bad TV", 0.0},
    {"Speed", "0 to 1, mapped linearly onto the effect's Speed of 0 to 3 (1/3 is Speed 1)",
     1.0 / 3.0},
    {"Seed",
     "0 to 1 onto seeds 0 to 999 (seed = 999 x value, rounded); each seed is another repeatable "
     "glitch, its time moved by 60 s a step",
     0.0},
};

Frei0rInstance::Frei0rInstance(unsigned width, unsigned height, HostClock clock)
    : mWidth(width), mHeight(height), mClock(clock)
{
    for (int index = 0; index < kParameterCount; ++index) {
        mValues[index] = kParameters[index].defaultValue;
    }
}

void Frei0rInstance::setParameter(int index, double value)
{
    if (index < 0 || index >= kParameterCount || std::isnan(value)) {
        return;
    }
    mValues[index] = index == kGlitchType ? value : std::clamp(value, 0.0, 1.0);
}

double Frei0rInstance::parameter(int index) const
{
    return index >= 0 && index < kParameterCount ? mValues[index].load() : 0.0;
}

SharedEffect::Settings Frei0rInstance::settings() const
{
    SharedEffect::Settings settings;
    settings.glitchType = mValues[kGlitchType] < 0.5 ? 1 : 2;
    settings.speed = mValues[kSpeed] * kSpeedScale;
    return settings;
}

void Frei0rInstance::update(double time, const std::uint32_t* input, std::uint32_t* output) const
{
    SharedEffect& effect = SharedEffect::process();
    std::optional<Host::FrameTime> frameTime = mClock.frameTime(time);
    if (frameTime) {
        frameTime = seed().shift(*frameTime);
    }
    if (!frameTime) {
        // ffmpeg 5.1 loses a frame's time when it copies the frame for the
        // plug-in, which it does when the frame's rows are not laid out as
        // its frei0r filter lays out its own (widths that are no multiple
        // of 64 pixels on some processors): it then passes a huge negative
        // number.
        char passed[32];
        std::snprintf(passed, sizeof passed, "%g", time);
        // One line for the first such time: a host may pass a new one with
        // every frame.
        effect.reportOnce("no frame time",
                          std::string("quorvex frei0r: the host passed no usable frame time (") +
                              passed +
                              "), rendering at time 0; with ffmpeg, give frames a width that is a "
                              "multiple of 64 pixels");
        frameTime = Host::FrameTime{};
    }
    effect.render(SharedEffect::Frame{mWidth, mHeight, input, output}, settings(), *frameTime);
}

}  // namespace Halvane::Quorvex::Frei0r
