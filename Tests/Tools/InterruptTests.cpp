// Ctrl-C and SIGTERM in the middle of a render: the program stops after the
// frame in hand, removes its temporary files and writes nothing.
#include "Tools/Support/TestMedia.h"
#include "Tools/Support/ToolTest.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <thread>

namespace Halvane::Quorvex::Testing {
namespace {

class InterruptTest : public ToolTest {
protected:
    int renderedFrames() const
    {
        const std::vector<std::string> log = lines("effect.log");
        return static_cast<int>(std::count_if(log.begin(), log.end(), [](const std::string& line) {
            return line.rfind("SmartRender", 0) == 0;
        }));
    }
};

TEST_F(InterruptTest, ASignalDuringAVideoOrASequenceLeavesNoFile)
{
    for (int number = 1; number <= 40; ++number) {
        TestMedia::writePicture(path("in." + std::to_string(number) + ".png"), 8, 8, 4,
                                OIIO::TypeDesc::UINT8, [](int, int, int) { return 50.0; });
    }
    std::set<std::string> inputs = files();
    inputs.insert("effect.log");
    const struct {
        const char* output;
        int signal;
        const char* name;
    } cases[] = {{"out.mp4", SIGINT, "interrupted"}, {"out.%02d.png", SIGTERM, "SIGTERM"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.output);
        std::remove(path("effect.log").c_str());
        // A slow render, signalled once it has rendered a few frames.
        ToolProcess process(
            {"render", path("in.%d.png"), path(c.output), "--plugin", QUORVEX_FAKE_EFFECT_PATH},
            {{"QUORVEX_FAKE_FRAME_DELAY_MS", "100"}, {"QUORVEX_FAKE_LOG", path("effect.log")}},
            false);
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (renderedFrames() < 3 && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        process.sendSignal(c.signal);
        const ToolResult result = process.wait();
        EXPECT_EQ(result.exitCode, 128 + c.signal);
        EXPECT_THAT(result.err, ::testing::HasSubstr(c.name));
        EXPECT_LT(renderedFrames(), 40) << "the render went on to the end";
        EXPECT_EQ(files(), inputs) << "frames written before the signal must go too";
    }
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
