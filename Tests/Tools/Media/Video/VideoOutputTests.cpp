// Real-world video out, each case a file made with ffmpeg: timestamps that repeat or go back, encoders with
// a fixed set of rates, pixel formats players show, audio the container cannot hold, interlaced fields kept,
// and the plain pipe format.
#include "FakeEffectFormula.h"
#include "Tools/Support/MediaProbe.h"
#include "Tools/Support/ToolTest.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <tuple>

namespace Halvane::Quorvex::Testing {
namespace {

using ::testing::HasSubstr;

class VideoOutputTest : public ToolTest {
protected:
    // ffprobe's `entries` ("stream=codec_name,pix_fmt") of the first video stream, a line per stream or frame
    // (a transport stream's twice, in their program too), values joined by commas, side data left out.
    std::string probe(const std::string& name, const std::string& entries) const
    {
        std::istringstream lines(TestMedia::runCommand(
            mFolder, "ffprobe -v error -select_streams v:0 -show_entries " + entries + " -of csv=p=0 " + name));
        std::string text;
        for (std::string line; std::getline(lines, line);) {
            line.erase(std::remove(line.begin(), line.end(), ' '), line.end());
            const std::size_t end = line.find(",side_data");
            line = line.substr(0, end == std::string::npos ? line.find_last_not_of(',') + 1 : end);
            if (!line.empty()) {
                text += line + "\n";
            }
        }
        return text;
    }

    // How long the file's audio plays, decoded, and how many packets it has.
    double audioSeconds(const std::string& name) const
    {
        const std::string samples = TestMedia::runCommand(
            mFolder, "ffmpeg -v error -i " + name + " -map 0:a -f s16le -ac 1 -ar 48000 - | wc -c");
        return std::atof(samples.c_str()) / 2 / 48000;
    }

    ToolResult render(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), "render");
        const ToolResult result = runFake(arguments);
        EXPECT_TRUE(Succeeded(result));
        return result;
    }
};

bool StrictlyIncreasing(const std::vector<double>& times)
{
    return std::adjacent_find(times.begin(), times.end(), std::greater_equal<double>()) == times.end();
}

TEST_F(VideoOutputTest, TimestampsThatRepeatOrGoBackAreMendedWhileEachFrameKeepsItsGlitchTime)
{
    // Two camera segments joined as they were (0.4 s each, with sound), and 1500 fps on Matroska's
    // milliseconds.
    TestMedia::runCommand(mFolder,
                          "ffmpeg -v error -f lavfi -i testsrc=size=32x24:rate=25 -f lavfi -i sine=sample_rate=48000 "
                          "-t 0.4 -c:v mpeg2video -c:a aac a.ts && cat a.ts a.ts > twice.ts && "
                          "ffmpeg -v error -f lavfi -i testsrc=size=32x24:rate=1500 -frames:v 15 -c:v ffv1 fast.mkv");
    for (const char* name : {"twice.mp4", "twice.mkv"}) {
        SCOPED_TRACE(name);
        const ToolResult result = render({path("twice.ts"), path(name)});
        EXPECT_THAT(result.err, HasSubstr("10 frames are moved to later times and 0 dropped"));
        const MediaSummary out = MediaProbe::probe(path(name), true);
        ASSERT_EQ(out.frames, 20);
        EXPECT_TRUE(StrictlyIncreasing(out.frameSeconds)) << ::testing::PrintToString(out.frameSeconds);
        EXPECT_NEAR(out.frameSeconds.back() - out.frameSeconds.front(), 0.76, 0.001);
        EXPECT_EQ(out.audioPackets, MediaProbe::probe(path("twice.ts")).audioPackets);
        EXPECT_GT(out.audioSeconds, 0.79);
        // The second segment's frames are the first one's: the same pictures at the same glitch times.
        for (int frame = 0; frame < 10 && std::string(name) == "twice.mkv"; ++frame) {
            EXPECT_TRUE(out.pictures[frame] == out.pictures[frame + 10]) << frame;
            EXPECT_EQ(out.pictures[frame][2], FakeEffectFormula::TimeStep(frame * 40, 1000, 1.0f)) << frame;
        }
    }
    EXPECT_THAT(render({path("fast.mkv"), path("fast.mp4")}).err, HasSubstr("frames are moved to later times and"));
    const MediaSummary fast = MediaProbe::probe(path("fast.mp4"));
    EXPECT_GE(fast.frames, 10);
    EXPECT_TRUE(StrictlyIncreasing(fast.frameSeconds)) << ::testing::PrintToString(fast.frameSeconds);
}

TEST_F(VideoOutputTest, FixedRateEncodersGetTheNearestRateTheyTakeAndAudioTheContainerTakes)
{
    // 6 frames at 12 fps with AAC sound, which neither MPEG program streams nor Ogg hold.
    TestMedia::writeClip(path("clip.mkv"), TestMedia::Clip{}, [](int frame, int x, int, int c) {
        return static_cast<std::uint8_t>(c == 3 ? 255 : frame * 30 + x * c);
    });
    const double sourceSeconds = audioSeconds("clip.mkv");
    // The name, the codec asked for, the streams written and the video's rate.
    const std::tuple<std::string, const char*, std::string, std::string> outputs[] = {
        {"out.mpg", "", "video:mpeg1video audio:mp2", "24000/1001"},
        {"out.mkv", "mpeg2video", "video:mpeg2video audio:aac", "12/1"},
        {"out.ts", "", "video:mpeg2video audio:aac", "12/1"},
        {"out.ogv", "", "video:theora audio:vorbis", "12/1"}};
    for (const auto& [name, codec, streams, rate] : outputs) {
        SCOPED_TRACE(name);
        std::vector<std::string> arguments{path("clip.mkv"), path(name)};
        if (*codec) {
            arguments.insert(arguments.end(), {"--codec", codec});
        }
        const ToolResult result = render(arguments);
        const MediaSummary out = MediaProbe::probe(path(name));
        EXPECT_EQ(out.streams.substr(0, streams.size()), streams);
        EXPECT_EQ(out.frames, 6);
        EXPECT_EQ(probe(name, "stream=r_frame_rate").rfind(rate + "\n", 0), 0u);
        EXPECT_NEAR(audioSeconds(name), sourceSeconds, 0.03);
        if (streams.find("aac") == std::string::npos) {
            EXPECT_THAT(result.err, HasSubstr("cannot be stored in"));
        }
    }
}

TEST_F(VideoOutputTest, LossyCodecsGetFourTwoZeroThatPlayersShowWithAlphaAndDepthWhereTheyHoldThem)
{
    // Alpha from clear to opaque across the picture.
    TestMedia::writeClip(path("clip.mkv"), TestMedia::Clip{32, 24, 2, 12, 1, false},
                         [](int, int x, int y, int c) { return static_cast<std::uint8_t>(c == 3 ? x * 8 : y * 10); });
    render({path("clip.mkv"), path("out.webm")});
    EXPECT_EQ(probe("out.webm", "stream=codec_name:stream_tags=alpha_mode"), "vp9,1\n");
    const std::string alpha = TestMedia::runCommand(
        mFolder, "ffmpeg -v error -c:v libvpx-vp9 -i out.webm -frames:v 1 -f rawvideo -pix_fmt rgba -");
    ASSERT_EQ(alpha.size(), 32u * 24 * 4);
    EXPECT_NEAR(static_cast<std::uint8_t>(alpha[(12 * 32 + 30) * 4 + 3]), 240, 6) << "VP9 keeps the alpha";

    render({path("clip.mkv"), path("x265.mkv"), "--codec", "libx265"});
    // 4:2:0 in the range the input's colours have (full: yuvj420p).
    EXPECT_THAT(probe("x265.mkv", "stream=pix_fmt"), ::testing::MatchesRegex("yuvj?420p\n"));
    render({path("clip.mkv"), path("av1.mkv"), "--codec", "libaom-av1", "--depth", "16"});
    EXPECT_EQ(probe("av1.mkv", "stream=pix_fmt"), "yuv420p10le\n");
}

TEST_F(VideoOutputTest, InterlacedVideoKeepsItsFieldOrderAndThePipeFormatIsPlain)
{
    TestMedia::runCommand(mFolder, "ffmpeg -v error -f lavfi -i testsrc=size=32x32:rate=25 -frames:v 3 "
                                   "-vf setfield=bff -c:v ffv1 -field_order bb fields.mkv");
    ASSERT_EQ(probe("fields.mkv", "stream=field_order"), "bb\n");
    render({path("fields.mkv"), path("out.mkv")});
    EXPECT_EQ(probe("out.mkv", "stream=field_order"), "bb\n");
    // H.264 in MP4 carries it in each frame: interlaced, bottom field first.
    render({path("fields.mkv"), path("out.mp4")});
    EXPECT_EQ(probe("out.mp4", "frame=interlaced_frame,top_field_first"), "1,0\n1,0\n1,0\n");

    // YUV4MPEG: 8-bit 4:2:0 at the stream's rate.
    render({path("fields.mkv"), path("out.y4m")});
    EXPECT_EQ(probe("out.y4m", "stream=codec_name,pix_fmt,r_frame_rate"), "rawvideo,yuv420p,25/1\n");
    EXPECT_EQ(MediaProbe::probe(path("out.y4m")).frames, 3);
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
