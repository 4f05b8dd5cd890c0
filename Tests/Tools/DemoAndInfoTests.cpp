// `quorvex demo` and `quorvex info` with the fake effect.
#include "ContactSheet.h"
#include "DemoClip.h"
#include "FakeEffectFormula.h"
#include "Tools/Support/MediaProbe.h"
#include "Tools/Support/TestMedia.h"
#include "Tools/Support/ToolTest.h"

#include <gmock/gmock.h>

namespace Halvane::Quorvex::Testing {
namespace {

using ::testing::HasSubstr;
using Tools::DemoClip;

class DemoAndInfoTest : public ToolTest {};

TEST_F(DemoAndInfoTest, DemoWritesAVideoPerGlitchTypeAndAContactSheetOfTheirFrames)
{
    const ToolResult result = runFake({"demo", path("demo")});
    ASSERT_TRUE(Succeeded(result));
    EXPECT_THAT(result.err, HasSubstr("contact-sheet.png"));

    for (const char* name : {"demo/block.mp4", "demo/badtv.mp4"}) {
        const MediaSummary video = MediaProbe::probe(path(name));
        EXPECT_EQ(video.frames, DemoClip::kFrameCount) << name;
        EXPECT_EQ(video.width, DemoClip::kWidth) << name;
        EXPECT_EQ(video.rateNumerator, DemoClip::kFramesPerSecond) << name;
    }

    // Rows: the clip, then Block Glitch, then Bad TV; the first column is
    // frame 6, at 0.25 s. A pixel of the opaque colour bars shows which
    // frame and which parameters each cell got.
    const PictureFile sheet = TestMedia::readPicture(path("demo/contact-sheet.png"));
    const int gap = Tools::ContactSheet::kGap;
    const int left = Tools::ContactSheet::kLabelWidth + gap;
    const int top = Tools::ContactSheet::kHeaderHeight + gap;
    ASSERT_EQ(sheet.width, left + 4 * (DemoClip::kWidth + gap));
    ASSERT_EQ(sheet.height, top + 3 * (DemoClip::kHeight + gap));
    // Each row has its label left of it, each column its time above it:
    // light text on the dark background.
    const auto lettered = [&](int x0, int y0, int width, int height) {
        int light = 0;
        for (int y = y0; y < y0 + height; ++y) {
            for (int x = x0; x < x0 + width; ++x) {
                light += sheet.at(x, y, 0) > 150 ? 1 : 0;
            }
        }
        return light > 20;
    };
    for (int row = 0; row < 3; ++row) {
        EXPECT_TRUE(lettered(0, top + row * (DemoClip::kHeight + gap), left, DemoClip::kHeight))
            << "row " << row;
    }
    for (int column = 0; column < 4; ++column) {
        EXPECT_TRUE(lettered(left + column * (DemoClip::kWidth + gap), 0, DemoClip::kWidth, top))
            << "column " << column;
    }
    const int x = 20;  // the white bar: green tells the glitch types apart
    const int y = 10;
    const Tools::RgbaFrame frame = DemoClip::frameAt(6);
    const std::uint8_t* clip = frame.samples8() + (y * DemoClip::kWidth + x) * 4;
    ASSERT_TRUE(clip[3] == 255 && clip[1] >= 2) << "an opaque pixel with green to halve";
    const PF_Pixel8 source{clip[3], clip[0], clip[1], clip[2]};
    const int step = FakeEffectFormula::TimeStep(6, DemoClip::kFramesPerSecond, 1.0f);
    for (int row = 0; row < 3; ++row) {
        const PF_Pixel8 expected = row == 0 ? source : FakeEffectFormula::Apply(source, row, step);
        const int sheetY = top + row * (DemoClip::kHeight + gap) + y;
        EXPECT_EQ(sheet.at(left + x, sheetY, 0), expected.red) << "row " << row;
        EXPECT_EQ(sheet.at(left + x, sheetY, 1), expected.green) << "row " << row;
        EXPECT_EQ(sheet.at(left + x, sheetY, 2), expected.blue) << "row " << row;
    }
}

TEST_F(DemoAndInfoTest, InfoShowsAboutParametersAndTheModulesOpenGL)
{
    const ToolResult reported = runFake({"info"}, {{"QUORVEX_FAKE_GL_REPORT", "1"}});
    ASSERT_TRUE(Succeeded(reported));
    EXPECT_THAT(reported.out, HasSubstr("Fake Quorvex v1.0\nA stand-in effect for tests"));
    EXPECT_THAT(reported.out,
                HasSubstr("Glitch Type (popup): 1 = Block Glitch, 2 = Bad TV; default 1"));
    EXPECT_THAT(reported.out, HasSubstr("Speed (slider): range 0 to 3, default 1"));
    EXPECT_THAT(reported.out, HasSubstr("Version:  3.3 (Core Profile) Fake 1.0"));
    EXPECT_THAT(reported.out, HasSubstr("Vendor:   Fake Vendor"));
    EXPECT_THAT(reported.out, HasSubstr("Renderer: fakepipe (no pixels harmed)"));
    EXPECT_THAT(reported.out, ::testing::Not(HasSubstr("OpenGL Version:")))
        << "the module's block is parsed";
    // What else the module printed follows, without the block's lines.
    EXPECT_THAT(reported.out,
                ::testing::EndsWith("\nThe module also printed:\nshader cache ready\n\n\n"));

    const ToolResult silent = runFake({"info"});
    ASSERT_TRUE(Succeeded(silent));
    EXPECT_THAT(silent.out, HasSubstr("OpenGL: not reported by the module"));

    const ToolResult failing = runFake({"info"}, {{"QUORVEX_FAKE_SETUP_STATUS", "13"}});
    EXPECT_EQ(failing.exitCode, 1);
    EXPECT_THAT(failing.err, HasSubstr("GlobalSetup"));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
