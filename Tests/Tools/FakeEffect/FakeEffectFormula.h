#pragma once

#include "EffectInterface.h"

#include <algorithm>
#include <cmath>

// What the fake effect draws, shared by the fake and the tests that check
// its output. Every output channel depends on one thing, so that a test can
// tell which of them the host got wrong:
//   alpha: the input's alpha, untouched (straight alpha survives the trip)
//   red:   white minus the input's red (channel order and value mapping)
//   green: the input's green for Glitch Type 1, half of it for type 2
//   blue:  a step of the frame's effect time, current_time / time_scale
//          times Speed, in sixteenths of a second (frame time and Speed)
namespace Halvane::Quorvex::Testing::FakeEffectFormula {

inline int TimeStep(A_long currentTime, A_u_long timeScale, float speed)
{
    const float seconds = static_cast<float>(currentTime) / static_cast<float>(timeScale) * speed;
    return static_cast<int>(std::floor(seconds * 16.0f));
}

inline PF_Pixel8 Apply(const PF_Pixel8& in, int glitchType, int timeStep)
{
    return PF_Pixel8{in.alpha, static_cast<A_u_char>(255 - in.red),
                     static_cast<A_u_char>(glitchType == 1 ? in.green : in.green / 2),
                     static_cast<A_u_char>(((timeStep % 256) + 256) % 256)};
}

inline PF_Pixel16 Apply(const PF_Pixel16& in, int glitchType, int timeStep)
{
    const int white = 32768;
    return PF_Pixel16{in.alpha, static_cast<A_u_short>(white - std::min<int>(in.red, white)),
                      static_cast<A_u_short>(glitchType == 1 ? in.green : in.green / 2),
                      static_cast<A_u_short>((((timeStep % 257) + 257) % 257) * 128)};
}

inline PF_PixelFloat Apply(const PF_PixelFloat& in, int glitchType, int timeStep)
{
    return PF_PixelFloat{in.alpha, 1.0f - in.red, glitchType == 1 ? in.green : in.green * 0.5f,
                         static_cast<float>(timeStep) / 256.0f};
}

}  // namespace Halvane::Quorvex::Testing::FakeEffectFormula
