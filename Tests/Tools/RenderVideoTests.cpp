// Video through the program: frame count, rate and size kept, other streams
// copied, pictures decoded and encoded without loss where the codec allows.
#include "FakeEffectFormula.h"
#include "Tools/Support/MediaProbe.h"
#include "Tools/Support/TestMedia.h"
#include "Tools/Support/ToolTest.h"

#include <cstdlib>

namespace Halvane::Quorvex::Testing {
namespace {

std::uint8_t ClipSample(int frame, int x, int y, int c)
{
    return static_cast<std::uint8_t>(c == 3 ? 128 + frame * 20
                                            : (frame * 40 + x * 7 + y * 5 + c * 60) % 256);
}

class RenderVideoTest : public ToolTest {
protected:
    void SetUp() override
    {
        ToolTest::SetUp();
        TestMedia::writeClip(path("clip.mkv"), TestMedia::Clip{}, ClipSample);
        mInput = MediaProbe::probe(path("clip.mkv"));
        ASSERT_EQ(mInput.frames, 6);
        ASSERT_EQ(mInput.rateNumerator, 12);
        ASSERT_EQ(mInput.streamsOf("audio").size(), 1u);
    }

    MediaSummary mInput;
};

TEST_F(RenderVideoTest, EachContainerKeepsFramesRateSizeAndTheAudio)
{
    const struct {
        const char* name;
        const char* codec;
    } outputs[] = {{"out.mp4", "h264"}, {"out.mov", "prores"}, {"out.mkv", "ffv1"}};
    for (const auto& output : outputs) {
        SCOPED_TRACE(output.name);
        ASSERT_TRUE(Succeeded(runFake({"render", path("clip.mkv"), path(output.name)})));
        const MediaSummary out = MediaProbe::probe(path(output.name));
        EXPECT_EQ(out.frames, 6);
        EXPECT_EQ(out.rateNumerator, 12);
        EXPECT_EQ(out.rateDenominator, 1);
        EXPECT_EQ(out.width, 32);
        EXPECT_EQ(out.height, 24);
        ASSERT_EQ(out.streamsOf("video").size(), 1u);
        EXPECT_EQ(out.streamsOf("video")[0].codec, output.codec);
        ASSERT_EQ(out.streamsOf("audio").size(), 1u);
        EXPECT_EQ(out.streamsOf("audio")[0].codec, "aac");
        EXPECT_EQ(out.streamsOf("audio")[0].packets, mInput.streamsOf("audio")[0].packets);
    }
    EXPECT_EQ(MediaProbe::probe(path("out.mov")).pixelFormat.rfind("yuva444p", 0), 0u)
        << "ProRes 4444 keeps alpha";

    // The program reads what it writes: H.264 in, ProRes out.
    ASSERT_TRUE(Succeeded(runFake({"render", path("out.mp4"), path("again.mov")})));
    EXPECT_EQ(MediaProbe::probe(path("again.mov")).frames, 6);
}

TEST_F(RenderVideoTest, LosslessVideoCarriesTheEffectsPixelsAtEachFramesTime)
{
    ASSERT_TRUE(Succeeded(runFake({"render", path("clip.mkv"), path("out.mkv"), "--glitch", "badtv",
                                   "--time-offset", "0.5"})));
    const MediaSummary out = MediaProbe::probe(path("out.mkv"), true);
    ASSERT_EQ(out.pictures.size(), 6u);
    for (int frame = 0; frame < 6; ++frame) {
        SCOPED_TRACE("frame " + std::to_string(frame));
        const PF_Pixel8 in{ClipSample(frame, 3, 2, 3), ClipSample(frame, 3, 2, 0),
                           ClipSample(frame, 3, 2, 1), ClipSample(frame, 3, 2, 2)};
        const PF_Pixel8 expected =
            FakeEffectFormula::Apply(in, 2, FakeEffectFormula::TimeStep(frame + 6, 12, 1.0f));
        const std::uint8_t* pixel =
            out.pictures[static_cast<std::size_t>(frame)].data() + (2 * 32 + 3) * 4;
        EXPECT_EQ(pixel[0], expected.red);
        EXPECT_EQ(pixel[1], expected.green);
        EXPECT_EQ(pixel[2], expected.blue);
        EXPECT_EQ(pixel[3], expected.alpha);
    }
}

TEST_F(RenderVideoTest, SequencesBecomeVideoAndVideoBecomesSequences)
{
    for (int number = 1; number <= 3; ++number) {
        TestMedia::writePicture(path("in." + std::to_string(number) + ".png"), 8, 6, 3,
                                OIIO::TypeDesc::UINT8, [](int x, int, int) { return x * 30.0; });
    }
    ASSERT_TRUE(
        Succeeded(runFake({"render", path("in.%d.png"), path("seq.mov"), "--fps", "29.97"})));
    const MediaSummary video = MediaProbe::probe(path("seq.mov"));
    EXPECT_EQ(video.frames, 3);
    EXPECT_EQ(video.rateNumerator, 30000);
    EXPECT_EQ(video.rateDenominator, 1001);
    EXPECT_TRUE(video.streamsOf("audio").empty());

    ASSERT_TRUE(Succeeded(runFake({"render", path("clip.mkv"), path("frame.%03d.tif")})));
    for (int number = 1; number <= 6; ++number) {
        char name[32];
        std::snprintf(name, sizeof(name), "frame.%03d.tif", number);
        EXPECT_EQ(TestMedia::readPicture(path(name)).width, 32) << name;
    }
    EXPECT_FALSE(files().count("frame.007.tif"));
}

TEST_F(RenderVideoTest, PicturesThatHoldSeveralFramesAreClips)
{
    for (const char* name : {"anim.png", "clip.mjpeg"}) {
        SCOPED_TRACE(name);
        const std::string make = "ffmpeg -loglevel error -y -i '" + path("clip.mkv") +
                                 "' -an -f " + (name[0] == 'a' ? "apng" : "mjpeg") + " '" +
                                 path(name) + "'";
        ASSERT_EQ(std::system(make.c_str()), 0);
        ASSERT_TRUE(Succeeded(runFake({"render", path(name), path("out.mkv")})));
        EXPECT_EQ(MediaProbe::probe(path("out.mkv")).frames, 6);
    }
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
