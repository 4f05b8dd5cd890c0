#include "GL/PackedFloatFrame.h"

#include <memory>

namespace Halvane::Quorvex {

namespace {

std::mutex gMutex;
std::unique_ptr<PF_PixelFloat[]> gPixels;
std::size_t gPixelCount = 0;

}  // namespace

PackedFloatFrame::Lease PackedFloatFrame::lease(std::size_t pixelCount)
{
    std::unique_lock<std::mutex> lock(gMutex);
    if (pixelCount != gPixelCount || !gPixels) {
        // The old buffer goes first, so that a change of size never holds both.
        gPixels.reset();
        gPixelCount = 0;
        // Not value-initialised: the iterate or the read-back writes every pixel.
        gPixels.reset(new PF_PixelFloat[pixelCount > 0 ? pixelCount : 1]);
        gPixelCount = pixelCount;
    }
    return Lease(std::move(lock), gPixels.get());
}

void PackedFloatFrame::release()
{
    const std::lock_guard<std::mutex> lock(gMutex);
    gPixels.reset();
    gPixelCount = 0;
}

}  // namespace Halvane::Quorvex
