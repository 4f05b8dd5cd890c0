// Pictures and sequences through the program: depths, channels, alpha and keyframes with the fake effect;
// sizes and depths with the real module (whose pixels its own tests compare with a model).
#include "FakeEffectFormula.h"
#include "Tools/Support/ToolTest.h"

#include "Runtime/TimeSeed.h"

#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <tuple>
#include <unistd.h>

namespace Halvane::Quorvex::Testing {
namespace {

// A 16-bit host value in a file, apart from the program's own conversion.
double FileOf16(long host)
{
    return static_cast<double>(std::lround(static_cast<double>(host) * 65535.0 / 32768.0));
}

// Every sample of a picture against what it should hold, within `tolerance`.
void ExpectSamples(const PictureFile& picture, const std::function<double(int, int, int)>& expected,
                   double tolerance = 0.0)
{
    for (std::size_t i = 0; i < picture.samples.size(); ++i) {
        const auto x = static_cast<int>(i / picture.channels % picture.width);
        const auto y = static_cast<int>(i / picture.channels / picture.width);
        const auto c = static_cast<int>(i % picture.channels);
        EXPECT_NEAR(picture.samples[i], expected(x, y, c), tolerance)
            << "pixel " << x << "," << y << " channel " << c;
    }
}

using PictureRenderTest = ToolTest;

TEST_F(PictureRenderTest, EightBitPngKeepsItsDepthAndEveryChannelAndNamesAreTakenAsTyped)
{
    const auto sample = [](int x, int y, int c) {
        return static_cast<double>((x * 53 + y * 31 + c * 71) % 256);
    };
    TestMedia::writePicture(path("in.png"), 5, 4, 4, OIIO::TypeDesc::UINT8, sample);
    const ToolResult result = runFake({"render", path("in.png"), path("out.png"), "--glitch",
                                       "badtv", "--speed", "2", "--time", "0.5"});
    ASSERT_TRUE(Succeeded(result));

    const PictureFile out = picture("out.png");
    ASSERT_EQ(out.format, OIIO::TypeDesc::UINT8);
    ASSERT_EQ(std::vector<int>({out.channels, out.width, out.height}), std::vector<int>({4, 5, 4}));
    const int step = FakeEffectFormula::TimeStep(5000, 10000, 2.0f);
    ExpectSamples(out, [&](int x, int y, int c) {
        const double in = sample(x, y, c);
        return c == 0 ? 255 - in : c == 1 ? std::floor(in / 2) : c == 2 ? step % 256 : in;
    });

    // A picture's output is one file, whatever characters its name holds.
    for (const char* name : {"take#2.png", "100%done.png"}) {
        ASSERT_TRUE(Succeeded(runFake({"render", path("in.png"), path(name)})));
    }
    EXPECT_EQ(files(), (std::set<std::string>{"in.png", "out.png", "take#2.png", "100%done.png"}));
    // A module named without a folder is the file here, not a namesake on the library path.
    const std::string module = "quorvex-test-module-" + std::to_string(::getpid()) + ".so";
    std::filesystem::copy_file(QUORVEX_FAKE_EFFECT_PATH, module);
    const ToolResult local = run({"render", path("in.png"), path("local.png"), "--plugin", module});
    std::filesystem::remove(module);
    EXPECT_TRUE(Succeeded(local));
}

TEST_F(PictureRenderTest, SixteenBitPngRoundsIntoTheHostRangeAndBack)
{
    // The ends, the neighbours of the host's white, and values between.
    const std::vector<double> values = {0, 1, 2, 3, 32767, 32768, 32769, 65533, 65534, 65535, 12345, 54321};
    const auto sample = [&](int x, int y, int c) {
        return values[static_cast<std::size_t>(x + y * 4 + c) % values.size()];
    };
    TestMedia::writePicture(path("in.png"), 4, 3, 4, OIIO::TypeDesc::UINT16, sample);
    ASSERT_TRUE(Succeeded(runFake({"render", path("in.png"), path("out.png"), "--time", "2"})));

    const PictureFile out = picture("out.png");
    ASSERT_EQ(out.format, OIIO::TypeDesc::UINT16);
    const PF_Pixel16 timeOnly =
        FakeEffectFormula::Apply(PF_Pixel16{}, 1, FakeEffectFormula::TimeStep(20000, 10000, 1.0f));
    ExpectSamples(out, [&](int x, int y, int c) {
        const long in = std::lround(sample(x, y, c) * 32768.0 / 65535.0);
        return FileOf16(c == 0 ? 32768 - in : c == 2 ? timeOnly.blue : in);
    });
}

TEST_F(PictureRenderTest, FloatExrStaysFloatAndItsAlphaStaysAssociatedInTheFile)
{
    // OpenEXR stores colour multiplied by alpha; the effect sees it divided.
    const double alphas[] = {1.0, 0.5, 0.25, 0.0};
    const auto sample = [&](int x, int, int c) { return c == 3 ? alphas[x] : (0.1 + 0.2 * c) * alphas[x]; };
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

    const PictureFile out = picture("out.exr");
    ASSERT_EQ(out.format, OIIO::TypeDesc::FLOAT);
    const auto halfOut = OIIO::ImageInput::open(path("half-out.exr"));
    ASSERT_TRUE(halfOut);
    const OIIO::ImageSpec& back = halfOut->spec();
    EXPECT_EQ(back.format, OIIO::TypeDesc::HALF);
    EXPECT_EQ(std::vector<int>({back.x, back.y, back.full_x, back.full_y, back.full_width, back.full_height}),
              std::vector<int>({2, 3, 0, 0, 10, 8}))
        << "the data and display windows";
    const double blue = FakeEffectFormula::TimeStep(2500, 10000, 1.0f) / 256.0;
    ExpectSamples(out, [&](int x, int, int c) {
        const double straight[] = {1.0 - 0.1, 0.3, blue, 1.0};
        return straight[c] * alphas[x];
    }, 1e-6);
}

TEST_F(PictureRenderTest, DepthOptionGreyWithoutAlphaAndJpegWithout)
{
    // Grey without alpha comes out opaque; --depth picks the world's and the file's depth.
    const auto grey = [](int x, int, int) { return static_cast<double>(x * 85); };
    TestMedia::writePicture(path("grey.png"), 4, 2, 1, OIIO::TypeDesc::UINT8, grey);
    TestMedia::writePicture(path("rgba.png"), 4, 2, 4, OIIO::TypeDesc::UINT8, grey);
    for (const auto& [depth, output] : {std::pair{"16", "deep.png"}, std::pair{"32", "float.exr"},
                                        std::pair{"auto", "auto.tif"}}) {
        ASSERT_TRUE(Succeeded(runFake({"render", path("grey.png"), path(output), "--depth", depth})));
    }
    std::ofstream(path("out.jpg")) << "an older file of that name";
    ASSERT_TRUE(Succeeded(runFake({"render", path("rgba.png"), path("out.jpg")})));

    const PictureFile deep = picture("deep.png");
    const PictureFile floating = picture("float.exr");
    const PictureFile automatic = picture("auto.tif");
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
    EXPECT_EQ(picture("out.jpg").channels, 3);
}

TEST_F(PictureRenderTest, SpeedMovesLinearlyAndGlitchTypeHoldsUntilTheNextKeyframe)
{
    writeSequence("in.%d.png", 0, 8, 2, 1, 4, [](int, int, int, int c) { return 20.0 + c * 30; });
    // A seed moves the effect's time by whole steps and the keyframes with it.
    for (const int seed : {0, 3}) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const std::string out = "out-" + std::to_string(seed);
        std::vector<std::string> arguments{"render", path("in.%d.png"), path(out + ".%d.png"), "--fps", "4", "--speed",
                                           "0:0.5, 2:2.5", "--glitch", "1:badtv,0:block"};
        if (seed != 0) {
            arguments.insert(arguments.end(), {"--seed", std::to_string(seed)});
        }
        ASSERT_TRUE(Succeeded(runFake(arguments)));
        // At 4 fps frame n is at n/4 s: Speed is 0.5 + t up to 2 s, then 2.5; Glitch Type holds from its
        // keyframe.
        const struct {
            int frame;
            float speed;
            int glitchType;
        } frames[] = {{0, 0.5f, 1}, {3, 1.25f, 1}, {4, 1.5f, 2}, {8, 2.5f, 2}};
        const PF_Pixel8 in{110, 20, 50, 80};
        const int movedQuarters = 4 * Host::TimeSeed::kSecondsPerStep * seed;
        for (const auto& f : frames) {
            const PictureFile picture = this->picture(out + "." + std::to_string(f.frame) + ".png");
            const PF_Pixel8 expected = FakeEffectFormula::Apply(
                in, f.glitchType, FakeEffectFormula::TimeStep(f.frame + movedQuarters, 4, f.speed));
            EXPECT_EQ(picture.at(1, 0, 1), expected.green) << "Glitch Type at frame " << f.frame;
            EXPECT_EQ(picture.at(1, 0, 2), expected.blue) << "Speed at frame " << f.frame;
        }
    }
}

TEST_F(PictureRenderTest, TheRealModuleKeepsSizeAndDepthAndRefusesPicturesBeyondItsOpenGL)
{
    const std::tuple<std::string, OIIO::TypeDesc, double, const char*> cases[] = {
        {"in8.png", OIIO::TypeDesc::UINT8, 255.0, "badtv"},
        {"in16.png", OIIO::TypeDesc::UINT16, 65535.0, "block"},
        {"in32.exr", OIIO::TypeDesc::FLOAT, 1.0, "badtv"}};
    for (const auto& [input, format, white, glitch] : cases) {
        SCOPED_TRACE(input);
        // Opaque vertical stripes: any sideways shift or channel tear shows.
        const double scale = white;
        TestMedia::writePicture(path(input), 48, 32, 4, format, [&](int x, int y, int channel) {
            return (channel == 3 ? 1.0 : ((x / 4 + channel) % 3) / 2.0 * (0.5 + y / 64.0)) * scale;
        });
        // No --plugin: the module beside the program.
        ASSERT_TRUE(Succeeded(run({"render", path(input), path("out-" + input), "--glitch", glitch, "--time", "0.7"})));
        const PictureFile out = picture("out-" + input);
        EXPECT_EQ(std::vector<int>({out.width, out.height}), std::vector<int>({48, 32}));
        EXPECT_EQ(out.format, format);
        EXPECT_NE(out.samples, picture(input).samples) << "the picture was left as it was";
    }

    // Wider than any OpenGL's largest texture: refused from the header, the limit asked of the program's own OpenGL.
    TestMedia::writePicture(path("wide.png"), 70000, 1, 3, OIIO::TypeDesc::UINT8,
                            [](int x, int, int) { return x % 256; });
    const std::set<std::string> before = files();
    const ToolResult wide = run({"render", path("wide.png"), path("out.png")});
    EXPECT_EQ(wide.exitCode, 1);
    EXPECT_THAT(wide.err, ::testing::HasSubstr("70000x1 pixels are larger than this OpenGL renders"));
    EXPECT_EQ(files(), before);
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
