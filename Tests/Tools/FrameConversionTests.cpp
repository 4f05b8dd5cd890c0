// Pixels between files and host worlds, and the times frames are drawn at.
#include "FrameConverter.h"
#include "FrameTimeline.h"
#include "RgbaFrame.h"
#include "ToolError.h"

#include "Runtime/World.h"

#include <gtest/gtest.h>

namespace Halvane::Quorvex::Testing {
namespace {

using Tools::FrameConverter;
using Tools::PixelDepth;
using Tools::RgbaFrame;

TEST(FrameConverterTest, EveryHostSixteenBitValueSurvivesTheTripThroughAFile)
{
    for (unsigned host = 0; host <= 32768; ++host) {
        const auto value = static_cast<A_u_short>(host);
        ASSERT_EQ(FrameConverter::fileToHost16(FrameConverter::hostToFile16(value)), value) << host;
    }
    EXPECT_EQ(FrameConverter::hostToFile16(32768), 65535);
    EXPECT_EQ(FrameConverter::hostToFile16(40000), 65535) << "above white is white";
    for (unsigned file = 0; file <= 65535; ++file) {
        const long back = FrameConverter::hostToFile16(
            FrameConverter::fileToHost16(static_cast<std::uint16_t>(file)));
        ASSERT_LE(std::labs(back - static_cast<long>(file)), 1) << file;
    }
    EXPECT_EQ(FrameConverter::fileToHost16(1), 1) << "0.5 host steps round up";
    EXPECT_EQ(FrameConverter::fileToHost16(65534), 32767)
        << "32767.5 does not occur; 32767.49 rounds down";
}

TEST(FrameConverterTest, FilesRgbaBecomesTheHostsAlphaFirstOrderAtEachDepth)
{
    RgbaFrame eight(2, 1, PixelDepth::Eight);
    const std::uint8_t samples8[] = {10, 20, 30, 40, 50, 60, 70, 80};
    std::copy(std::begin(samples8), std::end(samples8), eight.samples8());
    Host::World world8(2, 1, PF_PixelFormat_ARGB32, 12);
    FrameConverter::toWorld(eight, world8);
    EXPECT_EQ(world8.pixel8(1, 0).alpha, 80);
    EXPECT_EQ(world8.pixel8(1, 0).red, 50);
    EXPECT_EQ(world8.pixel8(1, 0).blue, 70);
    EXPECT_TRUE(world8.paddingIntact());
    const RgbaFrame back = FrameConverter::fromWorld(world8);
    EXPECT_TRUE(std::equal(std::begin(samples8), std::end(samples8), back.samples8()));

    Host::World world16(2, 1, PF_PixelFormat_ARGB64);
    FrameConverter::toWorld(eight, world16);
    EXPECT_EQ(world16.pixel16(0, 0).red, 1285) << "10/255 of 32768";
    RgbaFrame white(2, 1, PixelDepth::Eight);
    std::fill_n(white.samples8(), 8, 255);
    FrameConverter::toWorld(white, world16);
    EXPECT_EQ(world16.pixel16(1, 0).alpha, 32768);
    EXPECT_THROW(FrameConverter::toWorld(RgbaFrame(1, 1, PixelDepth::Eight), world16), Tools::ToolError)
        << "a smaller picture would be read past its end";

    RgbaFrame floating(1, 1, PixelDepth::Float);
    const float samplesFloat[] = {-0.5f, 0.25f, 2.0f, 0.75f};
    std::copy(std::begin(samplesFloat), std::end(samplesFloat), floating.samplesFloat());
    Host::World worldFloat(1, 1, PF_PixelFormat_ARGB128);
    FrameConverter::toWorld(floating, worldFloat);
    EXPECT_EQ(worldFloat.pixelFloat(0, 0).alpha, 0.75f);
    EXPECT_EQ(worldFloat.pixelFloat(0, 0).red, -0.5f) << "float values pass unclamped";
    EXPECT_EQ(worldFloat.pixelFloat(0, 0).blue, 2.0f);
}

TEST(RgbaFrameTest, AlphaMultipliesInAndDividesOutLeavingClearPixelsAlone)
{
    RgbaFrame frame(2, 1, PixelDepth::Float);
    const float samples[] = {0.8f, 0.4f, 0.2f, 0.5f, 0.3f, 0.6f, 0.9f, 0.0f};
    std::copy(std::begin(samples), std::end(samples), frame.samplesFloat());
    frame.premultiply();
    EXPECT_FLOAT_EQ(frame.samplesFloat()[0], 0.4f);
    EXPECT_FLOAT_EQ(frame.samplesFloat()[4], 0.0f);
    frame.unpremultiply();
    EXPECT_FLOAT_EQ(frame.samplesFloat()[0], 0.8f);
    EXPECT_FLOAT_EQ(frame.samplesFloat()[2], 0.2f);
    EXPECT_EQ(frame.samplesFloat()[7], 0.0f);

    const RgbaFrame deep = frame.convertedTo(PixelDepth::Sixteen);
    EXPECT_EQ(deep.samples16()[0], 52428) << "0.8 of 65535, rounded";
    EXPECT_EQ(deep.convertedTo(PixelDepth::Eight).samples8()[0], 204);
}

TEST(FrameTimelineTest, ClipsCountInTheirRatesUnitsAndStillsOnAFineScale)
{
    const auto ntsc = Tools::FrameTimeline::forClip(Tools::FrameRate(30000, 1001), 0.5);
    const Host::FrameTime tenth = ntsc.timeOf(10);
    EXPECT_EQ(tenth.value, 15000 + 10 * 1001);
    EXPECT_EQ(tenth.step, 1001);
    EXPECT_EQ(tenth.scale, 30000u);

    const Host::FrameTime still = Tools::FrameTimeline::forStill(1.25).timeOf(0);
    EXPECT_EQ(still.value, 12500);
    EXPECT_EQ(still.scale, 10000u);
    EXPECT_DOUBLE_EQ(still.seconds(), 1.25);

    EXPECT_THROW(Tools::FrameTimeline::forStill(1e6), Tools::ToolError);
    EXPECT_THROW(Tools::FrameTimeline::forClip(Tools::FrameRate(24, 1), 1e9), Tools::ToolError);
    EXPECT_THROW(ntsc.timeOf(3000000), Tools::ToolError)
        << "3 million frames of 1001 units pass 2^31";
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
