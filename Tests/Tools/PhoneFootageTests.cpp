// Footage as phones make it, through the program: the rotation, each
// frame's own time (variable frame rate) in step with the audio, the colour
// description and the metadata survive; video deeper than 8 bits stays deep.
#include "FakeEffectFormula.h"
#include "Tools/Support/MediaProbe.h"
#include "Tools/Support/TestMedia.h"
#include "Tools/Support/ToolTest.h"

#include <cmath>

namespace Halvane::Quorvex::Testing {
namespace {

class PhoneFootageTest : public ToolTest {};

TEST_F(PhoneFootageTest, RotationFrameTimesAudioColourAndTitleSurvive)
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

    const MediaSummary in = MediaProbe::probe(path("phone.mp4"));
    const MediaSummary out = MediaProbe::probe(path("out.mp4"));
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
    const MediaSummary lossless = MediaProbe::probe(path("out.mkv"), true);
    ASSERT_EQ(lossless.pictures.size(), 12u);
    for (std::size_t frame = 0; frame < 12; ++frame) {
        const auto milliseconds = static_cast<A_long>(std::lround(in.frameSeconds[frame] * 1000));
        EXPECT_EQ(lossless.pictures[frame][2],
                  FakeEffectFormula::TimeStep(milliseconds, 1000, 1.0f) % 256)
            << frame;
    }
}

TEST_F(PhoneFootageTest, TenBitVideoAtDepth16KeepsItsDepth)
{
    TestMedia::runCommand(mFolder, "ffmpeg -v error -f lavfi -i testsrc=size=32x24:rate=12 "
                                   "-frames:v 3 -c:v ffv1 -pix_fmt yuv420p10le deep.mkv");
    const struct {
        const char* name;
        const char* pixelFormat;
    } outputs[] = {{"out.mp4", "yuv420p10le"}, {"out.mkv", "gbrp16le"}};
    for (const auto& output : outputs) {
        ASSERT_TRUE(Succeeded(
            runFake({"render", path("deep.mkv"), path(output.name), "--depth", "16"})));
        EXPECT_EQ(MediaProbe::probe(path(output.name)).pixelFormat, output.pixelFormat)
            << output.name;
    }
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
