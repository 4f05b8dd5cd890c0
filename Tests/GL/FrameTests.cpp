// Whole frames as the effect runs them (prepare, beginDrawing, upload, a
// draw that changes nothing, endDrawing, download) on llvmpipe: the picture
// comes back at every depth, on any thread's context, and after the GL
// runtime was set down and up again.
#include "RenderContextTest.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

using namespace gl;

namespace Halvane::Quorvex::Testing {
namespace {

using Host::World;

// Opaque pixels with distinct colours in every row and column, the first
// one the host's white (16-bit white, 32768, must come back exactly); every fourth pixel half transparent and every fifth
// fully transparent with colour left in it. Float pixels of column 1 go
// beyond white.
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
    // The frame as the host would see it: transparent pixels lose their
    // colour, values are clamped to white, and partly transparent colours
    // are as exact as premultiplying in the target allows.
    static void expectFrameOf(World& input, World& output)
    {
        const PF_PixelFormat format = input.format();
        const double white = HostPixels::white(format);
        const bool isFloat = format == PF_PixelFormat_ARGB128;
        ASSERT_TRUE(output.paddingIntact()) << "a row's padding was written";
        int mismatches = 0;
        for (A_long y = 0; y < input.height(); ++y) {
            for (A_long x = 0; x < input.width(); ++x) {
                const double alpha = HostPixels::get(input, x, y, 0);
                for (int channel = 0; channel < 4 && mismatches < 8; ++channel) {
                    const double value = HostPixels::get(input, x, y, channel);
                    const double expected = alpha == 0.0 ? 0.0 : std::clamp(value, 0.0, 1.0);
                    const double tolerance = isFloat ? (alpha == 1.0 ? 2e-5 : 1e-4) : (alpha == 1.0 ? 0.0 : 1.0 / white);
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

    // A picture of `width` by `height` pixels, its frame run, and the result
    // checked.
    void expectRoundTrip(PF_PixelFormat format, A_long width, A_long height)
    {
        SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height));
        World input(width, height, format, 3 * static_cast<A_long>(World::pixelSize(format)));
        World output(width, height, format, 40);
        HostPixels::fill(input, [&](A_long x, A_long y, int channel) { return Picture(format, x, y, channel); });
        runFrame(input, output);
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
        expectFrameOf(input, output);
    }
};

class DepthTest : public FrameTest, public ::testing::WithParamInterface<PF_PixelFormat> {};

TEST_P(DepthTest, AFrameComesBackUprightAndUnchanged)
{
    expectRoundTrip(GetParam(), 7, 5);
    EXPECT_EQ(mHost.suites().outstanding(), 0u);
    EXPECT_EQ(mHost.handles().openHandles(), 0u);
    EXPECT_THAT(frame().renderBufferStack(), ::testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Depths, DepthTest,
                         ::testing::Values(PF_PixelFormat_ARGB32, PF_PixelFormat_ARGB64, PF_PixelFormat_ARGB128));

TEST_F(FrameTest, FramesOnOtherThreadsDrawIntoTheirOwnContexts)
{
    // Framebuffers are not shared between contexts (Mesa happens to share
    // them, so the calls are counted as well as the pictures checked).
    expectRoundTrip(PF_PixelFormat_ARGB32, 4, 3);
    {
        GLCallLog log;
        onAnotherThread([&] { expectRoundTrip(PF_PixelFormat_ARGB32, 4, 3); });
        EXPECT_EQ(log.count("glGenFramebuffers"), 3u) << "the other thread drew with this thread's framebuffers";
        EXPECT_EQ(log.count("glDeleteFramebuffers"), 0u);
        EXPECT_EQ(log.count("glGenVertexArrays"), 2u) << "one for each pass";
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

TEST_F(FrameTest, AFrameAfterSetDownAndSetUpAgainIsDrawn)
{
    expectRoundTrip(PF_PixelFormat_ARGB32, 4, 3);
    const GLuint renderBuffer = frame().renderBuffer();

    // Set-down as the effect does it, then a new set-up in this process.
    mBackground.reset();
    AEOpenGLContextManager::getSharedDataContext()->makeContextCurrent();
    frame().destory();
    EXPECT_EQ(glIsRenderbuffer(renderBuffer), GL_FALSE);
    AEOpenGLContextManager::releaseContextManager();
    AEOpenGLContextManager::setupContextManager();
    AEOpenGLContextManager::getCurrentRenderContext()->makeContextCurrent();
    mBackground.emplace();

    expectRoundTrip(PF_PixelFormat_ARGB32, 4, 3);
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
