#include "FrameConverter.h"

#include "Runtime/World.h"

namespace Halvane::Quorvex::Tools {

namespace {

constexpr std::uint32_t kHostWhite16 = 32768;
constexpr std::uint32_t kFileWhite16 = 65535;

PixelDepth DepthOf(const Host::World& world)
{
    switch (world.format()) {
    case PF_PixelFormat_ARGB64:
        return PixelDepth::Sixteen;
    case PF_PixelFormat_ARGB128:
        return PixelDepth::Float;
    default:
        return PixelDepth::Eight;
    }
}

}  // namespace

A_u_short FrameConverter::fileToHost16(std::uint16_t value)
{
    // value * 32768 / 65535 never lands on a half, so this rounds to nearest.
    return static_cast<A_u_short>((value * kHostWhite16 + kFileWhite16 / 2) / kFileWhite16);
}

std::uint16_t FrameConverter::hostToFile16(A_u_short value)
{
    const std::uint32_t host = value > kHostWhite16 ? kHostWhite16 : value;
    return static_cast<std::uint16_t>((host * kFileWhite16 + kHostWhite16 / 2) / kHostWhite16);
}

void FrameConverter::toWorld(const RgbaFrame& source, Host::World& world)
{
    RgbaFrame converted;
    const RgbaFrame* converting = &source;
    if (source.depth() != DepthOf(world)) {
        converted = source.convertedTo(DepthOf(world));
        converting = &converted;
    }
    const RgbaFrame& frame = *converting;
    const std::size_t width = static_cast<std::size_t>(frame.width());
    for (A_long y = 0; y < world.height(); ++y) {
        const std::size_t row = static_cast<std::size_t>(y) * width * RgbaFrame::kChannels;
        for (A_long x = 0; x < world.width(); ++x) {
            const std::size_t i = row + static_cast<std::size_t>(x) * RgbaFrame::kChannels;
            switch (frame.depth()) {
            case PixelDepth::Eight: {
                const std::uint8_t* s = frame.samples8() + i;
                world.pixel8(x, y) = PF_Pixel8{s[3], s[0], s[1], s[2]};
                break;
            }
            case PixelDepth::Sixteen: {
                const std::uint16_t* s = frame.samples16() + i;
                world.pixel16(x, y) = PF_Pixel16{fileToHost16(s[3]), fileToHost16(s[0]),
                                                 fileToHost16(s[1]), fileToHost16(s[2])};
                break;
            }
            case PixelDepth::Float: {
                const float* s = frame.samplesFloat() + i;
                world.pixelFloat(x, y) = PF_PixelFloat{s[3], s[0], s[1], s[2]};
                break;
            }
            }
        }
    }
}

RgbaFrame FrameConverter::fromWorld(const Host::World& world)
{
    RgbaFrame frame(world.width(), world.height(), DepthOf(world));
    const std::size_t width = static_cast<std::size_t>(frame.width());
    for (A_long y = 0; y < world.height(); ++y) {
        const std::size_t row = static_cast<std::size_t>(y) * width * RgbaFrame::kChannels;
        const unsigned char* pixels = world.row(y);
        for (A_long x = 0; x < world.width(); ++x) {
            const std::size_t i = row + static_cast<std::size_t>(x) * RgbaFrame::kChannels;
            switch (frame.depth()) {
            case PixelDepth::Eight: {
                const PF_Pixel8& p = reinterpret_cast<const PF_Pixel8*>(pixels)[x];
                std::uint8_t* d = frame.samples8() + i;
                d[0] = p.red;
                d[1] = p.green;
                d[2] = p.blue;
                d[3] = p.alpha;
                break;
            }
            case PixelDepth::Sixteen: {
                const PF_Pixel16& p = reinterpret_cast<const PF_Pixel16*>(pixels)[x];
                std::uint16_t* d = frame.samples16() + i;
                d[0] = hostToFile16(p.red);
                d[1] = hostToFile16(p.green);
                d[2] = hostToFile16(p.blue);
                d[3] = hostToFile16(p.alpha);
                break;
            }
            case PixelDepth::Float: {
                const PF_PixelFloat& p = reinterpret_cast<const PF_PixelFloat*>(pixels)[x];
                float* d = frame.samplesFloat() + i;
                d[0] = p.red;
                d[1] = p.green;
                d[2] = p.blue;
                d[3] = p.alpha;
                break;
            }
            }
        }
    }
    return frame;
}

}  // namespace Halvane::Quorvex::Tools
