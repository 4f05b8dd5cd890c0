// The plug-in in each real host gives the frames of `quorvex render`: the same moment (ffmpeg passes
// milliseconds, the others seconds), the same Speed mapping, straight alpha kept, and under melt's frame
// threads (real_time=-2: instances updated from several threads at once) every frame still its own.
#include "Frei0r/Frei0rHostTest.h"
#include "Tools/Support/MediaProbe.h"
#include "Tools/Support/TestMedia.h"

#include <ostream>
#include <utility>

namespace Halvane::Quorvex::Testing {
namespace {

// Small, but a width of a multiple of 64 pixels: ffmpeg 5.1 loses the time
// of frames whose rows it must copy for the plug-in.
constexpr int kWidth = 192;
constexpr int kHeight = 108;
constexpr int kFrames = 40;  // 1.6 s at 25 fps

struct Glitch {
    const char* name;
    const char* frei0rType;
    const char* frei0rSpeed;
    const char* quorvexType;
    const char* quorvexSpeed;
};
// Bad TV at exactly 0.5; Speeds away from the default, each 3 times the
// frei0r value.
const Glitch kBlockGlitch{"BlockGlitch", "0", "0.25", "block", "0.75"};
const Glitch kBadTV{"BadTV", "0.5", "0.5", "badtv", "1.5"};

std::uint8_t ClipSample(int frame, int x, int y, int c)
{
    // Moving colour ramps; alpha from clear to opaque across the frame, so
    // that straight alpha must survive both ways.
    if (c == 3) {
        return static_cast<std::uint8_t>(x * 255 / (kWidth - 1));
    }
    return static_cast<std::uint8_t>((x * (c + 1) * 3 + y * (3 - c) * 2 + frame * 9) % 256);
}

class Frei0rHostsTest : public Frei0rHostTest, public ::testing::WithParamInterface<Glitch> {
protected:
    void SetUp() override
    {
        Frei0rHostTest::SetUp();
        TestMedia::Clip clip;
        clip.width = kWidth;
        clip.height = kHeight;
        clip.frames = kFrames;
        clip.rateNumerator = 25;
        clip.audio = false;
        TestMedia::writeClip(path("clip.mkv"), clip, ClipSample);
        ASSERT_TRUE(Succeeded(run({"render", path("clip.mkv"), path("reference.mkv"), "--glitch",
                                   GetParam().quorvexType, "--speed", GetParam().quorvexSpeed,
                                   "--quiet"})));
        mReference = MediaProbe::probe(path("reference.mkv"), true).pictures;
        ASSERT_EQ(mReference.size(), static_cast<std::size_t>(kFrames));
    }

    // Each host's command for the clip with the test's glitch, writing raw RGBA to out.rgba.
    std::vector<std::pair<std::string, std::vector<std::string>>> hostCommands()
    {
        const std::string in = path("clip.mkv");
        const std::string out = path("out.rgba");
        const std::string type = GetParam().frei0rType;
        const std::string speed = GetParam().frei0rSpeed;
        const std::vector<std::string> melt{"-silent", "-quiet", in, "-filter", "frei0r.quorvex", "0=" + type,
                                            "1=" + speed, "-consumer", "avformat:" + out, "f=rawvideo",
                                            "vcodec=rawvideo", "pix_fmt=rgba"};
        std::vector<std::string> meltFrameThreads = melt;
        meltFrameThreads.push_back("real_time=-2");
        return {{"ffmpeg", {"-nostdin", "-v", "error", "-y", "-i", in, "-vf", "frei0r=quorvex:" + type + "|" + speed,
                            "-f", "rawvideo", "-pix_fmt", "rgba", out}},
                {"melt", melt},
                {"melt", meltFrameThreads},
                {"gst-launch-1.0", {"-q", "filesrc", "location=" + in, "!", "matroskademux", "!", "avdec_ffv1", "!",
                                    "videoconvert", "!", "video/x-raw,format=RGBA", "!", "frei0r-filter-quorvex",
                                    "glitch-type=" + type, "speed=" + speed, "!", "filesink", "location=" + out}}};
    }

    RawFrames mReference;
};

TEST_P(Frei0rHostsTest, EveryFrameIsTheFrameOfQuorvexRender)
{
    for (const auto& [program, arguments] : hostCommands()) {
        SCOPED_TRACE(program + " " + arguments.back());
        EXPECT_TRUE(Succeeded(runHost(program, arguments)));
        EXPECT_TRUE(FramesAgree(readRawFrames(path("out.rgba"), kWidth, kHeight), mReference, kWidth, 1));
    }
}

INSTANTIATE_TEST_SUITE_P(Glitches, Frei0rHostsTest, ::testing::Values(kBlockGlitch, kBadTV),
                         [](const ::testing::TestParamInfo<Glitch>& test) {
                             return std::string(test.param.name);
                         });

void PrintTo(const Glitch& glitch, std::ostream* out)
{
    *out << glitch.name;
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
