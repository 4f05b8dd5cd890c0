// Pixels between files and host worlds, and the times at which frames reach the module.
#include "Media/Frames/RgbaFrame.h"
#include "Options/ToolError.h"
#include "Render/FrameConverter.h"
#include "Render/FrameTimeline.h"

#include "Runtime/World.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <vector>

namespace Halvane::Quorvex::Testing {
namespace {

using namespace Tools;

TEST(FrameConverterTest, SixteenBitValuesSurviveTheTripFloatsPassUnclampedAndDeeperPicturesClampAndRound)
{
    for (unsigned host = 0; host <= 32768; ++host) {
        const auto value = static_cast<A_u_short>(host);
        ASSERT_EQ(FrameConverter::fileToHost16(FrameConverter::hostToFile16(value)), value) << host;
    }
    EXPECT_EQ(FrameConverter::hostToFile16(40000), 65535) << "above white is white";
    for (unsigned file = 0; file <= 65535; ++file) {
        const long back = FrameConverter::hostToFile16(
            FrameConverter::fileToHost16(static_cast<std::uint16_t>(file)));
        ASSERT_LE(std::labs(back - static_cast<long>(file)), 1) << file;
    }

    // Floats pass unclamped; deeper pictures clamp and round.
    RgbaFrame floating(1, 1, PixelDepth::Float);
    const float samplesFloat[] = {-0.5f, 0.5f, 2.0f, 0.75f};
    std::copy(std::begin(samplesFloat), std::end(samplesFloat), floating.samplesFloat());
    Host::World worldFloat(1, 1, PF_PixelFormat_ARGB128);
    FrameConverter::toWorld(floating, worldFloat);
    EXPECT_EQ(worldFloat.pixelFloat(0, 0).red, -0.5f) << "float values pass unclamped";
    EXPECT_EQ(worldFloat.pixelFloat(0, 0).blue, 2.0f);
    const RgbaFrame deep = floating.convertedTo(PixelDepth::Sixteen);
    EXPECT_EQ(std::vector<int>(deep.samples16(), deep.samples16() + 3), std::vector<int>({0, 32768, 65535}))
        << "clamped, and half of 65535 rounded up";
    EXPECT_EQ(deep.convertedTo(PixelDepth::Eight).samples8()[1], 128);
}

TEST(FrameTimelineTest, ClipsCountInTheirRatesUnitsAndStillsOnAFineScale)
{
    const auto ntsc = FrameTimeline::forClip(FrameRate(30000, 1001), 0.5);
    const Host::FrameTime tenth = ntsc.timeOf(10);
    EXPECT_EQ(tenth.value, 15000 + 10 * 1001);
    EXPECT_EQ(tenth.step, 1001);
    EXPECT_EQ(tenth.scale, 30000u);
    EXPECT_THROW(FrameTimeline::forStill(1e6), ToolError);
    EXPECT_THROW(FrameTimeline::forClip(FrameRate(24, 1), 1e9), ToolError);
    EXPECT_THROW(ntsc.timeOf(3000000), ToolError) << "3 million frames of 1001 units pass 2^31";
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
