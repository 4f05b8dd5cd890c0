// Image sequences through the program: each frame at its own time, numbers
// kept, and the effect driven in the order a host drives it.
#include "FakeEffectFormula.h"
#include "Tools/Support/TestMedia.h"
#include "Tools/Support/ToolTest.h"

#include <fstream>

namespace Halvane::Quorvex::Testing {
namespace {

class RenderSequenceTest : public ToolTest {
protected:
    // Frames FIRST..LAST of in.NNNN.png, 8-bit, whose red tells the frame.
    void writeSequence(int first, int last)
    {
        for (int number = first; number <= last; ++number) {
            char name[32];
            std::snprintf(name, sizeof(name), "in.%04d.png", number);
            TestMedia::writePicture(
                path(name), 3, 2, 4, OIIO::TypeDesc::UINT8,
                [&](int, int, int c) { return c == 0 ? number * 10.0 : 200.0; });
        }
    }

    std::vector<std::string> logLines() const
    {
        std::vector<std::string> lines;
        std::ifstream log(path("effect.log"));
        for (std::string line; std::getline(log, line);) {
            lines.push_back(line);
        }
        return lines;
    }
};

TEST_F(RenderSequenceTest, EachFrameIsRenderedAtItsTimeOneCommandAfterAnother)
{
    writeSequence(3, 6);
    const ToolResult result =
        runFake({"render", path("in.%04d.png"), path("out.####.png"), "--fps", "4"},
                {{"QUORVEX_FAKE_LOG", path("effect.log")}});
    ASSERT_TRUE(Succeeded(result));

    for (int number = 3; number <= 6; ++number) {
        char name[32];
        std::snprintf(name, sizeof(name), "out.%04d.png", number);
        SCOPED_TRACE(name);
        const PictureFile out = TestMedia::readPicture(path(name));
        ASSERT_EQ(out.width, 3);
        const int index = number - 3;
        EXPECT_EQ(out.at(0, 0, 0), 255 - number * 10) << "the frame read for this number";
        EXPECT_EQ(out.at(0, 0, 2), FakeEffectFormula::TimeStep(index, 4, 1.0f))
            << "the frame's time";
    }
    const std::vector<std::string> expected = {
        "GlobalSetup",        "ParamsSetup",     "SmartPreRender 0/4", "SmartRender 0/4",
        "SmartPreRender 1/4", "SmartRender 1/4", "SmartPreRender 2/4", "SmartRender 2/4",
        "SmartPreRender 3/4", "SmartRender 3/4", "GlobalSetdown"};
    EXPECT_EQ(logLines(), expected);
}

TEST_F(RenderSequenceTest, FramesOptionPicksARangeAndTimeOffsetShiftsItsTimes)
{
    writeSequence(1, 5);
    ASSERT_TRUE(Succeeded(runFake({"render", path("in.%04d.png"), path("out.%02d.png"), "--frames",
                                   "2:3", "--fps", "8", "--time-offset", "1.5"})));

    EXPECT_EQ(files(),
              (std::set<std::string>{"in.0001.png", "in.0002.png", "in.0003.png", "in.0004.png",
                                     "in.0005.png", "out.02.png", "out.03.png"}));
    const PictureFile first = TestMedia::readPicture(path("out.02.png"));
    const PictureFile second = TestMedia::readPicture(path("out.03.png"));
    EXPECT_EQ(first.at(0, 0, 0), 255 - 20);
    EXPECT_EQ(first.at(0, 0, 2), FakeEffectFormula::TimeStep(12, 8, 1.0f));
    EXPECT_EQ(second.at(0, 0, 2), FakeEffectFormula::TimeStep(13, 8, 1.0f));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
