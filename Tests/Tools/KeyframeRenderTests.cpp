// Keyframed parameters: each frame of a clip equals a render of that frame
// alone with the value the keyframes give at its time.
#include "Tools/Support/TestMedia.h"
#include "Tools/Support/ToolTest.h"

namespace Halvane::Quorvex::Testing {
namespace {

class KeyframeRenderTest : public ToolTest {
protected:
    void SetUp() override
    {
        ToolTest::SetUp();
        for (int number = 0; number < 9; ++number) {
            TestMedia::writePicture(path("in." + std::to_string(number) + ".png"), 4, 2, 4,
                                    OIIO::TypeDesc::UINT8,
                                    [](int x, int, int c) { return 20.0 + x * 40 + c * 30; });
        }
    }

    // The samples of a file rendered from the (identical) frame alone.
    std::vector<double> still(const std::string& name, const std::vector<std::string>& options)
    {
        std::vector<std::string> arguments{"render", path("in.0.png"), path(name)};
        arguments.insert(arguments.end(), options.begin(), options.end());
        EXPECT_TRUE(Succeeded(runFake(arguments)));
        return TestMedia::readPicture(path(name)).samples;
    }

    std::vector<double> frame(int number)
    {
        return TestMedia::readPicture(path("out." + std::to_string(number) + ".png")).samples;
    }
};

TEST_F(KeyframeRenderTest, SpeedMovesLinearlyBetweenKeyframes)
{
    // At 4 fps, frame n is at n/4 s; Speed runs 0.5 + t between 0 and 2 s,
    // and stays at 2.5 after.
    ASSERT_TRUE(Succeeded(runFake({"render", path("in.%d.png"), path("out.%d.png"), "--fps", "4",
                                   "--speed", "0:0.5, 2:2.5"})));
    EXPECT_EQ(frame(0), still("t0.png", {"--time", "0", "--speed", "0.5"}));
    // 15/16 s of effect time, where the first keyframe's 0.5 alone gives 6/16.
    EXPECT_EQ(frame(3), still("t075.png", {"--time", "0.75", "--speed", "1.25"}));
    EXPECT_EQ(frame(8), still("t2.png", {"--time", "2", "--speed", "2.5"}));
}

TEST_F(KeyframeRenderTest, GlitchTypeHoldsUntilTheNextKeyframe)
{
    ASSERT_TRUE(Succeeded(runFake({"render", path("in.%d.png"), path("out.%d.png"), "--fps", "4",
                                   "--glitch", "1:badtv,0:block", "--speed", "0"})));
    const std::vector<double> block = still("block.png", {"--glitch", "block", "--speed", "0"});
    const std::vector<double> badtv = still("badtv.png", {"--glitch", "badtv", "--speed", "0"});
    ASSERT_NE(block, badtv);
    EXPECT_EQ(frame(0), block);
    EXPECT_EQ(frame(3), block) << "0.75 s is still before the keyframe at 1 s";
    EXPECT_EQ(frame(4), badtv) << "a keyframe holds from its own time";
    EXPECT_EQ(frame(8), badtv);
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
