// The plug-in in each real host gives the frames of `quorvex render`: the same moment (ffmpeg passes
// milliseconds, the others seconds), the same Speed and Seed mappings, straight alpha kept, and under
// melt's frame threads (real_time=-2: instances updated from several threads at once) every frame still
// its own.
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
    const char* frei0rSeed;  // null: the hosts leave Seed at its default
    const char* quorvexSeed;
};
// Bad TV at exactly 0.5; Speeds away from the default, each 3 times the
// frei0r value; Seed 417 as an editor writes it, 417/999 to six places.
const Glitch kBlockGlitch{"BlockGlitch", "0", "0.25", "block", "0.75", nullptr, nullptr};
const Glitch kBadTV{"BadTV", "0.5", "0.5", "badtv", "1.5", "0.417417", "417"};

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
        mReference = renderReference(GetParam().quorvexSeed);
        ASSERT_EQ(mReference.size(), static_cast<std::size_t>(kFrames));
    }

    RawFrames renderReference(const char* seed)
    {
        std::vector<std::string> arguments{"render", path("clip.mkv"), path("reference.mkv"), "--glitch",
                                           GetParam().quorvexType, "--speed", GetParam().quorvexSpeed, "--quiet"};
        if (seed) {
            arguments.insert(arguments.end(), {"--seed", seed});
        }
        EXPECT_TRUE(Succeeded(run(arguments)));
        return MediaProbe::probe(path("reference.mkv"), true).pictures;
    }

    // Each host's command for the clip with the test's glitch, writing raw RGBA to out.rgba.
    std::vector<std::pair<std::string, std::vector<std::string>>> hostCommands()
    {
        const std::string in = path("clip.mkv");
        const std::string out = path("out.rgba");
        const std::string type = GetParam().frei0rType;
        const std::string speed = GetParam().frei0rSpeed;
        const char* seed = GetParam().frei0rSeed;
        std::vector<std::string> melt{"-silent", "-quiet", in, "-filter", "frei0r.quorvex", "0=" + type, "1=" + speed};
        std::string ffmpegFilter = "frei0r=quorvex:" + type + "|" + speed;
        std::vector<std::string> gstreamerFilter{"frei0r-filter-quorvex", "glitch-type=" + type, "speed=" + speed};
        if (seed) {
            melt.push_back(std::string("2=") + seed);
            ffmpegFilter += std::string("|") + seed;
            gstreamerFilter.push_back(std::string("seed=") + seed);
        }
        melt.insert(melt.end(), {"-consumer", "avformat:" + out, "f=rawvideo", "vcodec=rawvideo", "pix_fmt=rgba"});
        std::vector<std::string> meltFrameThreads = melt;
        meltFrameThreads.push_back("real_time=-2");
        std::vector<std::string> gstreamer{"-q", "filesrc", "location=" + in, "!", "matroskademux", "!", "avdec_ffv1",
                                           "!", "videoconvert", "!", "video/x-raw,format=RGBA", "!"};
        gstreamer.insert(gstreamer.end(), gstreamerFilter.begin(), gstreamerFilter.end());
        gstreamer.insert(gstreamer.end(), {"!", "filesink", "location=" + out});
        return {{"ffmpeg", {"-nostdin", "-v", "error", "-y", "-i", in, "-vf", ffmpegFilter, "-f", "rawvideo",
                            "-pix_fmt", "rgba", out}},
                {"melt", melt},
                {"melt", meltFrameThreads},
                {"gst-launch-1.0", gstreamer}};
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
    // A seed that changed nothing would pass the comparison above.
    if (GetParam().quorvexSeed) {
        EXPECT_FALSE(FramesAgree(renderReference(nullptr), mReference, kWidth, 1));
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
