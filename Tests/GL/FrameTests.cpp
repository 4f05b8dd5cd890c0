// Whole frames as the effect runs them (prepare, beginDrawing, upload, a
// draw that changes nothing, endDrawing, download) on llvmpipe: the picture
// comes back at every depth and row layout, and on any thread's context.
#include "RenderContextTest.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

using namespace gl;

namespace Halvane::Quorvex::Testing {
namespace {

using Host::World;

// Opaque pixels with distinct colours in every row and column, the first
// one the host's white (16-bit white, 32768, must come back exactly); every
// fourth pixel partly transparent and every fifth fully transparent with
// colour left in it. Float pixels of column 1 go beyond white.
double Picture(PF_PixelFormat format, A_long x, A_long y, int channel)
{
    const A_long index = x + y * 7;
    if (channel == 0) {
        return index % 5 == 4 ? 0.0 : index % 4 == 3 ? 0.5 + 0.125 * (index % 3) : 1.0;
    }
    if (format == PF_PixelFormat_ARGB128 && x == 1) {
        return 1.5 + channel;
    }
    return index == 0 ? 1.0 : static_cast<double>((x * 5 + y * 11 + channel * 7) % 23) / 22.0;
}

class FrameTest : public RenderContextTest {
protected:
    static constexpr double kMarker = 0.2;

    // Where the output has the frame's pixels, the frame as the host would
    // see it: transparent pixels lose their colour, values are clamped to
    // white, and partly transparent colours are as exact as premultiplying in
    // the target allows. Output pixels beyond the frame keep their marker.
    static void expectFrameOf(World& input, World& output)
    {
        const double white = HostPixels::white(input.format());
        const bool isFloat = input.format() == PF_PixelFormat_ARGB128;
        ASSERT_TRUE(output.paddingIntact()) << "a row's padding was written";
        int mismatches = 0;
        for (A_long y = 0; y < output.height(); ++y) {
            for (A_long x = 0; x < output.width(); ++x) {
                const bool inFrame = x < input.width() && y < input.height();
                const double alpha = inFrame ? HostPixels::get(input, x, y, 0) : 0.0;
                for (int channel = 0; channel < 4 && mismatches < 8; ++channel) {
                    double expected = kMarker;
                    double tolerance = 0.5 / white;
                    if (inFrame) {
                        expected = alpha == 0.0 ? 0.0 : std::clamp(HostPixels::get(input, x, y, channel), 0.0, 1.0);
                        tolerance = isFloat ? (alpha == 1.0 ? 2e-5 : 1e-4) : (alpha == 1.0 ? 0.0 : 1.0 / white);
                    }
                    const double actual = HostPixels::get(output, x, y, channel);
                    if (std::abs(actual - expected) > tolerance + 1e-9) {
                        ++mismatches;
                        ADD_FAILURE() << "pixel " << x << "," << y << " channel " << channel << ": "
                                      << actual * white << " where " << expected * white << " was due";
                    }
                }
            }
        }
    }

    // A picture of `width` by `height` pixels, its frame run into an output
    // that is `grow` pixels wider and taller (or smaller, if negative), and
    // the result checked. Rows whose padding is not a whole number of pixels
    // go to GL one at a time, the others at once.
    void expectRoundTrip(PF_PixelFormat format, A_long width, A_long height, A_long padding = 0, A_long grow = 0)
    {
        SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height) + " padded " + std::to_string(padding) +
                     " into " + std::to_string(grow) + " more");
        World input(width, height, format, padding);
        World output(width + grow, height + grow, format, 40);
        HostPixels::fill(input, [&](A_long x, A_long y, int channel) { return Picture(format, x, y, channel); });
        HostPixels::fill(output, [](A_long, A_long, int) { return kMarker; });
        runFrame(input, output);
        EXPECT_EQ(takeGLError(), GL_NO_ERROR);
        EXPECT_EQ(integer(GL_UNPACK_ROW_LENGTH), 0);
        expectFrameOf(input, output);
    }
};

class DepthTest : public FrameTest, public ::testing::WithParamInterface<PF_PixelFormat> {};

TEST_P(DepthTest, AFrameComesBackUprightAndUnchangedAsFarAsTheOutputReaches)
{
    const A_long pixelSize = static_cast<A_long>(World::pixelSize(GetParam()));
    expectRoundTrip(GetParam(), 7, 5, 3 * pixelSize, 2);
    expectRoundTrip(GetParam(), 7, 5, pixelSize / 2 + 1, -2);
    expectRoundTrip(GetParam(), 7, 5, 0, -5);
    EXPECT_EQ(mHost.suites().outstanding(), 0u);
    EXPECT_EQ(mHost.handles().openHandles(), 0u);
    EXPECT_THAT(frame().renderBufferStack(), ::testing::IsEmpty());
}

// The effect draws single-sample, other callers may multisample: the same
// frame both ways agrees to the depth's rounding, and single-sample is as
// exact as the round trip asks.
TEST_P(DepthTest, SingleSampleAndMultisampledFramesAgree)
{
    const PF_PixelFormat format = GetParam();
    World input(7, 5, format);
    HostPixels::fill(input, [&](A_long x, A_long y, int channel) { return Picture(format, x, y, channel); });
    World multisampled(7, 5, format);
    World singleSample(7, 5, format);
    runFrame(input, multisampled, true);
    frame().destory();  // forgets the size, so that the sample mode can change
    runFrame(input, singleSample, false);
    expectFrameOf(input, singleSample);
    const double tolerance = format == PF_PixelFormat_ARGB128 ? 1e-4 : 1.0 / HostPixels::white(format);
    for (A_long y = 0; y < input.height(); ++y) {
        for (A_long x = 0; x < input.width(); ++x) {
            for (int channel = 0; channel < 4; ++channel) {
                EXPECT_NEAR(HostPixels::get(singleSample, x, y, channel), HostPixels::get(multisampled, x, y, channel),
                            tolerance + 1e-9)
                    << "pixel " << x << "," << y << " channel " << channel;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Depths, DepthTest,
                         ::testing::Values(PF_PixelFormat_ARGB32, PF_PixelFormat_ARGB64, PF_PixelFormat_ARGB128));

TEST_F(FrameTest, FramesOnOtherThreadsDrawIntoTheirOwnContexts)
{
    // Framebuffers and vertex arrays are not shared between contexts (Mesa
    // happens to share framebuffers, so the calls are counted as well as the
    // pictures checked); buffers and programs are.
    expectRoundTrip(PF_PixelFormat_ARGB32, 4, 3);
    {
        GLCallLog log;
        onAnotherThread([&] { expectRoundTrip(PF_PixelFormat_ARGB32, 4, 3); });
        EXPECT_EQ(log.count("glGenFramebuffers"), 3u) << "the other thread drew with this thread's framebuffers";
        EXPECT_EQ(log.count("glDeleteFramebuffers"), 0u);
        EXPECT_EQ(log.count("glGenVertexArrays"), 2u) << "one for each pass";
        EXPECT_EQ(log.count("glGenBuffers") + log.count("glCreateProgram"), 0u);
    }
    onAnotherThread([&] { expectRoundTrip(PF_PixelFormat_ARGB64, 5, 2); });
    {
        // The size changed elsewhere: this context's framebuffers are remade
        // here, where they can be deleted.
        GLCallLog log;
        expectRoundTrip(PF_PixelFormat_ARGB64, 5, 2);
        EXPECT_EQ(log.count("glDeleteFramebuffers"), 3u);
        EXPECT_EQ(log.count("glGenFramebuffers"), 3u);
    }
    expectRoundTrip(PF_PixelFormat_ARGB128, 3, 3);
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
