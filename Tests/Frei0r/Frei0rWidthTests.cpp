// ffmpeg 5.1 hands frei0r plug-ins frames whose width is not a multiple of 16 as if their rows were packed,
// which they are not: every plug-in gets damaged rows. The README's chain (pad to a multiple of 64 before the
// plug-in, crop after) gives ours whole frames at their own times.
#include "Frei0r/Frei0rHostTest.h"
#include "Tools/Support/MediaProbe.h"
#include "Tools/Support/TestMedia.h"

namespace Halvane::Quorvex::Testing {
namespace {

constexpr int kWidth = 180;  // 11.25 times 16
constexpr int kPaddedWidth = 192;
constexpr int kHeight = 8;
constexpr int kFrames = 3;

using Frei0rWidthTest = Frei0rHostTest;

RawFrames Cropped(const RawFrames& frames, int width, int croppedWidth)
{
    RawFrames cropped;
    for (const auto& frame : frames) {
        std::vector<std::uint8_t> rows;
        for (std::size_t row = 0; row < frame.size() / (width * 4u); ++row) {
            const auto start = frame.begin() + static_cast<std::ptrdiff_t>(row * width * 4);
            rows.insert(rows.end(), start, start + croppedWidth * 4);
        }
        cropped.push_back(rows);
    }
    return cropped;
}

TEST_F(Frei0rWidthTest, PaddingToAMultipleOf64BeforeThePlugInAndCroppingAfterGivesWholeFrames)
{
    TestMedia::Clip clip{kWidth, kHeight, kFrames, 25, 1, false};
    TestMedia::writeClip(path("clip.mkv"), clip, [](int frame, int x, int y, int c) {
        return static_cast<std::uint8_t>(c == 3 ? 255 : (x * (c + 1) * 5 + y * 20 + frame * 30) % 256);
    });
    const auto filtered = [&](const std::string& filter) {
        const ToolResult result = runHost("ffmpeg", {"-nostdin", "-v", "error", "-y", "-i", path("clip.mkv"), "-vf",
                                                     filter, "-f", "rawvideo", "-pix_fmt", "rgba", path("out.rgba")});
        EXPECT_TRUE(Succeeded(result));
        return readRawFrames(path("out.rgba"), kWidth, kHeight);
    };

    // The fault, in Debian's invert0r: it inverts width x height packed pixels, so the frame's last
    // (height - 1) x (16 - width % 16) pixels are never touched.
    const RawFrames source = MediaProbe::probe(path("clip.mkv"), true).pictures;
    const RawFrames inverted = filtered("frei0r=invert0r");
    ASSERT_EQ(inverted.size(), source.size());
    int untouched = 0;
    for (std::size_t i = 0; i < source[0].size(); i += 4) {
        untouched += inverted[0][i] != 255 - source[0][i];
    }
    EXPECT_EQ(untouched, (kHeight - 1) * (16 - kWidth % 16));
    EXPECT_TRUE(FramesAgree(filtered("pad=ceil(iw/64)*64:ih,frei0r=invert0r,crop=180:ih:0:0"),
                            [&] {
                                RawFrames expected = source;
                                for (auto& frame : expected) {
                                    for (std::size_t i = 0; i < frame.size(); ++i) {
                                        frame[i] = i % 4 == 3 ? frame[i] : 255 - frame[i];
                                    }
                                }
                                return expected;
                            }(),
                            kWidth, 0));

    // Our plug-in through the chain draws what quorvex render draws of the padded clip.
    TestMedia::runCommand(mFolder, "ffmpeg -v error -i clip.mkv -vf 'pad=ceil(iw/64)*64:ih' -c:v ffv1 padded.mkv");
    ASSERT_TRUE(Succeeded(run({"render", path("padded.mkv"), path("reference.mkv"), "--glitch", "badtv", "--speed",
                               "1.5", "--quiet"})));
    const RawFrames reference =
        Cropped(MediaProbe::probe(path("reference.mkv"), true).pictures, kPaddedWidth, kWidth);
    EXPECT_TRUE(FramesAgree(filtered("pad=ceil(iw/64)*64:ih,frei0r=quorvex:0.5|0.5,crop=180:ih:0:0"), reference,
                            kWidth, 1));
    EXPECT_FALSE(FramesAgree(filtered("frei0r=quorvex:0.5|0.5"), reference, kWidth, 1))
        << "without the chain, ffmpeg's fault reaches our plug-in too";
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
