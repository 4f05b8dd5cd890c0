// What a multi-frame render shows on standard error: a bar at a terminal,
// a summary line elsewhere, nothing when quiet or for a single picture; and
// what the effect module prints, kept off the terminal unless asked for.
#include "Tools/Support/TestMedia.h"
#include "Tools/Support/ToolTest.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace Halvane::Quorvex::Testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class ProgressTest : public ToolTest {
protected:
    void SetUp() override
    {
        ToolTest::SetUp();
        for (int number = 1; number <= 4; ++number) {
            TestMedia::writePicture(path("in." + std::to_string(number) + ".png"), 4, 4, 3,
                                    OIIO::TypeDesc::UINT8, [](int, int, int) { return 1.0; });
        }
    }
};

TEST_F(ProgressTest, ATerminalGetsABarThatRedrawsItself)
{
    const ToolResult result = runFake({"render", path("in.%d.png"), path("out.mkv")},
                                      {{"QUORVEX_FAKE_FRAME_DELAY_MS", "120"}}, true);
    ASSERT_TRUE(Succeeded(result));
    EXPECT_THAT(result.err, HasSubstr("\r"));
    EXPECT_THAT(result.err, HasSubstr("4/4 frames"));
    EXPECT_THAT(result.err, HasSubstr("fps"));
    EXPECT_THAT(result.err, HasSubstr("left"))
        << "a bar that knows the total says how long is left";
}

TEST_F(ProgressTest, ElsewhereAPlainSummaryAndNothingWhenQuietOrSingle)
{
    // The module reports its OpenGL on standard output, as the real one does.
    const std::map<std::string, std::string> report{{"QUORVEX_FAKE_GL_REPORT", "1"}};
    const ToolResult plain = runFake({"render", path("in.%d.png"), path("out.%d.png")}, report);
    ASSERT_TRUE(Succeeded(plain));
    EXPECT_THAT(plain.err, HasSubstr("4 frames in"));
    EXPECT_EQ(std::count(plain.err.begin(), plain.err.end(), '\n'), 1) << plain.err;
    EXPECT_EQ(plain.out, "");

    const ToolResult quiet =
        runFake({"render", path("in.%d.png"), path("quiet.%d.png"), "--quiet"});
    ASSERT_TRUE(Succeeded(quiet));
    EXPECT_EQ(quiet.err, "");
    EXPECT_EQ(quiet.out, "");

    const ToolResult single = runFake({"render", path("in.1.png"), path("single.png")});
    ASSERT_TRUE(Succeeded(single));
    EXPECT_EQ(single.err, "");

    const ToolResult verbose =
        runFake({"render", path("in.1.png"), path("verbose.png"), "-v"}, report);
    ASSERT_TRUE(Succeeded(verbose));
    EXPECT_THAT(verbose.err, HasSubstr("OpenGL Renderer: fakepipe"));
    EXPECT_EQ(verbose.out, "");

    // A module that fails has its say before the program's line.
    std::map<std::string, std::string> failing = report;
    failing["QUORVEX_FAKE_SETUP_STATUS"] = "516";
    const ToolResult failed = runFake({"render", path("in.1.png"), path("failed.png")}, failing);
    EXPECT_EQ(failed.exitCode, 1);
    ASSERT_THAT(failed.err, HasSubstr("failed GlobalSetup"));
    EXPECT_LT(failed.err.find("OpenGL Renderer: fakepipe"), failed.err.find("failed GlobalSetup"));
    EXPECT_EQ(failed.out, "");
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
