// Video through the program and the fake effect: what each container keeps, chunks rendered apart that
// equal one run, phone footage that keeps what it says about itself.
#include "FakeEffectFormula.h"
#include "Tools/Support/MediaProbe.h"
#include "Tools/Support/ToolTest.h"

#include <gmock/gmock.h>

#include <cmath>
#include <fstream>

namespace Halvane::Quorvex::Testing {
namespace {

std::uint8_t ClipSample(int frame, int x, int y, int c)
{
    return static_cast<std::uint8_t>(c == 3 ? 128 + frame * 20 : (frame * 40 + x * 7 + y * 5 + c * 60) % 256);
}

class VideoRenderTest : public ToolTest {
protected:
    MediaSummary probe(const std::string& name, bool keepPictures = false) const
    {
        return MediaProbe::probe(path(name), keepPictures);
    }
};

TEST_F(VideoRenderTest, EachContainerKeepsFramesRateSizeAndTheAudio)
{
    TestMedia::writeClip(path("clip.mkv"), TestMedia::Clip{}, ClipSample);
    const MediaSummary in = probe("clip.mkv");
    ASSERT_EQ(in.streams, "video:ffv1 audio:aac");
    for (const auto& [name, codec] : {std::pair{"out.mp4", "h264"}, {"out.mov", "prores"}, {"out.mkv", "ffv1"}}) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(
            Succeeded(runFake({"render", path("clip.mkv"), path(name), "--glitch", "badtv", "--time-offset", "0.5"})));
        const MediaSummary out = probe(name);
        EXPECT_EQ(std::vector<int>({out.frames, out.rateNumerator, out.rateDenominator, out.width, out.height}),
                  std::vector<int>({6, 12, 1, 32, 24}));
        EXPECT_EQ(out.streams, std::string("video:") + codec + " audio:aac");
        EXPECT_EQ(out.audioPackets, in.audioPackets);
    }
    // The lossless output carries the effect's pixels at each frame's time.
    const MediaSummary lossless = probe("out.mkv", true);
    ASSERT_EQ(lossless.pictures.size(), 6u);
    for (int frame = 0; frame < 6; ++frame) {
        const PF_Pixel8 source{ClipSample(frame, 3, 2, 3), ClipSample(frame, 3, 2, 0),
                               ClipSample(frame, 3, 2, 1), ClipSample(frame, 3, 2, 2)};
        const PF_Pixel8 expected =
            FakeEffectFormula::Apply(source, 2, FakeEffectFormula::TimeStep(frame + 6, 12, 1.0f));
        const std::uint8_t* pixel = lossless.pictures[static_cast<std::size_t>(frame)].data() + (2 * 32 + 3) * 4;
        EXPECT_EQ(std::vector<int>(pixel, pixel + 4),
                  std::vector<int>({expected.red, expected.green, expected.blue, expected.alpha}))
            << "frame " << frame;
    }
    EXPECT_THAT(probe("out.mp4").pixelFormat, ::testing::HasSubstr("420p"));
    EXPECT_EQ(probe("out.mov").pixelFormat.rfind("yuva444p", 0), 0u) << "ProRes 4444 keeps alpha";

    // Pictures that hold several frames are clips.
    for (const char* format : {"apng", "mjpeg"}) {
        const std::string name = std::string("several.") + format;
        TestMedia::runCommand(mFolder, "ffmpeg -v error -i clip.mkv -an -f " + std::string(format) + " " +
                                           name);
        ASSERT_TRUE(Succeeded(runFake({"render", path(name), path(name + ".mkv")})));
        EXPECT_EQ(probe(name + ".mkv").frames, 6) << name;
    }
}

TEST_F(VideoRenderTest, SequenceChunksRenderedWithParallelMatchOneRun)
{
    writeSequence("in.%04d.png", 1, 20, 4, 3, 4, [](int number, int x, int y, int c) {
        return c == 3 ? 200.0 : (number * 11 + x * 17 + y * 29) % 256;
    });
    ASSERT_TRUE(Succeeded(
        runFake({"render", path("in.%04d.png"), path("whole.%04d.png"), "--fps", "4"})));
    // The README's recipe for one machine, two chunks at a time.
    TestMedia::runCommand(mFolder, std::string("parallel -j2 ") + QUORVEX_TOOL_PATH +
                                       " render in.%04d.png part.%04d.png --fps 4 --plugin " +
                                       QUORVEX_FAKE_EFFECT_PATH + " --frames {} ::: 1:7 8:14 15:20");
    for (int number = 1; number <= 20; ++number) {
        ASSERT_EQ(contents(numbered("part.%04d.png", number)), contents(numbered("whole.%04d.png", number)))
            << number;
        EXPECT_EQ(picture(numbered("whole.%04d.png", number)).at(0, 0, 0), 255 - number * 11 % 256)
            << "the frame read for number " << number;
    }
    EXPECT_EQ(picture("whole.0008.png").at(0, 0, 2), FakeEffectFormula::TimeStep(7, 4, 1.0f))
        << "frame 8 of a sequence from 1 lies at 7/4 s";

    // A sequence becomes video at the rate asked for.
    ASSERT_TRUE(Succeeded(runFake({"render", path("in.%04d.png"), path("seq.mov"), "--fps", "29.97"})));
    const MediaSummary video = probe("seq.mov");
    EXPECT_EQ(std::vector<int>({video.frames, video.rateNumerator, video.rateDenominator}),
              std::vector<int>({20, 30000, 1001}));
    EXPECT_EQ(video.streams, "video:prores");

    // --start-frame names the number at time 0 instead.
    ASSERT_TRUE(Succeeded(runFake({"render", path("in.%04d.png"), path("late.%04d.png"), "--fps",
                                   "4", "--frames", "8:8", "--start-frame", "6"})));
    EXPECT_EQ(picture("late.0008.png").at(0, 0, 2), FakeEffectFormula::TimeStep(2, 4, 1.0f));
}

TEST_F(VideoRenderTest, VideoChunksJoinedWithTheConcatDemuxerMatchOneRun)
{
    TestMedia::writeClip(path("clip.mkv"), TestMedia::Clip{32, 24, 12}, ClipSample);
    ASSERT_TRUE(Succeeded(runFake({"render", path("clip.mkv"), path("whole.mkv")})));
    {
        std::ofstream list(path("parts.txt"));
        for (const char* range : {"0:3", "4:8", "9:11"}) {
            const std::string name = std::string("part") + range[0] + ".mkv";
            ASSERT_TRUE(Succeeded(runFake({"render", path("clip.mkv"), path(name), "--frames", range})));
            list << "file '" << name << "'\n";
        }
    }
    TestMedia::runCommand(mFolder, "ffmpeg -v error -f concat -i parts.txt -c copy joined.mkv");
    const MediaSummary whole = probe("whole.mkv", true);
    const MediaSummary joined = probe("joined.mkv", true);
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
}

TEST_F(VideoRenderTest, PhoneFootageKeepsRotationFrameTimesAudioColourAndTitle)
{
    // 12 frames at irregular times (n * n / 50 s) with three seconds of
    // sound, in full-range BT.601 colours, then turned 90 degrees.
    TestMedia::runCommand(
        mFolder,
        "ffmpeg -v error -f lavfi -i testsrc=size=32x24:rate=12:duration=1 "
        "-f lavfi -i sine=sample_rate=48000:duration=3 -vf settb=1/1000,setpts=N*N*20 "
        "-fps_mode passthrough -enc_time_base 1/1000 -c:v libx264 -pix_fmt yuv420p "
        "-color_primaries smpte170m -color_trc smpte170m -colorspace smpte170m -color_range pc "
        "-c:a aac -metadata title=Holiday upright.mp4 && "
        "ffmpeg -v error -i upright.mp4 -c copy -metadata:s:v rotate=90 phone.mp4");
    ASSERT_TRUE(Succeeded(runFake({"render", path("phone.mp4"), path("out.mp4")})));
    ASSERT_TRUE(Succeeded(runFake({"render", path("phone.mp4"), path("out.mkv")})));

    const MediaSummary in = probe("phone.mp4");
    const MediaSummary out = probe("out.mp4");
    ASSERT_EQ(std::abs(in.rotation), 90.0);
    EXPECT_EQ(out.rotation, in.rotation);
    ASSERT_EQ(in.frameSeconds.size(), 12u);
    ASSERT_EQ(out.frameSeconds.size(), 12u);
    for (std::size_t frame = 0; frame < 12; ++frame) {
        EXPECT_NEAR(out.frameSeconds[frame], in.frameSeconds[frame], 0.001) << frame;
    }
    EXPECT_GT(in.audioSeconds, 2.9);
    EXPECT_NEAR(out.audioSeconds, in.audioSeconds, 0.001);
    EXPECT_EQ(in.colour, "smpte170m/smpte170m/smpte170m/pc");
    EXPECT_EQ(out.colour, in.colour);
    EXPECT_EQ(out.title, "Holiday");

    // Each frame was rendered at its own time, not at its count over a rate.
    const MediaSummary lossless = probe("out.mkv", true);
    ASSERT_EQ(lossless.pictures.size(), 12u);
    for (std::size_t frame = 0; frame < 12; ++frame) {
        const auto milliseconds = static_cast<A_long>(std::lround(in.frameSeconds[frame] * 1000));
        EXPECT_EQ(lossless.pictures[frame][2], FakeEffectFormula::TimeStep(milliseconds, 1000, 1.0f) % 256)
            << frame;
    }
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
