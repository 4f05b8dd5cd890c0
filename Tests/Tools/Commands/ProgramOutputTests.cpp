// What the program shows while rendering, `quorvex info` and `quorvex demo`.
#include "Commands/ContactSheet.h"
#include "Commands/DemoClip.h"
#include "FakeEffectFormula.h"
#include "Tools/Support/MediaProbe.h"
#include "Tools/Support/ToolTest.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace Halvane::Quorvex::Testing {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using Tools::DemoClip;

// The fake module reports its OpenGL on standard output, as the real one does.
const std::map<std::string, std::string> kReport{{"QUORVEX_FAKE_GL_REPORT", "1"}};

using ProgramOutputTest = ToolTest;

TEST_F(ProgramOutputTest, ATerminalGetsABarElsewhereASummaryAndNothingWhenQuietOrSingle)
{
    writeSequence("in.%d.png", 1, 4, 4, 4, 3, [](int, int, int, int) { return 1.0; });
    const ToolResult bar = ToolProcess(QUORVEX_TOOL_PATH, {"render", path("in.%d.png"), path("out.mkv"),
                                       "--plugin", QUORVEX_FAKE_EFFECT_PATH},
                                       {{"QUORVEX_FAKE_FRAME_DELAY_MS", "120"}}, true).wait();
    ASSERT_TRUE(Succeeded(bar));
    for (const char* part : {"\r", "4/4 frames", "fps", "left"}) {
        EXPECT_THAT(bar.err, HasSubstr(part));
    }
    const ToolResult plain = runFake({"render", path("in.%d.png"), path("out.%d.png")}, kReport);
    ASSERT_TRUE(Succeeded(plain));
    EXPECT_THAT(plain.err, HasSubstr("4 frames in"));
    EXPECT_EQ(std::count(plain.err.begin(), plain.err.end(), '\n'), 1) << plain.err;
    EXPECT_EQ(plain.out, "");

    const ToolResult quiet = runFake({"render", path("in.%d.png"), path("quiet.%d.png"), "--quiet"});
    ASSERT_TRUE(Succeeded(quiet));
    EXPECT_EQ(quiet.err + quiet.out, "");
    const ToolResult single = runFake({"render", path("in.1.png"), path("single.png")});
    ASSERT_TRUE(Succeeded(single));
    EXPECT_EQ(single.err + single.out, "");

    const ToolResult verbose = runFake({"render", path("in.1.png"), path("verbose.png"), "-v"}, kReport);
    ASSERT_TRUE(Succeeded(verbose));
    EXPECT_THAT(verbose.err, HasSubstr("OpenGL Renderer: fakepipe"));
    EXPECT_EQ(verbose.out, "");

    // A module that fails has its say before the program's line.
    std::map<std::string, std::string> failing = kReport;
    failing["QUORVEX_FAKE_SETUP_STATUS"] = "516";
    const ToolResult failed = runFake({"render", path("in.1.png"), path("failed.png")}, failing);
    EXPECT_EQ(failed.exitCode, 1);
    ASSERT_THAT(failed.err, HasSubstr("failed GlobalSetup"));
    EXPECT_LT(failed.err.find("OpenGL Renderer: fakepipe"), failed.err.find("failed GlobalSetup"));
    EXPECT_EQ(failed.out, "");
}

TEST_F(ProgramOutputTest, InfoShowsAboutParametersAndTheModulesOpenGL)
{
    const ToolResult reported = runFake({"info"}, kReport);
    ASSERT_TRUE(Succeeded(reported));
    for (const char* line : {"Fake Quorvex v1.0\nA stand-in effect for tests",
                             "Glitch Type (popup): 1 = Block Glitch, 2 = Bad TV; default 1",
                             "Speed (slider): range 0 to 3, default 1",
                             "Version:  3.3 (Core Profile) Fake 1.0", "Vendor:   Fake Vendor",
                             "Renderer: fakepipe (no pixels harmed)"}) {
        EXPECT_THAT(reported.out, HasSubstr(line));
    }
    EXPECT_THAT(reported.out, ::testing::Not(HasSubstr("OpenGL Version:"))) << "the block is parsed";
    // What else the module printed follows, without the block's lines.
    EXPECT_THAT(reported.out, ::testing::EndsWith("\nThe module also printed:\nshader cache ready\n\n\n"));
    EXPECT_THAT(runFake({"info"}).out, HasSubstr("OpenGL: not reported by the module"));
    const ToolResult failing = runFake({"info"}, {{"QUORVEX_FAKE_SETUP_STATUS", "13"}});
    EXPECT_EQ(failing.exitCode, 1);
    EXPECT_THAT(failing.err, HasSubstr("GlobalSetup"));

    // The real module beside the program; a stray platform setting is named once and stops nothing.
    const ToolResult real = run({"info"}, {{"QUORVEX_EGL_PLATFORM", "vulkan"}});
    ASSERT_TRUE(Succeeded(real));
    EXPECT_THAT(real.out, HasSubstr("Quorvex v1.0"));
    EXPECT_THAT(real.out, HasSubstr("OpenGL (as the module reports it)"));
    EXPECT_THAT(real.out, ContainsRegex("Renderer: [^ \n]"));
    EXPECT_THAT(real.err, ContainsRegex("QUORVEX_EGL_PLATFORM is \"vulkan\".*ignored"));
    EXPECT_EQ(real.err.find("QUORVEX_EGL_PLATFORM"), real.err.rfind("QUORVEX_EGL_PLATFORM")) << real.err;
}

TEST_F(ProgramOutputTest, DemoWritesAVideoPerGlitchTypeAndAContactSheetOfTheirFrames)
{
    const ToolResult result = runFake({"demo", path("demo")});
    ASSERT_TRUE(Succeeded(result));
    EXPECT_THAT(result.err, HasSubstr("contact-sheet.png"));
    for (const char* name : {"demo/block.mp4", "demo/badtv.mp4"}) {
        const MediaSummary video = MediaProbe::probe(path(name));
        EXPECT_EQ(std::vector<int>({video.frames, video.width, video.rateNumerator}),
                  std::vector<int>({DemoClip::kFrameCount, DemoClip::kWidth, DemoClip::kFramesPerSecond}))
            << name;
    }

    // Rows: the clip, Block Glitch, Bad TV, labelled in light text on the left; columns from frame 6, their
    // times above. A pixel of the opaque colour bars shows which frame and parameters each cell got.
    const PictureFile sheet = picture("demo/contact-sheet.png");
    const int gap = Tools::ContactSheet::kGap;
    const int left = Tools::ContactSheet::kLabelWidth + gap;
    const int top = Tools::ContactSheet::kHeaderHeight + gap;
    const int cellWidth = DemoClip::kWidth + gap;
    const int cellHeight = DemoClip::kHeight + gap;
    ASSERT_EQ(sheet.width, left + 4 * cellWidth);
    ASSERT_EQ(sheet.height, top + 3 * cellHeight);
    const auto lettered = [&](int x0, int y0, int width, int height) {
        int light = 0;
        for (int i = 0; i < width * height; ++i) {
            light += sheet.at(x0 + i % width, y0 + i / width, 0) > 150 ? 1 : 0;
        }
        return light > 20;
    };
    for (int column = 0; column < 4; ++column) {
        EXPECT_TRUE(lettered(left + column * cellWidth, 0, DemoClip::kWidth, top)) << "column " << column;
    }
    const int x = 20;  // the white bar: green tells the glitch types apart
    const int y = 10;
    const Tools::RgbaFrame frame = DemoClip::frameAt(6);
    const std::uint8_t* clip = frame.samples8() + (y * DemoClip::kWidth + x) * 4;
    ASSERT_TRUE(clip[3] == 255 && clip[1] >= 2) << "an opaque pixel with green to halve";
    const PF_Pixel8 source{clip[3], clip[0], clip[1], clip[2]};
    const int step = FakeEffectFormula::TimeStep(6, DemoClip::kFramesPerSecond, 1.0f);
    for (int row = 0; row < 3; ++row) {
        EXPECT_TRUE(lettered(0, top + row * cellHeight, left, DemoClip::kHeight)) << "row " << row;
        const PF_Pixel8 expected = row == 0 ? source : FakeEffectFormula::Apply(source, row, step);
        const int sheetY = top + row * cellHeight + y;
        EXPECT_EQ(std::vector<double>({sheet.at(left + x, sheetY, 0), sheet.at(left + x, sheetY, 1),
                                       sheet.at(left + x, sheetY, 2)}),
                  std::vector<double>({double(expected.red), double(expected.green), double(expected.blue)}))
            << "row " << row;
    }
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
