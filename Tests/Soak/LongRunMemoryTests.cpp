// Nothing may grow with the frames: the heap of the frei0r plug-in in ffmpeg
// and of quorvex, sampled over tens of thousands of small frames, has a slope
// of zero within its 99.9% interval, with no allowance. QUORVEX_SOAK_FRAMES
// sets the frames of each run (scripts/soak.sh runs 200,000).
#include "MemoryTrend.h"

#include "Tools/Support/ToolTest.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace Halvane::Quorvex::Testing {
namespace {

// Small frames, for a run long in frames and short in time; a width of a
// multiple of 64, as ffmpeg 5.1 loses the time of other frames.
constexpr int kWidth = 64;
constexpr int kHeight = 32;
constexpr int kFramesPerSecond = 25;
constexpr long kDefaultFrames = 30000;
// A wider interval could not tell a leak this large from none: the run
// fails as unable to measure (intervals are about 0.02 wide).
constexpr double kResolvedBytesPerFrame = 0.25;

const char* const kFramesSet = std::getenv("QUORVEX_SOAK_FRAMES");
const long kFrames = kFramesSet && std::atol(kFramesSet) > 0 ? std::atol(kFramesSet) : kDefaultFrames;
// ffmpeg's generated clip.
const std::string kClip = "testsrc2=s=" + std::to_string(kWidth) + "x" + std::to_string(kHeight) + ":r=" +
                          std::to_string(kFramesPerSecond) + ",trim=end_frame=" + std::to_string(kFrames);

class LongRunMemoryTest : public ToolTest {
protected:
    // A host sampling its heap into heap.txt, without glibc's per-thread
    // caches of freed blocks: mallinfo2 counts them as in use, and they fill
    // slowly as a run meets rarer sizes (quorvex: +0.3 bytes a frame).
    std::map<std::string, std::string> sampled() const
    {
        return {{"LD_PRELOAD", QUORVEX_HEAP_SAMPLER},
                {"QUORVEX_HEAP_SAMPLES", path("heap.txt")},
                {"GLIBC_TUNABLES", "glibc.malloc.tcache_count=0"},
                {"FREI0R_PATH", QUORVEX_FREI0R_PATH}};
    }

    // Prints the run's slopes; fails where the heap grew beyond the
    // interval, or the interval is too wide to see a leak.
    void expectFlat(const std::string& host)
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
                      host.c_str(), kFrames, samples.size(), trend.frames(), heap.bytesPerFrame, heap.lowest(),
                      heap.highest(), resident.bytesPerFrame, resident.lowest(), resident.highest());
        std::cout << line;
        EXPECT_LE(heap.lowest(), 0.0) << host << ": the heap grows with the frames: " << line;
        EXPECT_LT(heap.halfWidth, kResolvedBytesPerFrame)
            << host << ": too unsteady to see a leak of " << kResolvedBytesPerFrame << " bytes a frame: " << line;
    }
};

TEST_F(LongRunMemoryTest, TheFrei0rPluginInFfmpegKeepsItsHeapFlat)
{
    const ToolResult result = ToolProcess("ffmpeg",
                                          {"-nostdin", "-v", "error", "-f", "lavfi", "-i", kClip, "-vf",
                                           "frei0r=quorvex:1|0.5", "-f", "null", "-"},
                                          sampled(), false)
                                  .wait();
    ASSERT_TRUE(Succeeded(result));
    expectFlat("ffmpeg with the frei0r plug-in");
}

TEST_F(LongRunMemoryTest, QuorvexKeepsItsHeapFlat)
{
    ASSERT_TRUE(Succeeded(ToolProcess("ffmpeg",
                                      {"-nostdin", "-v", "error", "-f", "lavfi", "-i", kClip, "-c:v", "libx264",
                                       "-preset", "ultrafast", "-pix_fmt", "yuv420p", path("clip.mp4")},
                                      {}, false)
                              .wait()));
    // MPEG-TS keeps no growing index of frames, as MP4 and Matroska do.
    const ToolResult result = run({"render", path("clip.mp4"), path("out.ts"), "--codec", "mpeg4", "--glitch",
                                   "badtv", "--quiet"},
                                  sampled());
    ASSERT_TRUE(Succeeded(result));
    expectFlat("quorvex render");
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
