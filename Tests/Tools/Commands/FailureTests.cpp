// Bad input ends with exit code 2 (usage) or 1 (runtime), one line on standard error naming the culprit,
// and no file left behind; so do a signal at any moment (with 128 + the signal) and a closed pipe.
#include "Tools/Support/ToolTest.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <sys/stat.h>
#include <thread>
#include <tuple>
#include <unistd.h>

namespace Halvane::Quorvex::Testing {
namespace {

using ::testing::HasSubstr;

class FailureTest : public ToolTest {
protected:
    void SetUp() override
    {
        ToolTest::SetUp();
        TestMedia::writePicture(path("in.png"), 20, 10, 4, OIIO::TypeDesc::UINT8,
                                [](int x, int, int) { return x * 10.0; });
    }

    // Renders in.png to out.png with these options.
    std::vector<std::string> with(const std::vector<std::string>& options) const
    {
        std::vector<std::string> arguments{"render", path("in.png"), path("out.png")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return arguments;
    }

    // How many times the fake effect logged `command`.
    int logged(const std::string& command) const
    {
        std::istringstream log(contents("effect.log"));
        return static_cast<int>(std::count(std::istream_iterator<std::string>(log), {}, command));
    }

    // Starts `quorvex ARGUMENTS --plugin <fake effect>`, logging to effect.log,
    // and waits until it logged `count` lines of `command` (at most 30 s).
    std::unique_ptr<ToolProcess> startFake(std::vector<std::string> arguments,
                                           std::map<std::string, std::string> environment,
                                           const std::string& command, int count)
    {
        std::remove(path("effect.log").c_str());
        arguments.insert(arguments.end(), {"--plugin", QUORVEX_FAKE_EFFECT_PATH});
        environment["QUORVEX_FAKE_LOG"] = path("effect.log");
        auto process = std::make_unique<ToolProcess>(QUORVEX_TOOL_PATH, arguments, environment, false);
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (logged(command) < count && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return process;
    }

    // Signals the run and checks that it ends soon with 128 + the signal and
    // what standard error should hold, leaving only the files that were there before.
    void expectStopped(ToolProcess& process, int signal, const std::string& name)
    {
        process.sendSignal(signal);
        ASSERT_TRUE(process.endsWithin(std::chrono::seconds(10))) << "the signal was swallowed";
        const ToolResult result = process.wait();
        EXPECT_EQ(result.exitCode, 128 + signal) << result.err;
        EXPECT_THAT(result.err, HasSubstr(name));
        std::set<std::string> after = files();
        after.erase("effect.log");
        EXPECT_EQ(after, mInputs);
    }

    std::set<std::string> mInputs;  // what a signalled run must leave
};

TEST_F(FailureTest, InputsThatCannotBeReadAndOptionValuesThatMakeNoSense)
{
    expectFailure({"render", path("missing.png"), path("out.png")}, 1, {"missing.png", "no such file"});
    expectFailure({"render", mFolder, path("out.png")}, 1, {mFolder, "folder"});
    std::ofstream(path("notes.png")) << "these are notes, not a picture\n";
    expectFailure({"render", path("notes.png"), path("out.png")}, 1, {"notes.png", "not a picture or video"});
    // A header claiming terabytes is refused before any pixel buffer is made.
    std::ofstream(path("huge.ppm")) << "P6\n1000000 1000000\n255\n" << std::string(4096, '\0');
    expectFailure({"render", path("huge.ppm"), path("out.png")}, 1, {"huge.ppm", "1000000x1000000"});
    if (::geteuid() != 0) {
        ::chmod(path("in.png").c_str(), 0);
        expectFailure(with({}), 1, {"in.png", "Permission denied"});
    }
    ::chmod(path("in.png").c_str(), 0644);

    expectFailure({"render", path("in.png"), path("out.xyz")}, 2, {"out.xyz", "'.xyz'"});
    expectFailure(with({"--glitch", "wobble"}), 2, {"--glitch", "'wobble'"});
    expectFailure(with({"--speed", "0:1,2"}), 2, {"--speed", "'2'", "SECONDS:VALUE"});
    expectFailure(with({"--speed", "3.01"}), 2, {"--speed: 3.01 is outside the valid range of Speed, 0 to 3"});
    expectFailure(with({"--speed", "0:1,1:-1"}), 2, {"-1 is outside"});
    expectFailure(with({"--time", "soon"}), 2, {"--time", "'soon'"});
    for (const char* seed : {"1000", "-1", "2.5", "lucky"}) {
        expectFailure(with({"--seed", seed}), 2, {"--seed: '" + std::string(seed) + "'", "0 to 999"});
    }
    // Every option takes its value through one check.
    expectFailure(with({"--speed", ""}), 2, {"--speed", "no value"});
    expectFailure(with({"--time-offset", "1"}), 2, {"--time-offset", "single picture"});
    expectFailure(with({"--frames", "1:10"}), 2, {"--frames", "in.png"});
    expectFailure(with({"--codec", "libx264"}), 2, {"--codec", "out.png"});
    expectFailure({"render", path("in.png"), path("out.mp4"), "--codec", "nosuchcodec"}, 2, {"'nosuchcodec'"});
    expectFailure({"render", path("in.png"), path("out.mp4"), "--codec", "aac"}, 2, {"'aac'", "not a video"});
    expectFailure({"render", path("in.png")}, 2, {"output"});
    expectFailure({"spin"}, 2, {"'spin'"});
    expectFailure(with({"--bogus"}), 2, {"'--bogus'"});
}

TEST_F(FailureTest, OptionsAreBlamedAsTypedAndDashedNamesAreTaughtTheirWay)
{
    std::filesystem::copy_file(path("in.png"), path("-dash.png"));
    expectFailure({"render", path("in.png"), "-dash.png"}, 2, {"unknown option '-dash.png'", "-- INPUT OUTPUT"});
    EXPECT_THAT(run({"render", "--help"}).out, HasSubstr("render [OPTIONS] [--] "));
    TestMedia::runCommand(mFolder, std::string("'") + QUORVEX_TOOL_PATH + "' render --plugin '" +
                                       QUORVEX_FAKE_EFFECT_PATH + "' -- -dash.png -out.png");
    EXPECT_TRUE(std::filesystem::remove(path("-out.png")));

    // Too slow a rate is a usage error like any other, and no rate applies to a video.
    expectFailure(with({"--fps", "0.001"}), 2, {"--fps: '0.001'"});
    expectFailure(with({"--fps", "1/1000000"}), 2, {"--fps: '1/1000000'"});
    TestMedia::writeClip(path("clip.mkv"), TestMedia::Clip{32, 24, 3, 12, 1, false},
                         [](int, int, int, int) { return 100; });
    expectFailure({"render", path("clip.mkv"), path("out.mkv"), "--fps", "30"}, 2,
                  {"--fps does not apply to video input", "clip.mkv", "12 fps"});
    // A range beyond the host's time names --frames, unless the offset alone puts it there.
    expectFailure({"render", path("clip.mkv"), path("out.mkv"), "--frames", "0:99999999999"}, 2,
                  {"--frames: 0:99999999999"});
    expectFailure({"render", path("clip.mkv"), path("out.mkv"), "--time-offset", "178956970"}, 2,
                  {"--time-offset: 178956970"});
    // Audio alone is no video, whichever container holds it.
    for (const char* name : {"tone.wav", "tone.mp4"}) {
        TestMedia::runCommand(mFolder, std::string("ffmpeg -v error -f lavfi -i sine=duration=0.2 ") + name);
        expectFailure({"render", path(name), path("out.mkv")}, 1, {name, "holds no video stream"});
    }
}

TEST_F(FailureTest, SequencesWithGapsAndClipsIntoOnePicture)
{
    for (const char* name : {"f.1.png", "f.2.png", "f.4.png"}) {
        TestMedia::writePicture(path(name), 2, 2, 3, OIIO::TypeDesc::UINT8, [](int, int, int) { return 9.0; });
    }
    expectFailure({"render", path("f.%d.png"), path("out.%d.png")}, 1, {"f.3.png"});
    expectFailure({"render", path("g.%d.png"), path("out.%d.png")}, 1, {"g.%d.png", "no files match"});
    expectFailure({"render", path("f.%d.png"), path("out.png"), "--frames", "1:2"}, 2, {"out.png", "2 frames"});
    // Frame 2 lies past the host's 32-bit time at 24 fps.
    expectFailure({"render", path("f.%d.png"), path("out.%d.png"), "--frames", "1:2",
                   "--time-offset", "89478485.29"},
                  2, {"--time-offset", "frame 2"}, {{"QUORVEX_FAKE_RENDER_STATUS", "77"}});
}

TEST_F(FailureTest, OutputsThatCannotBeWrittenAndModulesThatDoNotLoadOrFail)
{
    expectFailure({"render", path("in.png"), path("no/such/folder/out.png")}, 1,
                  {"no/such/folder/out.png", "No such file or directory"});
    expectFailure({"render", path("in.png"), path("no/such/folder/out.mp4")}, 1, {"no/such/folder/out.mp4"});
    // A picture's output name is taken as typed, pattern or not.
    expectFailure({"render", path("in.png"), path("no/out.%04d.png")}, 1, {"no/out.%04d.png"});
    // Encoders and containers that refuse: the output, the setting and the library's reason.
    expectFailure({"render", path("in.png"), path("out.mov"), "--codec", "dnxhd"}, 1,
                  {"out.mov", "dnxhd", "DNxHD"});
    expectFailure({"render", path("in.png"), path("out.gxf")}, 1, {"out.gxf", "gxf muxer only accepts"});
    expectFailure({"render", path("in.png"), path("out.mp3")}, 2, {"'.mp3'"});
    if (::geteuid() != 0) {
        ::mkdir(path("locked").c_str(), 0555);
        expectFailure({"render", path("in.png"), path("locked/out.png")}, 1,
                      {"locked/out.png", "Permission denied"});
    }
    expectFailure(with({"--plugin", path("gone.so")}), 1, {"gone.so", "cannot load"});
    expectFailure(with({"--plugin", path("in.png")}), 1, {"in.png"});
    expectFailure(with({}), 1, {"GlobalSetup", "out of memory"}, {{"QUORVEX_FAKE_SETUP_STATUS", "4"}});
    // A status from rendering is named in words where it has a name.
    for (const auto& [status, words] : std::map<std::string, std::vector<std::string>>{
             {"4", {"in.png", "out of memory (error 4)"}}, {"13", {"suite", "(error 13)"}},
             {"516", {"bad callback parameter (error 516)"}}, {"77", {"error 77"}}}) {
        expectFailure(with({}), 1, words, {{"QUORVEX_FAKE_RENDER_STATUS", status}});
    }
    // The module says what the limit is; the program names the frame and its size.
    expectFailure(with({}), 1, {"larger than the GL limits", "20x10", "in.png"},
                  {{"QUORVEX_FAKE_MAX_PIXELS", "199"}}, 2);
}

TEST_F(FailureTest, AFailureHalfwayOrAClosedPipeOnStandardErrorLeavesNoPartOfTheOutput)
{
    TestMedia::writeClip(path("clip.mkv"), TestMedia::Clip{}, [](int, int, int, int) { return 100; });
    const std::set<std::string> inputs = files();
    const std::map<std::string, std::string> failFourth{{"QUORVEX_FAKE_RENDER_STATUS", "516"},
                                                        {"QUORVEX_FAKE_FAIL_FROM", "4"}};
    // Quiet keeps the note about alpha away, not the error.
    expectFailure({"render", path("clip.mkv"), path("out.mp4"), "--quiet"}, 1,
                  {"frame 4", "clip.mkv"}, failFourth);
    expectFailure({"render", path("clip.mkv"), path("out.%02d.png")}, 1, {"frame 4"}, failFourth);
    expectFailure({"render", path("clip.mkv"), path("out.mkv"), "--frames", "4:6"}, 1,
                  {"clip.mkv' has 6 frames", "4:6"});
    // A closed pipe on standard error is an error, not a death by SIGPIPE; the note that MP4 drops alpha
    // meets it while the output is reserved.
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    ::close(pipe[0]);
    ToolProcess process(QUORVEX_TOOL_PATH,
                        {"render", path("clip.mkv"), path("out.mp4"), "--plugin", QUORVEX_FAKE_EFFECT_PATH},
                        {{"QUORVEX_FAKE_FRAME_DELAY_MS", "200"}}, false, pipe[1]);
    ::close(pipe[1]);
    ASSERT_TRUE(process.endsWithin(std::chrono::seconds(10)));
    EXPECT_EQ(process.wait().exitCode, 1);
    EXPECT_EQ(files(), inputs);
}

TEST_F(FailureTest, ASignalAtAnyMomentLeavesNoFile)
{
    writeSequence("in.%d.png", 1, 40, 8, 8, 4, [](int, int, int, int) { return 50.0; });
    TestMedia::writeClip(path("clip.mkv"), TestMedia::Clip{}, [](int, int, int, int) { return 100; });
    ASSERT_EQ(::mkfifo(path("fifo.ts").c_str(), 0600), 0);
    mInputs = files();
    // Signalled while frames render (100 ms each) or in GlobalSetup (3 s).
    const std::tuple<const char*, const char*, bool, int, const char*> cases[] = {
        {"in.%d.png", "out.mp4", false, SIGINT, "interrupted"},
        {"in.%d.png", "out.%02d.png", false, SIGTERM, "SIGTERM"},
        {"clip.mkv", "out.mkv", true, SIGINT, "interrupted"}};
    for (const auto& [input, output, inSetup, signal, name] : cases) {
        SCOPED_TRACE(output);
        const auto process = startFake(
            {"render", path(input), path(output)},
            {{inSetup ? "QUORVEX_FAKE_SETUP_DELAY_MS" : "QUORVEX_FAKE_FRAME_DELAY_MS", inSetup ? "3000" : "100"}},
            inSetup ? "GlobalSetup" : "SmartRender", inSetup ? 1 : 3);
        expectStopped(*process, signal, name);
        EXPECT_LT(logged("SmartRender"), 40) << "the render went on to the end";
    }
    {
        SCOPED_TRACE("blocked reading an input whose writer sends nothing");
        ToolProcess process(QUORVEX_TOOL_PATH, {"render", path("fifo.ts"), path("out.mkv")}, {}, false);
        // A writer gets in once the program has the FIFO open; the program then waits for its first bytes.
        int writer = -1;
        for (int tries = 0; writer < 0 && tries < 1500; ++tries) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            writer = ::open(path("fifo.ts").c_str(), O_WRONLY | O_NONBLOCK);
        }
        ASSERT_GE(writer, 0);
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        expectStopped(process, SIGTERM, "");
        ::close(writer);
    }
    SCOPED_TRACE("a demo with its first clip done, which must go, and the folder made for it");
    expectStopped(*startFake({"demo", path("demo")}, {{"QUORVEX_FAKE_FRAME_DELAY_MS", "5"}}, "SmartRender", 80),
                  SIGTERM, "");
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
