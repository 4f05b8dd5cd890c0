#pragma once

#include "EffectInterface.h"

#include <cstddef>
#include <memory>

namespace Halvane::Quorvex::Host {

// An image in host memory, as the host hands it to an effect: alpha-first
// pixels of 8 bits, 16 bits (white 32768) or 32-bit float, rows `rowBytes`
// apart. Extra bytes at the end of each row stand for the padding real hosts
// add; they start filled with a marker so that a test can see whether
// anything wrote into them.
class World {
public:
    static constexpr unsigned char kPaddingMarker = 0xA5;

    // Throws HostError for a negative size, or padding that is not a whole
    // number of channels. A format the host does not know
    // is laid out like an 8-bit world, so that an effect can be handed a
    // format it must refuse.
    World(A_long width, A_long height, PF_PixelFormat format, A_long rowPaddingBytes = 0);
    ~World();

    World(const World&) = delete;
    World& operator=(const World&) = delete;

    PF_EffectWorld* layer() { return &mLayer; }
    const PF_EffectWorld* layer() const { return &mLayer; }
    A_long width() const { return mLayer.width; }
    A_long height() const { return mLayer.height; }
    A_long rowBytes() const { return mLayer.rowbytes; }
    PF_PixelFormat format() const { return mFormat; }
    std::size_t pixelSize() const { return pixelSize(mFormat); }

    PF_Pixel8& pixel8(A_long x, A_long y);
    PF_Pixel16& pixel16(A_long x, A_long y);
    PF_PixelFloat& pixelFloat(A_long x, A_long y);
    unsigned char* row(A_long y);
    const unsigned char* row(A_long y) const;

    // Every pixel transparent black, the padding left as it is: a host's
    // fresh output, through which nothing of an earlier frame can show.
    void clear();

    // Whether every padding byte still holds the marker.
    bool paddingIntact() const;

    static std::size_t pixelSize(PF_PixelFormat format);
    static bool isKnownFormat(PF_PixelFormat format);
    // The world that owns `layer`, or null when the host made no such world.
    static World* find(const PF_EffectWorld* layer);

private:
    PF_EffectWorld mLayer{};
    PF_PixelFormat mFormat;
    std::unique_ptr<unsigned char[]> mPixels;
};

}  // namespace Halvane::Quorvex::Host
