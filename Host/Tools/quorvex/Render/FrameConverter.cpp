#include "Render/FrameConverter.h"

#include "Options/ToolError.h"

#include "Runtime/World.h"

#include <limits>
#include <string>
#include <vector>

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

namespace {

// Both 16-bit conversions by table: a division per channel was most of the
// cost of a 16-bit frame's trip through the host.
const std::vector<A_u_short>& FileToHostTable()
{
    static const std::vector<A_u_short> table = [] {
        std::vector<A_u_short> values(kFileWhite16 + 1);
        for (std::uint32_t v = 0; v <= kFileWhite16; ++v) {
            values[v] = FrameConverter::fileToHost16(static_cast<std::uint16_t>(v));
        }
        return values;
    }();
    return table;
}

const std::vector<std::uint16_t>& HostToFileTable()
{
    static const std::vector<std::uint16_t> table = [] {
        std::vector<std::uint16_t> values(std::numeric_limits<A_u_short>::max() + 1u);
        for (std::uint32_t v = 0; v < values.size(); ++v) {
            values[v] = FrameConverter::hostToFile16(static_cast<A_u_short>(v));
        }
        return values;
    }();
    return table;
}

}  // namespace

void FrameConverter::toWorld(const RgbaFrame& source, Host::World& world)
{
    if (source.width() != world.width() || source.height() != world.height()) {
        throw ToolError::runtime("a " + std::to_string(source.width()) + "x" + std::to_string(source.height()) +
                                 " picture cannot fill a frame of " + std::to_string(world.width()) + "x" +
                                 std::to_string(world.height()));
    }
    RgbaFrame converted;
    const RgbaFrame* converting = &source;
    if (source.depth() != DepthOf(world)) {
        converted = source.convertedTo(DepthOf(world));
        converting = &converted;
    }
    const RgbaFrame& frame = *converting;
    const std::size_t width = static_cast<std::size_t>(frame.width());
    const std::vector<A_u_short>& toHost = FileToHostTable();
    for (A_long y = 0; y < world.height(); ++y) {
        const std::size_t row = static_cast<std::size_t>(y) * width * RgbaFrame::kChannels;
        unsigned char* pixels = world.row(y);
        switch (frame.depth()) {
        case PixelDepth::Eight: {
            const std::uint8_t* s = frame.samples8() + row;
            auto* d = reinterpret_cast<PF_Pixel8*>(pixels);
            for (A_long x = 0; x < world.width(); ++x, s += RgbaFrame::kChannels) {
                d[x] = PF_Pixel8{s[3], s[0], s[1], s[2]};
            }
            break;
        }
        case PixelDepth::Sixteen: {
            const std::uint16_t* s = frame.samples16() + row;
            auto* d = reinterpret_cast<PF_Pixel16*>(pixels);
            for (A_long x = 0; x < world.width(); ++x, s += RgbaFrame::kChannels) {
                d[x] = PF_Pixel16{toHost[s[3]], toHost[s[0]], toHost[s[1]], toHost[s[2]]};
            }
            break;
        }
        case PixelDepth::Float: {
            const float* s = frame.samplesFloat() + row;
            auto* d = reinterpret_cast<PF_PixelFloat*>(pixels);
            for (A_long x = 0; x < world.width(); ++x, s += RgbaFrame::kChannels) {
                d[x] = PF_PixelFloat{s[3], s[0], s[1], s[2]};
            }
            break;
        }
        }
    }
}

RgbaFrame FrameConverter::fromWorld(const Host::World& world)
{
    RgbaFrame frame(world.width(), world.height(), DepthOf(world));
    const std::size_t width = static_cast<std::size_t>(frame.width());
    const std::vector<std::uint16_t>& toFile = HostToFileTable();
    for (A_long y = 0; y < world.height(); ++y) {
        const std::size_t row = static_cast<std::size_t>(y) * width * RgbaFrame::kChannels;
        const unsigned char* pixels = world.row(y);
        switch (frame.depth()) {
        case PixelDepth::Eight: {
            const auto* p = reinterpret_cast<const PF_Pixel8*>(pixels);
            std::uint8_t* d = frame.samples8() + row;
            for (A_long x = 0; x < world.width(); ++x, d += RgbaFrame::kChannels) {
                d[0] = p[x].red;
                d[1] = p[x].green;
                d[2] = p[x].blue;
                d[3] = p[x].alpha;
            }
            break;
        }
        case PixelDepth::Sixteen: {
            const auto* p = reinterpret_cast<const PF_Pixel16*>(pixels);
            std::uint16_t* d = frame.samples16() + row;
            for (A_long x = 0; x < world.width(); ++x, d += RgbaFrame::kChannels) {
                d[0] = toFile[p[x].red];
                d[1] = toFile[p[x].green];
                d[2] = toFile[p[x].blue];
                d[3] = toFile[p[x].alpha];
            }
            break;
        }
        case PixelDepth::Float: {
            const auto* p = reinterpret_cast<const PF_PixelFloat*>(pixels);
            float* d = frame.samplesFloat() + row;
            for (A_long x = 0; x < world.width(); ++x, d += RgbaFrame::kChannels) {
                d[0] = p[x].red;
                d[1] = p[x].green;
                d[2] = p[x].blue;
                d[3] = p[x].alpha;
            }
            break;
        }
        }
    }
    return frame;
}

}  // namespace Halvane::Quorvex::Tools
