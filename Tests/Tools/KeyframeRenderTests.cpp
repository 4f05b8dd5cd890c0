// Keyframed parameters: each frame of a clip gets the values that the
// keyframes give at its time, as the fake effect's output shows them.
#include "FakeEffectFormula.h"
#include "Tools/Support/TestMedia.h"
#include "Tools/Support/ToolTest.h"

namespace Halvane::Quorvex::Testing {
namespace {

using KeyframeRenderTest = ToolTest;

TEST_F(KeyframeRenderTest, SpeedMovesLinearlyAndGlitchTypeHoldsUntilTheNextKeyframe)
{
    for (int number = 0; number < 9; ++number) {
        TestMedia::writePicture(path("in." + std::to_string(number) + ".png"), 2, 1, 4, OIIO::TypeDesc::UINT8,
                                [](int, int, int c) { return 20.0 + c * 30; });
    }
    ASSERT_TRUE(Succeeded(runFake({"render", path("in.%d.png"), path("out.%d.png"), "--fps", "4", "--speed",
                                   "0:0.5, 2:2.5", "--glitch", "1:badtv,0:block"})));
    // At 4 fps frame n is at n/4 s. Speed runs 0.5 + t between 0 and 2 s
    // and stays at 2.5 after; at 0.75 s the first keyframe's 0.5 alone
    // would give 6/16 s of effect time, not 15/16. A keyframe of Glitch
    // Type holds from its own time.
    const struct {
        int frame;
        float speed;
        int glitchType;
    } frames[] = {{0, 0.5f, 1}, {3, 1.25f, 1}, {4, 1.5f, 2}, {8, 2.5f, 2}};
    const PF_Pixel8 in{110, 20, 50, 80};
    for (const auto& f : frames) {
        const PictureFile out = TestMedia::readPicture(path("out." + std::to_string(f.frame) + ".png"));
        const PF_Pixel8 expected =
            FakeEffectFormula::Apply(in, f.glitchType, FakeEffectFormula::TimeStep(f.frame, 4, f.speed));
        EXPECT_EQ(out.at(1, 0, 1), expected.green) << "Glitch Type at frame " << f.frame;
        EXPECT_EQ(out.at(1, 0, 2), expected.blue) << "Speed at frame " << f.frame;
    }
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
