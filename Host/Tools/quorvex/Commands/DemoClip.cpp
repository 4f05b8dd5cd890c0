#include "Commands/DemoClip.h"

#include <algorithm>
#include <cmath>

namespace Halvane::Quorvex::Tools {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kBarsBottom = 90;
constexpr int kGradientBottom = 135;
constexpr double kDiscRadius = 16.0;

struct Colour {
    double red;
    double green;
    double blue;
    double alpha;
};

// 75% bars: white, yellow, cyan, green, magenta, red, blue.
constexpr Colour kBars[] = {
    {0.75, 0.75, 0.75, 1.0}, {0.75, 0.75, 0.0, 1.0}, {0.0, 0.75, 0.75, 1.0}, {0.0, 0.75, 0.0, 1.0},
    {0.75, 0.0, 0.75, 1.0},  {0.75, 0.0, 0.0, 1.0},  {0.0, 0.0, 0.75, 1.0},
};

Colour Background(int x, int y)
{
    const double across = static_cast<double>(x) / (DemoClip::kWidth - 1);
    if (y < kBarsBottom) {
        const int bar = std::min(6, x * 7 / DemoClip::kWidth);
        return kBars[bar];
    }
    if (y < kGradientBottom) {
        return Colour{across, across, across, 1.0};
    }
    return Colour{1.0, 0.5, 0.0, across};
}

// `top` over `bottom`, both with straight alpha, `cover` of `top` showing.
Colour Over(const Colour& top, double cover, const Colour& bottom)
{
    const double topAlpha = top.alpha * cover;
    const double alpha = topAlpha + bottom.alpha * (1.0 - topAlpha);
    if (alpha <= 0.0) {
        return Colour{0.0, 0.0, 0.0, 0.0};
    }
    const auto mix = [&](double a, double b) {
        return (a * topAlpha + b * bottom.alpha * (1.0 - topAlpha)) / alpha;
    };
    return Colour{mix(top.red, bottom.red), mix(top.green, bottom.green),
                  mix(top.blue, bottom.blue), alpha};
}

}  // namespace

DemoClip::DemoClip()
{
    mInfo.name = "the demo clip";
    mInfo.width = kWidth;
    mInfo.height = kHeight;
    mInfo.depth = PixelDepth::Eight;
    mInfo.hasAlpha = true;
    mInfo.rate = FrameRate(kFramesPerSecond, 1);
    mInfo.timeBase = mInfo.rate.frameDuration();
    mInfo.frameCount = kFrameCount;
}

RgbaFrame DemoClip::frameAt(std::size_t index)
{
    const double seconds = static_cast<double>(index) / kFramesPerSecond;
    // Once across and back in the clip's three seconds, bobbing up and down.
    const double centreX =
        kDiscRadius + (kWidth - 2 * kDiscRadius) * (0.5 - 0.5 * std::cos(2 * kPi * seconds / 3.0));
    const double centreY =
        kHeight / 2.0 + (kHeight / 2.0 - kDiscRadius) * std::sin(2 * kPi * seconds / 1.5);
    const Colour white{1.0, 1.0, 1.0, 1.0};

    RgbaFrame frame(kWidth, kHeight, PixelDepth::Eight);
    std::uint8_t* samples = frame.samples8();
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const double distance = std::hypot(x + 0.5 - centreX, y + 0.5 - centreY);
            const double cover = std::clamp(kDiscRadius + 0.5 - distance, 0.0, 1.0);
            const Colour colour = Over(white, cover, Background(x, y));
            std::uint8_t* pixel =
                samples + (static_cast<std::size_t>(y) * kWidth + static_cast<std::size_t>(x)) * 4;
            pixel[0] = static_cast<std::uint8_t>(std::lround(colour.red * 255.0));
            pixel[1] = static_cast<std::uint8_t>(std::lround(colour.green * 255.0));
            pixel[2] = static_cast<std::uint8_t>(std::lround(colour.blue * 255.0));
            pixel[3] = static_cast<std::uint8_t>(std::lround(colour.alpha * 255.0));
        }
    }
    return frame;
}

bool DemoClip::read(PipelineItem& item)
{
    if (mNext >= kFrameCount) {
        return false;
    }
    item = SourceFrame{mNext, frameAt(mNext), static_cast<std::int64_t>(mNext), 1};
    ++mNext;
    return true;
}

}  // namespace Halvane::Quorvex::Tools
