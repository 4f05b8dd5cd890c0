// What the plug-in shows its hosts apart from frames: only the frei0r functions; a frame it cannot render
// passed through with one line on standard error while the host carries on, and tried again after pauses
// that double up to the longest and start afresh after a success; and, as ffmpeg 5.1 hands frei0r plug-ins
// frames whose width is not a multiple of 16 as if their rows were packed (damaged rows for every plug-in),
// the README's chain (pad to a multiple of 64 before the plug-in, crop after) gives ours whole frames.
#include "Frei0r/Frei0rHostTest.h"
#include "Tools/Support/TestMedia.h"
#include "RetrySchedule.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <vector>

namespace Halvane::Quorvex::Testing {
namespace {

using Frei0rPluginTest = Frei0rHostTest;

TEST_F(Frei0rPluginTest, ExportsTheFrei0rFunctionsAndNothingElse)
{
    const ToolResult listed = runHost("nm", {"-D", "--defined-only", QUORVEX_FREI0R_PLUGIN});
    ASSERT_TRUE(Succeeded(listed));
    std::istringstream lines(listed.out);
    std::set<std::string> names;
    for (std::string address, kind, name; lines >> address >> kind >> name;) {
        names.insert(name);
    }
    EXPECT_EQ(names, (std::set<std::string>{"f0r_construct", "f0r_deinit", "f0r_destruct",
                                            "f0r_get_param_info", "f0r_get_param_value",
                                            "f0r_get_plugin_info", "f0r_init",
                                            "f0r_set_param_value", "f0r_update", "f0r_update2"}));
}

TEST_F(Frei0rPluginTest, AFrameBeyondTheGLLimitsPassesThroughAndTheHostGoesOn)
{
    // Wider than any GL_MAX_TEXTURE_SIZE of Mesa (16384), a multiple of 64.
    constexpr int kWidth = 16448;
    constexpr int kHeight = 4;
    const std::string size = std::to_string(kWidth) + "x" + std::to_string(kHeight);
    const ToolResult result = runHost(
        "ffmpeg", {"-nostdin", "-v", "error", "-f", "lavfi", "-i",
                   "color=c=0x336699:size=" + size + ":rate=25:duration=0.12,format=rgba", "-vf",
                   "frei0r=quorvex:0.5|0.5", "-f", "rawvideo", "-pix_fmt", "rgba", path("out.rgba")});
    ASSERT_TRUE(Succeeded(result));

    const auto frames = readRawFrames(path("out.rgba"), kWidth, kHeight);
    ASSERT_EQ(frames.size(), 3u);
    std::vector<std::uint8_t> input;
    for (int pixel = 0; pixel < kWidth * kHeight; ++pixel) {
        input.insert(input.end(), {0x33, 0x66, 0x99, 0xFF});
    }
    EXPECT_TRUE(FramesAgree(frames, {input, input, input}, kWidth, 0));

    // One line for three frames, the effect's own reason folded into it.
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_EQ(result.err.rfind("quorvex frei0r: passing " + size + " frames through unchanged: ", 0),
              0u)
        << result.err;
    EXPECT_NE(result.err.find("largest texture"), std::string::npos) << result.err;
}

// Frames of a size that failed for want of memory pass through, and the
// size is tried again after 1, 2, 4... frames: with three failures, frames 0,
// 2 and 5 are tried and fail, and from frame 10 on every frame is rendered.
TEST_F(Frei0rPluginTest, ASizeThatFailedIsTriedAgainAfterAPauseThatGrows)
{
#ifdef QUORVEX_SANITIZER_RUNTIME
    GTEST_SKIP() << "AddressSanitizer's allocator comes first in a sanitized host; no other can be preloaded";
#endif
    constexpr int kWidth = 192;  // a multiple of 64, see Frei0rHostTests
    constexpr int kHeight = 37;
    const auto ffmpeg = [this](const std::string& filter, const std::string& out) {
        return std::vector<std::string>{"-nostdin", "-v", "error", "-f", "lavfi", "-i",
                                        "testsrc2=size=192x37:rate=25,trim=end_frame=16,format=rgba", "-vf",
                                        filter, "-f", "rawvideo", "-pix_fmt", "rgba", path(out)};
    };
    ASSERT_TRUE(Succeeded(runHost("ffmpeg", ffmpeg("null", "input.rgba"))));
    ASSERT_TRUE(Succeeded(runHost("ffmpeg", ffmpeg("frei0r=quorvex:0|0.5", "rendered.rgba"))));
    // The plug-in's pictures of the frame's size are the only arrays of that many bytes.
    const ToolResult result =
        runHost("ffmpeg", ffmpeg("frei0r=quorvex:0|0.5", "out.rgba"),
                {{"LD_PRELOAD", QUORVEX_ARRAY_ALLOCATION_FAILURE},
                 {"QUORVEX_FAILING_ARRAY_BYTES", std::to_string(kWidth * kHeight * 4)},
                 {"QUORVEX_FAILING_ARRAY_TIMES", "3"}});
    ASSERT_TRUE(Succeeded(result));

    const RawFrames input = readRawFrames(path("input.rgba"), kWidth, kHeight);
    const RawFrames rendered = readRawFrames(path("rendered.rgba"), kWidth, kHeight);
    const RawFrames out = readRawFrames(path("out.rgba"), kWidth, kHeight);
    ASSERT_EQ(input.size(), 16u);
    ASSERT_NE(rendered, input) << "the effect changed nothing; the test would show nothing";
    RawFrames expected(input.begin(), input.begin() + 10);
    expected.insert(expected.end(), rendered.begin() + 10, rendered.end());
    EXPECT_TRUE(FramesAgree(out, expected, kWidth, 0));
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_EQ(result.err, "quorvex frei0r: passing 192x37 frames through unchanged: out of memory\n");
}

constexpr int kWidth = 180;  // 11.25 times 16
constexpr int kHeight = 8;
constexpr int kFrames = 3;

TEST_F(Frei0rPluginTest, PaddingToAMultipleOf64BeforeThePlugInAndCroppingAfterGivesWholeFrames)
{
    TestMedia::Clip clip{kWidth, kHeight, kFrames, 25, 1, false};
    TestMedia::writeClip(path("clip.mkv"), clip, [](int frame, int x, int y, int c) {
        return static_cast<std::uint8_t>(c == 3 ? 255 : (x * (c + 1) * 5 + y * 20 + frame * 30) % 256);
    });
    const auto filtered = [&](const std::string& filter, const std::string& source = "clip.mkv") {
        const ToolResult result = runHost("ffmpeg", {"-nostdin", "-v", "error", "-y", "-i", path(source), "-vf",
                                                     filter, "-f", "rawvideo", "-pix_fmt", "rgba", path("out.rgba")});
        EXPECT_TRUE(Succeeded(result));
        return readRawFrames(path("out.rgba"), kWidth, kHeight);
    };

    // Our plug-in through the chain draws what quorvex render draws of the padded clip.
    TestMedia::runCommand(mFolder, "ffmpeg -v error -i clip.mkv -vf 'pad=ceil(iw/64)*64:ih' -c:v ffv1 padded.mkv");
    ASSERT_TRUE(Succeeded(run({"render", path("padded.mkv"), path("reference.mkv"), "--glitch", "badtv", "--speed",
                               "1.5", "--quiet"})));
    const RawFrames reference = filtered("crop=180:ih:0:0", "reference.mkv");
    EXPECT_TRUE(FramesAgree(filtered("pad=ceil(iw/64)*64:ih,frei0r=quorvex:0.5|0.5,crop=180:ih:0:0"), reference,
                            kWidth, 1));
    // The fault is ffmpeg's, and it is still there: without the chain our plug-in gets damaged rows too.
    EXPECT_FALSE(FramesAgree(filtered("frei0r=quorvex:0.5|0.5"), reference, kWidth, 1));
}

using Frei0r::RetrySchedule;

// The frames passed through between tries while every try fails.
std::vector<unsigned> PausesOfFailures(RetrySchedule& schedule, int failures)
{
    std::vector<unsigned> pauses;
    for (int failure = 0; failure < failures; ++failure) {
        unsigned skipped = 0;
        while (!schedule.due()) {
            ++skipped;
        }
        pauses.push_back(skipped);
        schedule.failed();
    }
    return pauses;
}

TEST(RetryScheduleTest, PausesDoubleUpToTheLongestAndStartAgainAfterASuccess)
{
    RetrySchedule schedule;
    const std::vector<unsigned> pauses = PausesOfFailures(schedule, 12);
    EXPECT_EQ(pauses, (std::vector<unsigned>{0, 1, 2, 4, 8, 16, 32, 64, 128, 256, 256, 256}));
    EXPECT_EQ(RetrySchedule::kLongestPause, 256u);

    while (!schedule.due()) {
    }
    schedule.succeeded();
    EXPECT_TRUE(schedule.due());
    EXPECT_EQ(PausesOfFailures(schedule, 3), (std::vector<unsigned>{0, 1, 2}));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
