#pragma once

#include "EffectInterface.h"

#include <cstddef>
#include <mutex>
#include <utility>

namespace Halvane::Quorvex {

// The packed copy of a float frame on its way between the host's iterate and
// GL, 16 bytes a pixel (133 MB at 3840x2160). Made for every frame, a buffer
// that large comes fresh from the kernel each time, and its page faults cost
// more than the copy itself; so it stays while frames keep their pixel count,
// like the frame's GL targets. Hosts may render from several threads: a lease
// holds the buffer's lock for as long as it is used.
class PackedFloatFrame {
public:
    class Lease {
    public:
        // `pixelCount` pixels, their contents left from an earlier frame.
        PF_PixelFloat* pixels() const { return mPixels; }

    private:
        friend class PackedFloatFrame;
        Lease(std::unique_lock<std::mutex> lock, PF_PixelFloat* pixels) : mLock(std::move(lock)), mPixels(pixels) {}

        std::unique_lock<std::mutex> mLock;
        PF_PixelFloat* mPixels;
    };

    PackedFloatFrame() = delete;

    // The buffer for `pixelCount` pixels, made anew when the count changes.
    // An allocation that fails throws std::bad_alloc and keeps nothing.
    static Lease lease(std::size_t pixelCount);

    // Gives the memory back; the next lease makes it again.
    static void release();
};

}  // namespace Halvane::Quorvex
