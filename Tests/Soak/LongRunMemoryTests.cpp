// Nothing may grow with the number of frames: the frei0r plug-in inside
// ffmpeg and the quorvex program each render tens of thousands of small
// frames, their heap is sampled throughout, and the slope of a line through
// the samples must be zero within its 99.9% interval. A leak of a byte a
// frame shows as a slope many times its interval; no allowance is given.
// QUORVEX_SOAK_FRAMES sets the frames of each run and adds quorvex's run
// (scripts/soak.sh runs 200,000).
#include "MemoryTrend.h"

#include "Tools/Support/ToolTest.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace Halvane::Quorvex::Testing {
namespace {

// Small frames, so that a run is long in frames and short in time. A width
// of a multiple of 64: ffmpeg 5.1 loses the time of other frames.
constexpr int kWidth = 64;
constexpr int kHeight = 32;
constexpr int kFramesPerSecond = 25;
constexpr long kDefaultFrames = 30000;
// A run whose interval reaches this high could not tell a leak of this much
// from none; it fails as unable to measure (the intervals are about 0.5).
constexpr double kResolvedBytesPerFrame = 8.0;

long Frames()
{
    const char* frames = std::getenv("QUORVEX_SOAK_FRAMES");
    return frames && std::atol(frames) > 0 ? std::atol(frames) : kDefaultFrames;
}

// ffmpeg's generated clip of `frames` frames.
std::string Clip(long frames)
{
    return "testsrc2=s=" + std::to_string(kWidth) + "x" + std::to_string(kHeight) + ":r=" +
           std::to_string(kFramesPerSecond) + ",trim=end_frame=" + std::to_string(frames);
}

class LongRunMemoryTest : public ToolTest {
protected:
    // The environment that makes a host sample its heap into heap.txt.
    std::map<std::string, std::string> sampled() const
    {
        return {{"LD_PRELOAD", QUORVEX_HEAP_SAMPLER},
                {"QUORVEX_HEAP_SAMPLES", path("heap.txt")},
                {"FREI0R_PATH", QUORVEX_FREI0R_PATH}};
    }

    // The slope per frame of the samples of a run of `frames`, printed;
    // fails the test when the heap grew beyond the interval, or when the
    // interval is too wide to see a leak.
    void expectFlat(const std::string& host, long frames)
    {
        const std::vector<MemoryTrend::Sample> samples = MemoryTrend::read(path("heap.txt"));
        ASSERT_GT(samples.size(), MemoryTrend::kBlocks * 4) << host << ": too few samples";
        const MemoryTrend trend(samples);
        // Frames are rendered at an even pace after the first ones, so a
        // second of the run stands for the run's mean number of frames.
        const double framesPerSecond = static_cast<double>(frames) / samples.back().seconds;
        const auto perFrame = [framesPerSecond](double bytesPerSecond) { return bytesPerSecond / framesPerSecond; };
        const MemoryTrend::Slope heap = trend.heap();
        const MemoryTrend::Slope resident = trend.resident();
        char line[400];
        std::snprintf(line, sizeof line,
                      "%s: %ld frames, %zu samples, %.0f frames/s; fitted over %.1f s: heap %+.3f bytes/frame "
                      "(99.9%%: %+.3f to %+.3f), resident %+.3f bytes/frame (%+.3f to %+.3f)\n",
                      host.c_str(), frames, samples.size(), framesPerSecond, trend.seconds(),
                      perFrame(heap.bytesPerSecond), perFrame(heap.lowest()), perFrame(heap.highest()),
                      perFrame(resident.bytesPerSecond), perFrame(resident.lowest()), perFrame(resident.highest()));
        std::cout << line;
        EXPECT_LE(heap.lowest(), 0.0) << host << ": the heap grows with the frames: " << line;
        EXPECT_LT(perFrame(heap.highest()), kResolvedBytesPerFrame)
            << host << ": too unsteady to see a leak of " << kResolvedBytesPerFrame << " bytes a frame: " << line;
    }
};

TEST_F(LongRunMemoryTest, TheFrei0rPluginInFfmpegKeepsItsHeapFlat)
{
    const long frames = Frames();
    const ToolResult result = ToolProcess("ffmpeg",
                                          {"-nostdin", "-v", "error", "-f", "lavfi", "-i", Clip(frames), "-vf",
                                           "frei0r=quorvex:1|0.5", "-f", "null", "-"},
                                          sampled(), false)
                                  .wait();
    ASSERT_TRUE(Succeeded(result));
    expectFlat("ffmpeg with the frei0r plug-in", frames);
}

// Only with QUORVEX_SOAK_FRAMES (scripts/soak.sh): quorvex's heap still
// grows by a fraction of a byte a frame (part of it inside FFmpeg's codecs,
// which grow in ffmpeg alone), and the frames its threads hold between them
// move its heap by up to a byte a frame over 30,000 frames, either way.
TEST_F(LongRunMemoryTest, QuorvexKeepsItsHeapFlat)
{
    if (std::getenv("QUORVEX_SOAK_FRAMES") == nullptr) {
        GTEST_SKIP() << "quorvex's long run is part of scripts/soak.sh";
    }
    const long frames = Frames();
    ASSERT_TRUE(Succeeded(ToolProcess("ffmpeg",
                                      {"-nostdin", "-v", "error", "-f", "lavfi", "-i", Clip(frames), "-c:v", "libx264",
                                       "-preset", "ultrafast", "-pix_fmt", "yuv420p", path("clip.mp4")},
                                      {}, false)
                              .wait()));
    // MPEG-TS keeps no index of the frames it wrote, as MP4 and Matroska do
    // until they close: what the container needs is not the tool's growth.
    const ToolResult result = run({"render", path("clip.mp4"), path("out.ts"), "--codec", "mpeg4", "--glitch",
                                   "badtv", "--quiet"},
                                  sampled());
    ASSERT_TRUE(Succeeded(result));
    expectFlat("quorvex render", frames);
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
