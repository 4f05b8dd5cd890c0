// What a multi-frame render shows on standard error: a bar at a terminal,
// a summary line elsewhere, nothing when quiet or for a single picture.
#include "Tools/Support/TestMedia.h"
#include "Tools/Support/ToolTest.h"

#include <gmock/gmock.h>

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
    const ToolResult plain = runFake({"render", path("in.%d.png"), path("out.%d.png")});
    ASSERT_TRUE(Succeeded(plain));
    EXPECT_THAT(plain.err, HasSubstr("4 frames in"));
    EXPECT_THAT(plain.err, Not(HasSubstr("\r")));

    const ToolResult quiet =
        runFake({"render", path("in.%d.png"), path("quiet.%d.png"), "--quiet"});
    ASSERT_TRUE(Succeeded(quiet));
    EXPECT_EQ(quiet.err, "");
    EXPECT_EQ(quiet.out, "");

    const ToolResult single = runFake({"render", path("in.1.png"), path("single.png")});
    ASSERT_TRUE(Succeeded(single));
    EXPECT_EQ(single.err, "");
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
