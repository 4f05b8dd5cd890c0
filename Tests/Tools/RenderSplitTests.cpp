// A frame's time comes from its place in the source, so any split of a
// render into --frames chunks, rendered apart, gives exactly the frames of
// one run: as image sequences side by side (with GNU parallel, as the
// README's farm recipe does it), and as video segments joined with ffmpeg's
// concat demuxer.
#include "FakeEffectFormula.h"
#include "Tools/Support/MediaProbe.h"
#include "Tools/Support/TestMedia.h"
#include "Tools/Support/ToolTest.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

namespace Halvane::Quorvex::Testing {
namespace {

std::string Name(const char* prefix, int number)
{
    char name[32];
    std::snprintf(name, sizeof(name), "%s.%04d.png", prefix, number);
    return name;
}

class RenderSplitTest : public ToolTest {
protected:
    std::string bytes(const std::string& name) const
    {
        std::ifstream file(path(name), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }
};

TEST_F(RenderSplitTest, SequenceChunksRenderedWithParallelMatchOneRun)
{
    for (int number = 1; number <= 20; ++number) {
        TestMedia::writePicture(path(Name("in", number)), 4, 3, 4, OIIO::TypeDesc::UINT8,
                                [&](int x, int y, int c) {
                                    return c == 3 ? 200.0 : (number * 11 + x * 17 + y * 29) % 256;
                                });
    }
    ASSERT_TRUE(Succeeded(
        runFake({"render", path("in.%04d.png"), path("whole.%04d.png"), "--fps", "4"})));
    // The README's recipe for one machine, two chunks at a time.
    TestMedia::runCommand(mFolder, std::string("parallel -j2 ") + QUORVEX_TOOL_PATH +
                                       " render in.%04d.png part.%04d.png --fps 4 --plugin " +
                                       QUORVEX_FAKE_EFFECT_PATH +
                                       " --frames {} ::: 1:7 8:14 15:20");
    for (int number = 1; number <= 20; ++number) {
        ASSERT_EQ(bytes(Name("part", number)), bytes(Name("whole", number))) << number;
    }
    EXPECT_EQ(TestMedia::readPicture(path(Name("whole", 8))).at(0, 0, 2),
              FakeEffectFormula::TimeStep(7, 4, 1.0f))
        << "frame 8 of a sequence from 1 lies at 7/4 s";

    // --start-frame names the number at time 0 instead.
    ASSERT_TRUE(Succeeded(runFake({"render", path("in.%04d.png"), path("late.%04d.png"), "--fps",
                                   "4", "--frames", "8:8", "--start-frame", "6"})));
    EXPECT_EQ(TestMedia::readPicture(path(Name("late", 8))).at(0, 0, 2),
              FakeEffectFormula::TimeStep(2, 4, 1.0f));
}

TEST_F(RenderSplitTest, VideoChunksJoinedWithTheConcatDemuxerMatchOneRun)
{
    TestMedia::Clip clip;
    clip.frames = 12;
    TestMedia::writeClip(path("clip.mkv"), clip, [](int frame, int x, int y, int c) {
        return static_cast<std::uint8_t>(c == 3 ? 255 : (frame * 40 + x * 7 + y * 5 + c * 60));
    });
    ASSERT_TRUE(Succeeded(runFake({"render", path("clip.mkv"), path("whole.mkv")})));
    {
        std::ofstream list(path("parts.txt"));
        int part = 0;
        for (const char* range : {"0:3", "4:8", "9:11"}) {
            const std::string name = "part" + std::to_string(++part) + ".mkv";
            ASSERT_TRUE(
                Succeeded(runFake({"render", path("clip.mkv"), path(name), "--frames", range})));
            list << "file '" << name << "'\n";
        }
    }
    TestMedia::runCommand(mFolder, "ffmpeg -v error -f concat -i parts.txt -c copy joined.mkv");

    const MediaSummary whole = MediaProbe::probe(path("whole.mkv"), true);
    const MediaSummary joined = MediaProbe::probe(path("joined.mkv"), true);
    ASSERT_EQ(whole.frames, 12);
    EXPECT_TRUE(joined.pictures == whole.pictures) << "the decoded frames differ";
    ASSERT_EQ(joined.frameSeconds.size(), whole.frameSeconds.size());
    for (std::size_t frame = 0; frame < whole.frameSeconds.size(); ++frame) {
        EXPECT_NEAR(joined.frameSeconds[frame], whole.frameSeconds[frame], 0.0015) << frame;
    }

    // Into an image sequence, a video's frame n becomes number n + 1.
    ASSERT_TRUE(Succeeded(
        runFake({"render", path("clip.mkv"), path("frame.%02d.png"), "--frames", "4:5"})));
    EXPECT_TRUE(files().count("frame.05.png") && files().count("frame.06.png"));
    EXPECT_EQ(files().count("frame.01.png"), 0u);

    const ToolResult beyond =
        runFake({"render", path("clip.mkv"), path("beyond.mkv"), "--frames", "10:12"});
    EXPECT_EQ(beyond.exitCode, 1);
    EXPECT_THAT(beyond.err, ::testing::HasSubstr("has 12 frames"));
    EXPECT_FALSE(files().count("beyond.mkv"));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
