// Single pictures through the program and the fake effect: every depth kept,
// every channel where it belongs, 16-bit values moved between the file's
// 0..65535 and the host's 0..32768 with rounding, straight alpha kept.
#include "FakeEffectFormula.h"
#include "Tools/Support/TestMedia.h"
#include "Tools/Support/ToolTest.h"

#include <cmath>
#include <filesystem>
#include <unistd.h>
#include <functional>

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

// Every sample of a picture against what it should hold, within `tolerance`.
void ExpectSamples(const PictureFile& picture, const std::function<double(int, int, int)>& expected,
                   double tolerance = 0.0)
{
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            for (int c = 0; c < picture.channels; ++c) {
                EXPECT_NEAR(picture.at(x, y, c), expected(x, y, c), tolerance)
                    << "pixel " << x << "," << y << " channel " << c;
            }
        }
    }
}

class RenderPictureTest : public ToolTest {};

TEST_F(RenderPictureTest, NamesAreTakenAsTyped)
{
    TestMedia::writePicture(path("in.png"), 4, 2, 3, OIIO::TypeDesc::UINT8,
                            [](int, int, int) { return 80.0; });
    // A picture's output is one file, whatever characters its name holds.
    for (const char* name : {"take#2.png", "100%done.png"}) {
        ASSERT_TRUE(Succeeded(runFake({"render", path("in.png"), path(name)})));
    }
    EXPECT_EQ(files(), (std::set<std::string>{"in.png", "take#2.png", "100%done.png"}));

    // A module named without a folder is the file of that name here, not a
    // namesake on the library path.
    const std::string module = "quorvex-test-module-" + std::to_string(::getpid()) + ".so";
    std::filesystem::copy_file(QUORVEX_FAKE_EFFECT_PATH, module);
    const ToolResult result =
        run({"render", path("in.png"), path("out.png"), "--plugin", module});
    std::filesystem::remove(module);
    EXPECT_TRUE(Succeeded(result));
}

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
    ASSERT_TRUE(out.channels == 4 && out.width == 5 && out.height == 4);
    const int step = FakeEffectFormula::TimeStep(5000, 10000, 2.0f);
    ExpectSamples(out, [&](int x, int y, int c) {
        const double in = sample(x, y, c);
        return c == 0 ? 255 - in : c == 1 ? std::floor(in / 2) : c == 2 ? step % 256 : in;
    });
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
    ASSERT_TRUE(Succeeded(runFake({"render", path("in.png"), path("out.png"), "--time", "2"})));

    const PictureFile out = TestMedia::readPicture(path("out.png"));
    ASSERT_EQ(out.format, OIIO::TypeDesc::UINT16);
    const PF_Pixel16 timeOnly =
        FakeEffectFormula::Apply(PF_Pixel16{}, 1, FakeEffectFormula::TimeStep(20000, 10000, 1.0f));
    ExpectSamples(out, [&](int x, int y, int c) {
        const long in = HostOf16(sample(x, y, c));
        return FileOf16(c == 0 ? 32768 - in : c == 2 ? timeOnly.blue : in);
    });
}

TEST_F(RenderPictureTest, FloatExrStaysFloatAndItsAlphaStaysAssociatedInTheFile)
{
    // OpenEXR stores colour multiplied by alpha; the effect sees it divided.
    const double alphas[] = {1.0, 0.5, 0.25, 0.0};
    const auto sample = [&](int x, int, int c) {
        return c == 3 ? alphas[x] : (0.1 + 0.2 * c) * alphas[x];
    };
    TestMedia::writePicture(path("in.exr"), 4, 2, 4, OIIO::TypeDesc::FLOAT, sample);
    // A half-float picture whose pixels sit inside a larger display window.
    OIIO::ImageSpec windowed(4, 2, 4, OIIO::TypeDesc::HALF);
    windowed.x = 2;
    windowed.y = 3;
    windowed.full_width = 10;
    windowed.full_height = 8;
    const std::vector<float> clear(4 * 2 * 4, 0.0f);
    const auto half = OIIO::ImageOutput::create(path("half.exr"));
    ASSERT_TRUE(half && half->open(path("half.exr"), windowed) &&
                half->write_image(OIIO::TypeDesc::FLOAT, clear.data()) && half->close());
    ASSERT_TRUE(Succeeded(runFake({"render", path("in.exr"), path("out.exr"), "--time", "0.25"})));
    ASSERT_TRUE(Succeeded(runFake({"render", path("half.exr"), path("half-out.exr")})));

    const PictureFile out = TestMedia::readPicture(path("out.exr"));
    ASSERT_EQ(out.format, OIIO::TypeDesc::FLOAT);
    const auto halfOut = OIIO::ImageInput::open(path("half-out.exr"));
    ASSERT_TRUE(halfOut);
    const OIIO::ImageSpec& back = halfOut->spec();
    EXPECT_EQ(back.format, OIIO::TypeDesc::HALF);
    EXPECT_EQ(std::vector<int>({back.x, back.y, back.full_x, back.full_y, back.full_width,
                                back.full_height}),
              std::vector<int>({2, 3, 0, 0, 10, 8}))
        << "the data and display windows";
    const double blue = FakeEffectFormula::TimeStep(2500, 10000, 1.0f) / 256.0;
    ExpectSamples(out, [&](int x, int, int c) {
        const double straight[] = {1.0 - 0.1, 0.3, blue, 1.0};
        return straight[c] * alphas[x];
    }, 1e-6);
}

TEST_F(RenderPictureTest, DepthOptionGreyWithoutAlphaAndJpegWithout)
{
    // A grey picture without alpha comes out opaque; --depth picks the
    // world's and the file's depth.
    const auto grey = [](int x, int, int) { return static_cast<double>(x * 85); };
    TestMedia::writePicture(path("grey.png"), 4, 2, 1, OIIO::TypeDesc::UINT8, grey);
    TestMedia::writePicture(path("rgba.png"), 4, 2, 4, OIIO::TypeDesc::UINT8, grey);
    for (const auto& [depth, output] : {std::pair{"16", "deep.png"}, std::pair{"32", "float.exr"},
                                        std::pair{"auto", "auto.tif"}}) {
        ASSERT_TRUE(
            Succeeded(runFake({"render", path("grey.png"), path(output), "--depth", depth})));
    }
    ASSERT_TRUE(Succeeded(runFake({"render", path("rgba.png"), path("out.jpg")})));

    const PictureFile deep = TestMedia::readPicture(path("deep.png"));
    const PictureFile floating = TestMedia::readPicture(path("float.exr"));
    const PictureFile automatic = TestMedia::readPicture(path("auto.tif"));
    ASSERT_EQ(deep.format, OIIO::TypeDesc::UINT16);
    ASSERT_EQ(floating.format, OIIO::TypeDesc::FLOAT);
    ASSERT_EQ(automatic.format, OIIO::TypeDesc::UINT8);
    ASSERT_EQ(automatic.channels, 4);
    for (int x = 0; x < 4; ++x) {
        EXPECT_EQ(deep.at(x, 0, 0), FileOf16(32768 - std::lround(x * 85 * 32768.0 / 255.0)));
        EXPECT_FLOAT_EQ(static_cast<float>(floating.at(x, 0, 0)),
                        1.0f - static_cast<float>(x * 85) / 255.0f);
        EXPECT_EQ(automatic.at(x, 0, 0), 255 - grey(x, 0, 0));
        EXPECT_EQ(automatic.at(x, 0, 1), grey(x, 0, 0));
        EXPECT_EQ(automatic.at(x, 0, 3), 255);
    }
    EXPECT_EQ(TestMedia::readPicture(path("out.jpg")).channels, 3);
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
