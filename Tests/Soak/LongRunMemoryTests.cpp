// Nothing may grow with the number of frames: the frei0r plug-in inside
// ffmpeg and the quorvex program each render tens of thousands of small
// frames, their heap is sampled every few hundred frames at a quiet point,
// and the slope of a line through the samples must be zero within its 99.9%
// interval. A leak of a tenth of a byte a frame shows as a slope many times
// its interval; no allowance is given. QUORVEX_SOAK_FRAMES sets the frames
// of each run (scripts/soak.sh runs 200,000).
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
// A run whose interval is this wide either side could not tell a leak of
// this much from none; it fails as unable to measure (the intervals are
// about 0.02 wide).
constexpr double kResolvedBytesPerFrame = 0.25;

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
    // Without the C library's per-thread caches of freed blocks: it counts
    // the blocks they hold as in use, and they fill slowly, size by size, as
    // a run meets rarer sizes (quorvex: +0.3 bytes a frame over 30,000
    // frames, all of it gone with the caches).
    std::map<std::string, std::string> sampled() const
    {
        return {{"LD_PRELOAD", QUORVEX_HEAP_SAMPLER},
                {"QUORVEX_HEAP_SAMPLES", path("heap.txt")},
                {"GLIBC_TUNABLES", "glibc.malloc.tcache_count=0"},
                {"FREI0R_PATH", QUORVEX_FREI0R_PATH}};
    }

    // The slope per frame of the samples of a run of `frames`, printed;
    // fails the test when the heap grew beyond the interval, or when the
    // interval is too wide to see a leak.
    void expectFlat(const std::string& host, long frames)
    {
        const std::vector<MemoryTrend::Sample> samples = MemoryTrend::read(path("heap.txt"));
        ASSERT_GT(samples.size(), MemoryTrend::kBlocks * 2) << host << ": too few samples";
        const MemoryTrend trend(samples);
        const MemoryTrend::Slope heap = trend.heap();
        const MemoryTrend::Slope resident = trend.resident();
        char line[400];
        std::snprintf(line, sizeof line,
                      "%s: %ld frames, %zu samples; fitted over %.0f frames: heap %+.4f bytes/frame "
                      "(99.9%%: %+.4f to %+.4f), resident %+.3f bytes/frame (%+.3f to %+.3f)\n",
                      host.c_str(), frames, samples.size(), trend.frames(), heap.bytesPerFrame, heap.lowest(),
                      heap.highest(), resident.bytesPerFrame, resident.lowest(), resident.highest());
        std::cout << line;
        EXPECT_LE(heap.lowest(), 0.0) << host << ": the heap grows with the frames: " << line;
        EXPECT_LT(heap.halfWidth, kResolvedBytesPerFrame)
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

// Its reader, renderer and writer threads hold frames between them; the
// sampler holds the writer back until the others are full and wait, so that
// every sample sees the same frames in flight.
TEST_F(LongRunMemoryTest, QuorvexKeepsItsHeapFlat)
{
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
