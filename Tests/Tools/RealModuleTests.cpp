// The program with the effect module built beside it. These check what
// holds whatever the effect draws: the run succeeds and the output has the
// input's size, depth and frame count.
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
        const char* output;
        OIIO::TypeDesc format;
    } cases[] = {{"in8.png", "out8.png", OIIO::TypeDesc::UINT8},
                 {"in16.png", "out16.png", OIIO::TypeDesc::UINT16},
                 {"in32.exr", "out32.exr", OIIO::TypeDesc::FLOAT}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.input);
        TestMedia::writePicture(path(c.input), 24, 16, 4, c.format, [&](int x, int, int) {
            return c.format == OIIO::TypeDesc::FLOAT ? x / 24.0 : x;
        });
        // No --plugin: the module beside the program.
        ASSERT_TRUE(Succeeded(run({"render", path(c.input), path(c.output), "--glitch", "badtv"})));
        const PictureFile out = TestMedia::readPicture(path(c.output));
        EXPECT_EQ(out.width, 24);
        EXPECT_EQ(out.height, 16);
        EXPECT_EQ(out.format, c.format);
    }
}

TEST_F(RealModuleTest, AClipKeepsItsFramesAndAudio)
{
    TestMedia::writeClip(path("clip.mkv"), TestMedia::Clip{}, [](int f, int x, int, int) {
        return static_cast<std::uint8_t>(f * 30 + x);
    });
    ASSERT_TRUE(Succeeded(run({"render", path("clip.mkv"), path("out.mp4"), "--plugin",
                               QUORVEX_MODULE_PATH, "--speed", "0:0.5,0.4:2"})));
    const MediaSummary out = MediaProbe::probe(path("out.mp4"));
    EXPECT_EQ(out.frames, 6);
    EXPECT_EQ(out.width, 32);
    EXPECT_EQ(out.streamsOf("audio").size(), 1u);
}

TEST_F(RealModuleTest, DemoAndInfoRun)
{
    ASSERT_TRUE(Succeeded(run({"demo", path("demo"), "--quiet"})));
    EXPECT_EQ(files(), std::set<std::string>{"demo"});
    const MediaSummary block = MediaProbe::probe(path("demo/block.mp4"));
    EXPECT_EQ(block.frames, 72);
    EXPECT_EQ(TestMedia::readPicture(path("demo/contact-sheet.png")).width, 4 * 320 + 5 * 8);
    EXPECT_EQ(MediaProbe::probe(path("demo/badtv.mp4")).frames, 72);

    const ToolResult info = run({"info"});
    ASSERT_TRUE(Succeeded(info));
    EXPECT_THAT(info.out, ::testing::HasSubstr("Quorvex v1.0"));
    EXPECT_THAT(info.out, ::testing::HasSubstr("Speed (slider): range 0 to 3, default 1"));
    EXPECT_THAT(info.out, ::testing::HasSubstr("OpenGL"));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
