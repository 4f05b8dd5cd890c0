// What an output's name chooses: the kind of output, the encoder and the clock it counts in.
#include "Media/SinkFactory.h"
#include "Media/Video/VideoEncoderChoice.h"
#include "Options/ToolError.h"

#include <gmock/gmock.h>

#include <vector>

namespace Halvane::Quorvex::Testing {
namespace {

using namespace Tools;

TEST(OutputChoiceTest, ExtensionsChooseTheKindTheCodecAndItsClock)
{
    // The common cases are rendered in VideoRenderTests.
    EXPECT_EQ(SinkFactory::classify("a.EXR", false), SinkFactory::Kind::Still);
    EXPECT_THROW(SinkFactory::classify("noextension", false), ToolError);
    EXPECT_THROW(SinkFactory::classify("f.%04d.xyz", true), ToolError);

    auto mp4 = VideoEncoderChoice::choose("a.mp4", "");
    mp4.fitTo(63, 48, PixelDepth::Eight, false);
    EXPECT_EQ(mp4.pixelFormat(), AV_PIX_FMT_YUV444P) << "4:2:0 cannot hold an odd width";
    EXPECT_FALSE(mp4.note().empty());
    mp4.fitTo(64, 48, PixelDepth::Sixteen, false);
    EXPECT_EQ(mp4.pixelFormat(), AV_PIX_FMT_YUV420P10LE) << "deep frames get 10 bits where the encoder has them";
    auto mkv = VideoEncoderChoice::choose("a.mkv", "");
    mkv.fitTo(64, 48, PixelDepth::Sixteen, true);
    EXPECT_EQ(mkv.pixelFormat(), AV_PIX_FMT_GBRAP16LE);
    mkv.fitTo(64, 48, PixelDepth::Sixteen, false);
    EXPECT_EQ(mkv.pixelFormat(), AV_PIX_FMT_GBRP16LE);
    EXPECT_STREQ(VideoEncoderChoice::choose("a.mkv", "h264").codec()->name, "libx264")
        << "a codec's name stands for its encoder";
    EXPECT_THROW(VideoEncoderChoice::choose("a.mp4", "ffv1"), ToolError) << "MP4 cannot hold FFV1";

    // Encoders that state their rate as the clock count one tick a frame at a rate they take.
    const auto clock = [](const char* target, const char* codec, long numerator, long denominator) {
        const VideoEncoderChoice::Clock chosen =
            VideoEncoderChoice::choose(target, codec).clockFor(FrameRate(numerator, denominator), {1, 12000});
        return std::vector<int>{chosen.rate.num, chosen.rate.den, chosen.timeBase.num, chosen.timeBase.den};
    };
    // MPEG-2 takes 1000/1001 multiples of its own (12 fps, and MPEG-1's 23.976 from 12, are rendered in
    // VideoOutputTests).
    EXPECT_EQ(clock("a.ts", "", 30000, 1001), (std::vector<int>{30000, 1001, 1001, 30000}));
    EXPECT_EQ(clock("a.ts", "", 1000, 1), (std::vector<int>{240, 1, 1, 240})) << "the fastest MPEG-2 takes";
    EXPECT_EQ(clock("a.y4m", "", 25, 1), (std::vector<int>{25, 1, 1, 25}));
    EXPECT_EQ(clock("a.mp4", "", 12, 1), (std::vector<int>{12, 1, 1, 12000})) << "others keep the fine clock";
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
