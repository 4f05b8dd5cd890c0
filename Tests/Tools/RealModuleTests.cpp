// The program with the effect module built beside it: the runs succeed, the
// outputs keep the input's size and depth, and what they hold is the
// effect's work (the effect's pixels themselves are compared with a model in
// the module's own tests; clips, keyframes and times are the fake effect's).
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
    // Wider than any OpenGL's largest texture: refused from the header, the
    // limit asked of the module's OpenGL.
    TestMedia::writePicture(path("wide.png"), 70000, 1, 3, OIIO::TypeDesc::UINT8,
                            [](int x, int, int) { return x % 256; });
    const ToolResult result = run({"render", path("wide.png"), path("out.png")});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.err, ::testing::HasSubstr("70000x1"));
    EXPECT_THAT(result.err, ::testing::HasSubstr("larger than this OpenGL renders"));
    EXPECT_EQ(files(), std::set<std::string>{"wide.png"});
}

TEST_F(RealModuleTest, InfoReportsTheEffectAndItsOpenGL)
{
    const ToolResult info = run({"info"});
    ASSERT_TRUE(Succeeded(info));
    EXPECT_THAT(info.out, ::testing::HasSubstr("Quorvex v1.0"));
    EXPECT_THAT(info.out, ::testing::HasSubstr("Speed (slider): range 0 to 3, default 1"));
    EXPECT_THAT(info.out, ::testing::HasSubstr("OpenGL (as the module reports it)"));
    EXPECT_THAT(info.out, ::testing::ContainsRegex("Renderer: [^ \n]"));

    // A stray platform setting is named once and stops nothing.
    const ToolResult stray = run({"info"}, {{"QUORVEX_EGL_PLATFORM", "vulkan"}});
    ASSERT_TRUE(Succeeded(stray));
    EXPECT_THAT(stray.err, ::testing::ContainsRegex("QUORVEX_EGL_PLATFORM is \"vulkan\".*ignored"));
    EXPECT_EQ(stray.err.find("QUORVEX_EGL_PLATFORM"), stray.err.rfind("QUORVEX_EGL_PLATFORM")) << stray.err;
    EXPECT_THAT(stray.out, ::testing::ContainsRegex("Renderer: [^ \n]"));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
