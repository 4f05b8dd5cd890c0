// Ctrl-C and SIGTERM at any moment of a render or a demo, and a closed pipe
// on standard error: the program stops promptly (after the frame in hand),
// removes its temporary files and writes nothing.
#include "Tools/Support/TestMedia.h"
#include "Tools/Support/ToolTest.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace Halvane::Quorvex::Testing {
namespace {

class InterruptTest : public ToolTest {
protected:
    int logged(const std::string& command) const
    {
        const std::vector<std::string> log = lines("effect.log");
        return static_cast<int>(std::count_if(log.begin(), log.end(), [&](const std::string& line) {
            return line.rfind(command, 0) == 0;
        }));
    }
    int renderedFrames() const { return logged("SmartRender"); }

    // Waits until the effect logged `count` lines of `command` (at most 30 s).
    void waitForLogged(const std::string& command, int count) const
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (logged(command) < count && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }

    // Signals the run and checks that it ends soon with 128 + the signal,
    // leaving only the files that were there before.
    void expectStopped(ToolProcess& process, int signal, const std::set<std::string>& before)
    {
        process.sendSignal(signal);
        ASSERT_TRUE(process.endsWithin(std::chrono::seconds(10))) << "the signal was swallowed";
        const ToolResult result = process.wait();
        EXPECT_EQ(result.exitCode, 128 + signal) << result.err;
        std::set<std::string> after = files();
        after.erase("effect.log");
        EXPECT_EQ(after, before);
    }

    std::map<std::string, std::string> logTo(std::map<std::string, std::string> environment) const
    {
        environment["QUORVEX_FAKE_LOG"] = path("effect.log");
        return environment;
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
        waitForLogged("SmartRender", 3);
        process.sendSignal(c.signal);
        const ToolResult result = process.wait();
        EXPECT_EQ(result.exitCode, 128 + c.signal);
        EXPECT_THAT(result.err, ::testing::HasSubstr(c.name));
        EXPECT_LT(renderedFrames(), 40) << "the render went on to the end";
        EXPECT_EQ(files(), inputs) << "frames written before the signal must go too";
    }
}

TEST_F(InterruptTest, ASignalBeforeTheFirstFrameOrBetweenDemoClipsLeavesNoFile)
{
    TestMedia::writeClip(path("clip.mkv"), TestMedia::Clip{},
                         [](int, int, int, int) { return 100; });
    ASSERT_EQ(::mkfifo(path("fifo.png").c_str(), 0600), 0);
    const std::set<std::string> inputs = files();
    {
        SCOPED_TRACE("blocked opening an input that no one writes");
        ToolProcess process({"render", path("fifo.png"), path("out.png")}, {}, false);
        // A writer gets in once the program reads; it then opens the file
        // anew and waits there for the next.
        int writer = -1;
        for (int tries = 0; writer < 0 && tries < 1500; ++tries) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            writer = ::open(path("fifo.png").c_str(), O_WRONLY | O_NONBLOCK);
        }
        ASSERT_GE(writer, 0);
        ::close(writer);
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        expectStopped(process, SIGTERM, inputs);
    }
    {
        SCOPED_TRACE("setting up, the output reserved");
        ToolProcess process(
            {"render", path("clip.mkv"), path("out.mkv"), "--plugin", QUORVEX_FAKE_EFFECT_PATH},
            logTo({{"QUORVEX_FAKE_SETUP_DELAY_MS", "3000"}}), false);
        waitForLogged("GlobalSetup", 1);
        expectStopped(process, SIGINT, inputs);
    }
    {
        SCOPED_TRACE("a demo with its first clip done");
        std::remove(path("effect.log").c_str());
        ToolProcess process({"demo", path("demo"), "--plugin", QUORVEX_FAKE_EFFECT_PATH},
                            logTo({{"QUORVEX_FAKE_FRAME_DELAY_MS", "5"}}), false);
        waitForLogged("SmartRender", 80);
        process.sendSignal(SIGTERM);
        ASSERT_TRUE(process.endsWithin(std::chrono::seconds(10)));
        EXPECT_EQ(process.wait().exitCode, 128 + SIGTERM);
        EXPECT_TRUE(std::filesystem::is_empty(path("demo"))) << "the finished clip must go too";
    }
}

TEST_F(InterruptTest, AClosedPipeOnStandardErrorIsAnErrorNotADeath)
{
    TestMedia::writeClip(path("clip.mkv"), TestMedia::Clip{},
                         [](int, int, int, int) { return 100; });
    const std::set<std::string> inputs = files();
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    ::close(pipe[0]);
    // The note that MP4 drops alpha meets the closed pipe while the output
    // is reserved.
    ToolProcess process(
        {"render", path("clip.mkv"), path("out.mp4"), "--plugin", QUORVEX_FAKE_EFFECT_PATH},
        {{"QUORVEX_FAKE_FRAME_DELAY_MS", "200"}}, false, pipe[1]);
    ::close(pipe[1]);
    ASSERT_TRUE(process.endsWithin(std::chrono::seconds(10)));
    EXPECT_EQ(process.wait().exitCode, 1);
    EXPECT_EQ(files(), inputs);
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
