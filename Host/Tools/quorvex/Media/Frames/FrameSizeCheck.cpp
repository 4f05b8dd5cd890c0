#include "Media/Frames/FrameSizeCheck.h"

#include "OpenGL/OpenGLLimits.h"
#include "Options/ToolError.h"

#include <algorithm>

#include <unistd.h>

namespace Halvane::Quorvex::Tools {

namespace {

// Frames of the input's depth alive at once: the two queues of the
// pipeline, the frames in hand on each of its three threads, the file's
// samples, and the host's input and output worlds.
constexpr std::uint64_t kFramesHeld = 12;
// What the effect keeps a pixel beside them: a float input texture and
// 16-bit render targets.
constexpr std::uint64_t kEffectBytesPerPixel = 32;

constexpr std::uint64_t kGigabyte = 1024ull * 1024 * 1024;

std::string Gigabytes(std::uint64_t bytes)
{
    return std::to_string(bytes / kGigabyte + (bytes % kGigabyte != 0)) + " GB";
}

}  // namespace

std::uint64_t FrameSizeCheck::bytesToRender(std::uint64_t width, std::uint64_t height,
                                            PixelDepth depth)
{
    const std::uint64_t perPixel = kFramesHeld * 4 * ChannelSize(depth) + kEffectBytesPerPixel;
    std::uint64_t pixels = 0;
    std::uint64_t bytes = 0;
    if (__builtin_mul_overflow(width, height, &pixels) ||
        __builtin_mul_overflow(pixels, perPixel, &bytes)) {
        return UINT64_MAX;
    }
    return bytes;
}

std::uint64_t FrameSizeCheck::machineMemory()
{
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGE_SIZE);
    if (pages <= 0 || pageSize <= 0) {
        return UINT64_MAX;
    }
    return static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize);
}

void FrameSizeCheck::check(const std::string& name, long width, long height, PixelDepth depth,
                           std::uint64_t memoryBytes)
{
    const std::string size = std::to_string(width) + "x" + std::to_string(height);
    if (width <= 0 || height <= 0) {
        throw ToolError::runtime("cannot read '" + name + "': it claims an empty picture (" +
                                 size + ")");
    }
    const long side = std::max(width, height);
    if (side > OpenGLLimits::kSideEveryDriverRenders) {
        const long largest = OpenGLLimits::largestFrameSide();
        if (largest > 0 && side > largest) {
            throw ToolError::runtime("cannot render '" + name + "': its pictures of " + size +
                                     " pixels are larger than this OpenGL renders (" +
                                     std::to_string(largest) + " pixels a side)");
        }
    }
    const std::uint64_t needed = bytesToRender(static_cast<std::uint64_t>(width),
                                               static_cast<std::uint64_t>(height), depth);
    if (needed > memoryBytes) {
        throw ToolError::runtime("cannot render '" + name + "': its " + DepthName(depth) +
                                 " pictures of " + size + " pixels would need about " +
                                 Gigabytes(needed) + " of memory, and this machine has " +
                                 Gigabytes(memoryBytes));
    }
}

}  // namespace Halvane::Quorvex::Tools
