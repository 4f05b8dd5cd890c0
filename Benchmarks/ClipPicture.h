#pragma once

#include "Media/Frames/RgbaFrame.h"

#include <cstddef>

namespace Halvane::Quorvex::Benchmarks {

// Pictures for the benchmarks and the soak: a frame of the command-line
// host's test clip (colour bars, a gradient, an alpha ramp, a moving disc)
// scaled to any size, so that the effect meets edges, colour, transparency
// and motion at every size, as with footage.
class ClipPicture {
public:
    // 8-bit RGBA; `index` wraps around the clip.
    static Tools::RgbaFrame frameAt(std::size_t index, int width, int height);
};

}  // namespace Halvane::Quorvex::Benchmarks
