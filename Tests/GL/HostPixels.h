#pragma once

#include "Runtime/World.h"

#include <cmath>
#include <functional>
#include <vector>

namespace Halvane::Quorvex::Testing {

// Host pixels by channel in units of the depth's white (1 is 255, 32768 or
// 1.0f), channel 0 being alpha as the host stores it.
struct HostPixels {
    static double white(PF_PixelFormat format)
    {
        return format == PF_PixelFormat_ARGB32 ? 255.0 : format == PF_PixelFormat_ARGB64 ? 32768.0 : 1.0;
    }

    static double get(Host::World& world, A_long x, A_long y, int channel)
    {
        switch (world.format()) {
        case PF_PixelFormat_ARGB32:
            return reinterpret_cast<const A_u_char*>(&world.pixel8(x, y))[channel] / 255.0;
        case PF_PixelFormat_ARGB64:
            return reinterpret_cast<const A_u_short*>(&world.pixel16(x, y))[channel] / 32768.0;
        default:
            return reinterpret_cast<const PF_FpShort*>(&world.pixelFloat(x, y))[channel];
        }
    }

    // Integer depths round to the nearest step.
    static void fill(Host::World& world, const std::function<double(A_long x, A_long y, int channel)>& value)
    {
        for (A_long y = 0; y < world.height(); ++y) {
            for (A_long x = 0; x < world.width(); ++x) {
                for (int channel = 0; channel < 4; ++channel) {
                    const double v = value(x, y, channel);
                    switch (world.format()) {
                    case PF_PixelFormat_ARGB32:
                        reinterpret_cast<A_u_char*>(&world.pixel8(x, y))[channel] =
                            static_cast<A_u_char>(std::lround(v * 255.0));
                        break;
                    case PF_PixelFormat_ARGB64:
                        reinterpret_cast<A_u_short*>(&world.pixel16(x, y))[channel] =
                            static_cast<A_u_short>(std::lround(v * 32768.0));
                        break;
                    default:
                        reinterpret_cast<PF_FpShort*>(&world.pixelFloat(x, y))[channel] = static_cast<PF_FpShort>(v);
                    }
                }
            }
        }
    }

    // Every byte of the world, padding included.
    static std::vector<unsigned char> bytes(Host::World& world)
    {
        return {world.row(0), world.row(0) + static_cast<std::size_t>(world.rowBytes()) * world.height()};
    }
};

}  // namespace Halvane::Quorvex::Testing
