#pragma once

#include "HostTypes.h"

#include <cmath>

namespace Halvane::Quorvex::Host {

// A moment of the layer's time as the host states it to an effect: `value`
// units of 1/`scale` seconds, frames `step` units apart.
struct FrameTime {
    A_long value = 0;
    A_long step = 1;
    A_u_long scale = 1;

    double seconds() const { return static_cast<double>(value) / static_cast<double>(scale); }

    // The nearest representable time at the given scale.
    static FrameTime atSeconds(double seconds, A_u_long scale, A_long step = 1)
    {
        return FrameTime{static_cast<A_long>(std::llround(seconds * scale)), step, scale};
    }
};

}  // namespace Halvane::Quorvex::Host
