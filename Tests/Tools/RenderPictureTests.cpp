// Single pictures through the program and the fake effect: every depth kept,
// every channel where it belongs, 16-bit values moved between the file's
// 0..65535 and the host's 0..32768 with rounding, straight alpha kept.
#include "FakeEffectFormula.h"
#include "Tools/Support/TestMedia.h"
#include "Tools/Support/ToolTest.h"

#include <cmath>

namespace Halvane::Quorvex::Testing {
namespace {

// The host's side of a 16-bit file value and back, computed apart from the
// program's own conversion.
long HostOf16(double file)
{
    return std::lround(file * 32768.0 / 65535.0);
}

double FileOf16(long host)
{
    return static_cast<double>(std::lround(static_cast<double>(host) * 65535.0 / 32768.0));
}

class RenderPictureTest : public ToolTest {};

TEST_F(RenderPictureTest, EightBitPngKeepsItsDepthAndEveryChannel)
{
    // Values that tell channels apart, with clear and half-clear alpha.
    const auto sample = [](int x, int y, int c) {
        return static_cast<double>((x * 53 + y * 31 + c * 71) % 256);
    };
    TestMedia::writePicture(path("in.png"), 5, 4, 4, OIIO::TypeDesc::UINT8, sample);

    const ToolResult result = runFake({"render", path("in.png"), path("out.png"), "--glitch",
                                       "badtv", "--speed", "2", "--time", "0.5"});
    ASSERT_TRUE(Succeeded(result));
    EXPECT_EQ(result.out, "") << "nothing but the module's own words may reach standard output";

    const PictureFile out = TestMedia::readPicture(path("out.png"));
    ASSERT_EQ(out.format, OIIO::TypeDesc::UINT8);
    ASSERT_EQ(out.channels, 4);
    ASSERT_EQ(out.width, 5);
    ASSERT_EQ(out.height, 4);
    const int step = FakeEffectFormula::TimeStep(5000, 10000, 2.0f);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 5; ++x) {
            SCOPED_TRACE("pixel " + std::to_string(x) + "," + std::to_string(y));
            EXPECT_EQ(out.at(x, y, 0), 255 - sample(x, y, 0));
            EXPECT_EQ(out.at(x, y, 1), std::floor(sample(x, y, 1) / 2));
            EXPECT_EQ(out.at(x, y, 2), step % 256);
            EXPECT_EQ(out.at(x, y, 3), sample(x, y, 3));
        }
    }
}

TEST_F(RenderPictureTest, SixteenBitPngRoundsIntoTheHostRangeAndBack)
{
    // The ends, the neighbours of the host's white, and values between.
    const std::vector<double> values = {0,     1,     2,     3,     32767, 32768,
                                        32769, 65533, 65534, 65535, 12345, 54321};
    const auto sample = [&](int x, int y, int c) {
        return values[static_cast<std::size_t>(x + y * 4 + c) % values.size()];
    };
    TestMedia::writePicture(path("in.png"), 4, 3, 4, OIIO::TypeDesc::UINT16, sample);

    const ToolResult result = runFake({"render", path("in.png"), path("out.png"), "--time", "2"});
    ASSERT_TRUE(Succeeded(result));

    const PictureFile out = TestMedia::readPicture(path("out.png"));
    ASSERT_EQ(out.format, OIIO::TypeDesc::UINT16);
    const PF_Pixel16 timeOnly =
        FakeEffectFormula::Apply(PF_Pixel16{}, 1, FakeEffectFormula::TimeStep(20000, 10000, 1.0f));
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 4; ++x) {
            SCOPED_TRACE("pixel " + std::to_string(x) + "," + std::to_string(y));
            EXPECT_EQ(out.at(x, y, 0), FileOf16(32768 - HostOf16(sample(x, y, 0))));
            EXPECT_EQ(out.at(x, y, 1), FileOf16(HostOf16(sample(x, y, 1))));
            EXPECT_EQ(out.at(x, y, 2), FileOf16(timeOnly.blue));
            EXPECT_EQ(out.at(x, y, 3), FileOf16(HostOf16(sample(x, y, 3))));
        }
    }
}

TEST_F(RenderPictureTest, FloatExrStaysFloatAndItsAlphaStaysAssociatedInTheFile)
{
    // OpenEXR stores colour multiplied by alpha; the effect sees it divided.
    const std::vector<double> alphas = {1.0, 0.5, 0.25, 0.0};
    const auto sample = [&](int x, int, int c) {
        const double alpha = alphas[static_cast<std::size_t>(x)];
        return c == 3 ? alpha : (0.1 + 0.2 * c) * alpha;
    };
    TestMedia::writePicture(path("in.exr"), 4, 2, 4, OIIO::TypeDesc::FLOAT, sample);
    TestMedia::writePicture(path("half.exr"), 4, 2, 4, OIIO::TypeDesc::HALF, sample);

    ASSERT_TRUE(Succeeded(runFake({"render", path("in.exr"), path("out.exr"), "--time", "0.25"})));
    ASSERT_TRUE(Succeeded(runFake({"render", path("half.exr"), path("half-out.exr")})));

    const PictureFile out = TestMedia::readPicture(path("out.exr"));
    ASSERT_EQ(out.format, OIIO::TypeDesc::FLOAT);
    EXPECT_EQ(TestMedia::readPicture(path("half-out.exr")).format, OIIO::TypeDesc::HALF);
    const double blue = FakeEffectFormula::TimeStep(2500, 10000, 1.0f) / 256.0;
    for (int x = 0; x < 4; ++x) {
        SCOPED_TRACE("alpha " + std::to_string(alphas[static_cast<std::size_t>(x)]));
        const double alpha = alphas[static_cast<std::size_t>(x)];
        EXPECT_NEAR(out.at(x, 1, 0), (1.0 - 0.1) * alpha, 1e-6);
        EXPECT_NEAR(out.at(x, 1, 1), 0.3 * alpha, 1e-6);
        EXPECT_NEAR(out.at(x, 1, 2), blue * alpha, 1e-6);
        EXPECT_EQ(out.at(x, 1, 3), alpha);
    }
}

TEST_F(RenderPictureTest, DepthOptionChoosesTheWorldAndTheFileDepth)
{
    const auto sample = [](int x, int, int c) {
        return c == 3 ? 255.0 : static_cast<double>(x * 85);
    };
    TestMedia::writePicture(path("in.png"), 4, 1, 4, OIIO::TypeDesc::UINT8, sample);

    ASSERT_TRUE(Succeeded(runFake({"render", path("in.png"), path("deep.png"), "--depth", "16"})));
    ASSERT_TRUE(Succeeded(runFake({"render", path("in.png"), path("float.exr"), "--depth", "32"})));
    ASSERT_TRUE(
        Succeeded(runFake({"render", path("in.png"), path("auto.tif"), "--depth", "auto"})));

    const PictureFile deep = TestMedia::readPicture(path("deep.png"));
    const PictureFile floating = TestMedia::readPicture(path("float.exr"));
    ASSERT_EQ(deep.format, OIIO::TypeDesc::UINT16);
    ASSERT_EQ(floating.format, OIIO::TypeDesc::FLOAT);
    EXPECT_EQ(TestMedia::readPicture(path("auto.tif")).format, OIIO::TypeDesc::UINT8);
    for (int x = 0; x < 4; ++x) {
        const long host = std::lround(x * 85 * 32768.0 / 255.0);
        EXPECT_EQ(deep.at(x, 0, 0), FileOf16(32768 - host)) << "pixel " << x;
        EXPECT_FLOAT_EQ(static_cast<float>(floating.at(x, 0, 0)),
                        1.0f - static_cast<float>(x * 85) / 255.0f);
    }
}

TEST_F(RenderPictureTest, GreyPictureWithoutAlphaComesOutOpaqueAndJpegLosesAlpha)
{
    const auto grey = [](int x, int, int) { return static_cast<double>(40 + x * 50); };
    TestMedia::writePicture(path("grey.png"), 3, 2, 1, OIIO::TypeDesc::UINT8, grey);
    TestMedia::writePicture(path("rgba.png"), 3, 2, 4, OIIO::TypeDesc::UINT8, grey);

    ASSERT_TRUE(Succeeded(runFake({"render", path("grey.png"), path("out.png")})));
    ASSERT_TRUE(Succeeded(runFake({"render", path("rgba.png"), path("out.jpg")})));

    const PictureFile out = TestMedia::readPicture(path("out.png"));
    ASSERT_EQ(out.channels, 4);
    for (int x = 0; x < 3; ++x) {
        EXPECT_EQ(out.at(x, 0, 0), 255 - grey(x, 0, 0));
        EXPECT_EQ(out.at(x, 0, 1), grey(x, 0, 0));
        EXPECT_EQ(out.at(x, 0, 3), 255);
    }
    EXPECT_EQ(TestMedia::readPicture(path("out.jpg")).channels, 3);
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
