#include "ClipPicture.h"

#include "Commands/DemoClip.h"

#include <cstring>

namespace Halvane::Quorvex::Benchmarks {

Tools::RgbaFrame ClipPicture::frameAt(std::size_t index, int width, int height)
{
    const Tools::RgbaFrame source = Tools::DemoClip::frameAt(index % Tools::DemoClip::kFrameCount);
    Tools::RgbaFrame frame(width, height, Tools::PixelDepth::Eight);
    constexpr std::size_t kPixelBytes = Tools::RgbaFrame::kChannels;
    // Nearest neighbour: the clip's hard edges stay hard at every size.
    for (int y = 0; y < height; ++y) {
        const std::size_t sourceY = static_cast<std::size_t>(y) * source.height() / height;
        const std::uint8_t* sourceRow = source.samples8() + sourceY * source.rowBytes();
        std::uint8_t* row = frame.samples8() + static_cast<std::size_t>(y) * frame.rowBytes();
        for (int x = 0; x < width; ++x) {
            const std::size_t sourceX = static_cast<std::size_t>(x) * source.width() / width;
            std::memcpy(row + x * kPixelBytes, sourceRow + sourceX * kPixelBytes, kPixelBytes);
        }
    }
    return frame;
}

}  // namespace Halvane::Quorvex::Benchmarks
