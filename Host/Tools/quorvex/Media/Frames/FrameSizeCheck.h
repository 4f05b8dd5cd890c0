#pragma once

#include "Options/PixelDepth.h"

#include <cstdint>
#include <string>

namespace Halvane::Quorvex::Tools {

// Whether the frames of an input fit in this machine, asked from the size a
// file's header claims, before a pixel is read or a buffer made: a few
// bytes of header can claim a picture of terabytes.
class FrameSizeCheck {
public:
    // The bytes a render holds for frames of this size and depth: frames
    // queued between the stages, the file's samples, the host's worlds and
    // the effect's textures.
    static std::uint64_t bytesToRender(std::uint64_t width, std::uint64_t height, PixelDepth depth);

    // Throws ToolError (runtime) naming `name` and the size when the picture
    // is empty, larger than the effect's OpenGL renders, or its render would
    // need more than `memoryBytes` (by default this machine's memory).
    static void check(const std::string& name, long width, long height, PixelDepth depth,
                      std::uint64_t memoryBytes = machineMemory());

    static std::uint64_t machineMemory();
};

}  // namespace Halvane::Quorvex::Tools
