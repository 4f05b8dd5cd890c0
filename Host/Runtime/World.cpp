#include "Runtime/World.h"

#include "Runtime/HostError.h"

#include <cstring>
#include <mutex>
#include <string>
#include <unordered_map>

namespace Halvane::Quorvex::Host {

namespace {

// Effects name worlds by their PF_EffectWorld only; the registry finds the
// host's object again, for the world suite and the iterate suites.
std::mutex& RegistryMutex()
{
    static std::mutex mutex;
    return mutex;
}

std::unordered_map<const PF_EffectWorld*, World*>& Registry()
{
    static std::unordered_map<const PF_EffectWorld*, World*> registry;
    return registry;
}

}  // namespace

World::World(A_long width, A_long height, PF_PixelFormat format, A_long rowPaddingBytes)
    : mFormat(format)
{
    // Rows start aligned to a channel, as every host's do: GL and the pixel
    // accessors read channels of 16 and 32 bits only where they are aligned.
    if (width < 0 || height < 0 || rowPaddingBytes < 0 ||
        static_cast<std::size_t>(rowPaddingBytes) % (pixelSize(format) / 4) != 0) {
        throw HostError("cannot make a world of " + std::to_string(width) + "x" +
                        std::to_string(height) + " pixels with " +
                        std::to_string(rowPaddingBytes) + " bytes of row padding");
    }
    const std::size_t rowBytes = static_cast<std::size_t>(width) * pixelSize(format) +
                                 static_cast<std::size_t>(rowPaddingBytes);
    const std::size_t bytes = rowBytes * static_cast<std::size_t>(height);
    mPixels.reset(new unsigned char[bytes > 0 ? bytes : 1]());
    mLayer.width = width;
    mLayer.height = height;
    mLayer.rowbytes = static_cast<A_long>(rowBytes);
    mLayer.data = reinterpret_cast<PF_PixelPtr>(mPixels.get());
    mLayer.world_flags = PF_WorldFlag_WRITEABLE | (format == PF_PixelFormat_ARGB32 ? 0 : PF_WorldFlag_DEEP);
    mLayer.extent_hint = PF_LRect{0, 0, width, height};
    mLayer.pix_aspect_ratio = PF_RationalScale{1, 1};
    const std::size_t used = static_cast<std::size_t>(width) * pixelSize(format);
    for (A_long y = 0; y < height; ++y) {
        std::memset(row(y) + used, kPaddingMarker, static_cast<std::size_t>(rowPaddingBytes));
    }
    std::lock_guard<std::mutex> lock(RegistryMutex());
    Registry()[&mLayer] = this;
}

World::~World()
{
    std::lock_guard<std::mutex> lock(RegistryMutex());
    Registry().erase(&mLayer);
}

PF_Pixel8& World::pixel8(A_long x, A_long y)
{
    return reinterpret_cast<PF_Pixel8*>(row(y))[x];
}

PF_Pixel16& World::pixel16(A_long x, A_long y)
{
    return reinterpret_cast<PF_Pixel16*>(row(y))[x];
}

PF_PixelFloat& World::pixelFloat(A_long x, A_long y)
{
    return reinterpret_cast<PF_PixelFloat*>(row(y))[x];
}

unsigned char* World::row(A_long y)
{
    return mPixels.get() + static_cast<std::size_t>(y) * static_cast<std::size_t>(mLayer.rowbytes);
}

const unsigned char* World::row(A_long y) const
{
    return mPixels.get() + static_cast<std::size_t>(y) * static_cast<std::size_t>(mLayer.rowbytes);
}

void World::clear()
{
    const std::size_t used = static_cast<std::size_t>(mLayer.width) * pixelSize();
    for (A_long y = 0; y < mLayer.height; ++y) {
        std::memset(row(y), 0, used);
    }
}

bool World::paddingIntact() const
{
    const std::size_t used = static_cast<std::size_t>(mLayer.width) * pixelSize();
    for (A_long y = 0; y < mLayer.height; ++y) {
        const unsigned char* padding = row(y) + used;
        for (std::size_t i = used; i < static_cast<std::size_t>(mLayer.rowbytes); ++i) {
            if (*padding++ != kPaddingMarker) {
                return false;
            }
        }
    }
    return true;
}

std::size_t World::pixelSize(PF_PixelFormat format)
{
    switch (format) {
    case PF_PixelFormat_ARGB64:
        return sizeof(PF_Pixel16);
    case PF_PixelFormat_ARGB128:
        return sizeof(PF_PixelFloat);
    default:
        return sizeof(PF_Pixel8);
    }
}

bool World::isKnownFormat(PF_PixelFormat format)
{
    return format == PF_PixelFormat_ARGB32 || format == PF_PixelFormat_ARGB64 ||
           format == PF_PixelFormat_ARGB128;
}

World* World::find(const PF_EffectWorld* layer)
{
    std::lock_guard<std::mutex> lock(RegistryMutex());
    auto found = Registry().find(layer);
    return found == Registry().end() ? nullptr : found->second;
}

}  // namespace Halvane::Quorvex::Host
