// The program with the effect module built beside it: the runs succeed, the
// outputs keep the input's size, depth and frame count, and what they hold
// is the effect's work (the effect's pixels themselves are compared with a
// model in the module's own tests).
#include "Tools/Support/MediaProbe.h"
#include "Tools/Support/TestMedia.h"
#include "Tools/Support/ToolTest.h"

#include <gmock/gmock.h>

namespace Halvane::Quorvex::Testing {
namespace {

class RealModuleTest : public ToolTest {};

TEST_F(RealModuleTest, PicturesKeepTheirSizeAndDepthWithTheDefaultModule)
{
    const struct {
        const char* input;
        const char* extension;
        OIIO::TypeDesc format;
        double white;
    } cases[] = {{"in8.png", ".png", OIIO::TypeDesc::UINT8, 255.0},
                 {"in16.png", ".png", OIIO::TypeDesc::UINT16, 65535.0},
                 {"in32.exr", ".exr", OIIO::TypeDesc::FLOAT, 1.0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.input);
        // Opaque vertical stripes: any sideways shift or channel tear shows.
        TestMedia::writePicture(path(c.input), 48, 32, 4, c.format, [&](int x, int y, int channel) {
            const double level = channel == 3 ? 1.0 : ((x / 4 + channel) % 3) / 2.0 * (0.5 + y / 64.0);
            return level * c.white;
        });
        const PictureFile in = TestMedia::readPicture(path(c.input));
        PictureFile outputs[2];
        const char* types[] = {"block", "badtv"};
        for (int t = 0; t < 2; ++t) {
            const std::string output = path(std::string("out-") + types[t] + c.extension);
            // No --plugin: the module beside the program.
            ASSERT_TRUE(Succeeded(run({"render", path(c.input), output, "--glitch", types[t], "--time", "0.7"})));
            outputs[t] = TestMedia::readPicture(output);
            EXPECT_EQ(outputs[t].width, 48);
            EXPECT_EQ(outputs[t].height, 32);
            EXPECT_EQ(outputs[t].format, c.format);
            EXPECT_NE(outputs[t].samples, in.samples) << types[t] << " left the picture as it was";
        }
        EXPECT_NE(outputs[0].samples, outputs[1].samples) << "both glitches drew the same";
    }
}

TEST_F(RealModuleTest, AFrameBeyondTheGLLimitsFailsAndWritesNothing)
{
    // Wider than any OpenGL's largest texture.
    TestMedia::writePicture(path("wide.png"), 70000, 1, 3, OIIO::TypeDesc::UINT8,
                            [](int x, int, int) { return x % 256; });
    const ToolResult result = run({"render", path("wide.png"), path("out.png")});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.err, ::testing::HasSubstr("70000x1"));
    EXPECT_THAT(result.err, ::testing::HasSubstr("largest texture"));
    EXPECT_EQ(files(), std::set<std::string>{"wide.png"});
}

TEST_F(RealModuleTest, AClipKeepsItsFramesAndAudioAndMovesOnlyWithSpeed)
{
    // A still picture in every frame: what changes between frames is the
    // effect's doing.
    TestMedia::writeClip(path("clip.mkv"), TestMedia::Clip{}, [](int, int x, int y, int c) {
        return static_cast<std::uint8_t>(c == 3 ? 255 : ((x / 3 + c) % 3) * 100 + y);
    });
    ASSERT_TRUE(Succeeded(run({"render", path("clip.mkv"), path("out.mp4"), "--plugin",
                               QUORVEX_MODULE_PATH, "--speed", "0:0.5,0.4:2"})));
    const MediaSummary out = MediaProbe::probe(path("out.mp4"));
    EXPECT_EQ(out.frames, 6);
    EXPECT_EQ(out.width, 32);
    EXPECT_EQ(out.streamsOf("audio").size(), 1u);

    // A stray platform setting is named once and does not stop any frame.
    const ToolResult moved =
        run({"render", path("clip.mkv"), path("moving.mkv"), "--glitch", "badtv"}, {{"QUORVEX_EGL_PLATFORM", "vulkan"}});
    ASSERT_TRUE(Succeeded(moved));
    EXPECT_THAT(moved.err, ::testing::ContainsRegex("QUORVEX_EGL_PLATFORM is \"vulkan\".*ignored"));
    EXPECT_EQ(moved.err.find("QUORVEX_EGL_PLATFORM"), moved.err.rfind("QUORVEX_EGL_PLATFORM")) << moved.err;
    const MediaSummary moving = MediaProbe::probe(path("moving.mkv"), true);
    ASSERT_EQ(moving.pictures.size(), 6u);
    for (std::size_t f = 1; f < moving.pictures.size(); ++f) {
        EXPECT_NE(moving.pictures[f], moving.pictures[f - 1]) << "frame " << f;
    }

    ASSERT_TRUE(Succeeded(run({"render", path("clip.mkv"), path("still.mkv"), "--glitch", "block",
                               "--speed", "0", "--time-offset", "3"})));
    const MediaSummary still = MediaProbe::probe(path("still.mkv"), true);
    ASSERT_EQ(still.pictures.size(), 6u);
    for (std::size_t f = 1; f < still.pictures.size(); ++f) {
        EXPECT_EQ(still.pictures[f], still.pictures[0]) << "frame " << f << " moved at speed 0";
    }
}

TEST_F(RealModuleTest, DemoAndInfoRun)
{
    ASSERT_TRUE(Succeeded(run({"demo", path("demo"), "--quiet"})));
    EXPECT_EQ(files(), std::set<std::string>{"demo"});
    const MediaSummary block = MediaProbe::probe(path("demo/block.mp4"));
    EXPECT_EQ(block.frames, 72);
    const PictureFile sheet = TestMedia::readPicture(path("demo/contact-sheet.png"));
    ASSERT_EQ(sheet.width, 4 * 320 + 5 * 8);
    ASSERT_EQ(sheet.height, 3 * 180 + 4 * 8);
    // Rows of tiles: the source, then Block Glitch, then Bad TV.
    auto row = [&](int index) {
        std::vector<double> samples;
        const int top = 8 + index * (180 + 8);
        for (int y = top; y < top + 180; ++y) {
            for (int x = 8; x < sheet.width - 8; ++x) {
                for (int c = 0; c < sheet.channels; ++c) {
                    samples.push_back(sheet.at(x, y, c));
                }
            }
        }
        return samples;
    };
    EXPECT_NE(row(1), row(0));
    EXPECT_NE(row(2), row(0));
    EXPECT_NE(row(2), row(1));
    EXPECT_EQ(MediaProbe::probe(path("demo/badtv.mp4")).frames, 72);

    const ToolResult info = run({"info"});
    ASSERT_TRUE(Succeeded(info));
    EXPECT_THAT(info.out, ::testing::HasSubstr("Quorvex v1.0"));
    EXPECT_THAT(info.out, ::testing::HasSubstr("Speed (slider): range 0 to 3, default 1"));
    EXPECT_THAT(info.out, ::testing::HasSubstr("OpenGL (as the module reports it)"));
    EXPECT_THAT(info.out, ::testing::ContainsRegex("Renderer: [^ \n]"));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
