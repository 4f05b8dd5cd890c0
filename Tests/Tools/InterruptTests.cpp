// Ctrl-C and SIGTERM in the middle of a render: the program stops after the
// frame in hand, removes its temporary files and writes nothing.
#include "Tools/Support/TestMedia.h"
#include "Tools/Support/ToolTest.h"

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <thread>

namespace Halvane::Quorvex::Testing {
namespace {

class InterruptTest : public ToolTest {
protected:
    void SetUp() override
    {
        ToolTest::SetUp();
        for (int number = 1; number <= 40; ++number) {
            TestMedia::writePicture(path("in." + std::to_string(number) + ".png"), 8, 8, 4,
                                    OIIO::TypeDesc::UINT8, [](int, int, int) { return 50.0; });
        }
        mInputs = files();
    }

    // Starts a slow render, waits until it has rendered a few frames,
    // signals it, and returns how it ended.
    ToolResult interrupt(const std::string& output, int signal)
    {
        ToolProcess::Options options;
        options.environment = {{"QUORVEX_FAKE_FRAME_DELAY_MS", "100"},
                               {"QUORVEX_FAKE_LOG", path("effect.log")}};
        ToolProcess process(
            {"render", path("in.%d.png"), path(output), "--plugin", QUORVEX_FAKE_EFFECT_PATH},
            options);
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (renderedFrames() < 3 && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        process.sendSignal(signal);
        const ToolResult result = process.wait();
        mInputs.insert("effect.log");
        return result;
    }

    int renderedFrames() const
    {
        std::ifstream log(path("effect.log"));
        int count = 0;
        for (std::string line; std::getline(log, line);) {
            count += line.rfind("SmartRender", 0) == 0;
        }
        return count;
    }

    std::set<std::string> mInputs;
};

TEST_F(InterruptTest, CtrlCDuringAVideoLeavesNoFile)
{
    const ToolResult result = interrupt("out.mp4", SIGINT);
    EXPECT_EQ(result.exitCode, 128 + SIGINT);
    EXPECT_THAT(result.err, ::testing::HasSubstr("interrupted"));
    EXPECT_LT(renderedFrames(), 40) << "the render went on to the end";
    EXPECT_EQ(files(), mInputs);
}

TEST_F(InterruptTest, TerminationDuringASequenceLeavesNoFrame)
{
    const ToolResult result = interrupt("out.%02d.png", SIGTERM);
    EXPECT_EQ(result.exitCode, 128 + SIGTERM);
    EXPECT_THAT(result.err, ::testing::HasSubstr("SIGTERM"));
    EXPECT_EQ(files(), mInputs) << "frames written before the signal must go too";
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
