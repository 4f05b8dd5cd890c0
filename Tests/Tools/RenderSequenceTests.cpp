// Image sequences through the program: each frame at its own time, numbers
// kept, and the effect driven in the order a host drives it.
#include "FakeEffectFormula.h"
#include "Tools/Support/TestMedia.h"
#include "Tools/Support/ToolTest.h"

namespace Halvane::Quorvex::Testing {
namespace {

class RenderSequenceTest : public ToolTest {
protected:
    // Frames 1..5 of in.NNNN.png, 8-bit, whose red tells the frame.
    void SetUp() override
    {
        ToolTest::SetUp();
        for (int number = 1; number <= 5; ++number) {
            TestMedia::writePicture(
                path(Name("in", number)), 3, 2, 4, OIIO::TypeDesc::UINT8,
                [&](int, int, int c) { return c == 0 ? number * 10.0 : 200.0; });
        }
    }

    static std::string Name(const char* prefix, int number)
    {
        char name[32];
        std::snprintf(name, sizeof(name), "%s.%04d.png", prefix, number);
        return name;
    }
};

TEST_F(RenderSequenceTest, EachFrameIsRenderedAtItsTimeOneCommandAfterAnother)
{
    const ToolResult result =
        runFake({"render", path("in.%04d.png"), path("out.####.png"), "--fps", "4"},
                {{"QUORVEX_FAKE_LOG", path("effect.log")}});
    ASSERT_TRUE(Succeeded(result));

    std::vector<std::string> expected{"GlobalSetup", "ParamsSetup"};
    for (int number = 1; number <= 5; ++number) {
        SCOPED_TRACE(Name("out", number));
        const PictureFile out = TestMedia::readPicture(path(Name("out", number)));
        ASSERT_EQ(out.width, 3);
        EXPECT_EQ(out.at(0, 0, 0), 255 - number * 10) << "the frame read for this number";
        EXPECT_EQ(out.at(0, 0, 2), FakeEffectFormula::TimeStep(number - 1, 4, 1.0f))
            << "the frame's time";
        const std::string time = " " + std::to_string(number - 1) + "/4";
        expected.insert(expected.end(), {"SmartPreRender" + time, "SmartRender" + time});
    }
    expected.push_back("GlobalSetdown");
    EXPECT_EQ(lines("effect.log"), expected);
}

TEST_F(RenderSequenceTest, FramesOptionPicksARangeAtItsTimesAndTimeOffsetShiftsThem)
{
    ASSERT_TRUE(Succeeded(runFake({"render", path("in.%04d.png"), path("out.%02d.png"), "--frames",
                                   "2:3", "--fps", "8", "--time-offset", "1.5"})));
    EXPECT_EQ(files(),
              (std::set<std::string>{Name("in", 1), Name("in", 2), Name("in", 3), Name("in", 4),
                                     Name("in", 5), "out.02.png", "out.03.png"}));
    // Frame 2 keeps its place after frame 1, the first on disk.
    const PictureFile first = TestMedia::readPicture(path("out.02.png"));
    EXPECT_EQ(first.at(0, 0, 0), 255 - 20);
    EXPECT_EQ(first.at(0, 0, 2), FakeEffectFormula::TimeStep(13, 8, 1.0f));
    EXPECT_EQ(TestMedia::readPicture(path("out.03.png")).at(0, 0, 2),
              FakeEffectFormula::TimeStep(14, 8, 1.0f));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
