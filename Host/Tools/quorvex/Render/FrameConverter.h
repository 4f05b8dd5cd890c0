#pragma once

#include "Media/Frames/RgbaFrame.h"

#include "HostTypes.h"

#include <cstdint>

namespace Halvane::Quorvex::Host {
class World;
}

namespace Halvane::Quorvex::Tools {

// Moves pictures between files and host worlds: RGBA becomes the host's
// alpha-first order, and 16-bit samples move between the file's 0..65535
// and the host's 0..32768, rounded to the nearest value both ways, so that
// every host value survives the trip out to a file and back.
class FrameConverter {
public:
    static A_u_short fileToHost16(std::uint16_t value);
    // Values above the host's white 32768 count as white.
    static std::uint16_t hostToFile16(A_u_short value);

    // Fills `world` with `frame`, converting to the world's depth where the
    // two differ. Throws ToolError when the sizes differ.
    static void toWorld(const RgbaFrame& frame, Host::World& world);
    // The world's picture as a frame of the world's depth.
    static RgbaFrame fromWorld(const Host::World& world);
};

}  // namespace Halvane::Quorvex::Tools
