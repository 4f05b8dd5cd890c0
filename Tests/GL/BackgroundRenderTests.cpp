// The background pass undoes what the screen pass does: through both, a frame gives its input back to the depth's
// rounding.
#include "RenderContextTest.h"

namespace Halvane::Quorvex::Testing {
namespace {

using Host::World;

class BackgroundRenderTest : public RenderContextTest, public ::testing::WithParamInterface<PF_PixelFormat> {};

TEST_P(BackgroundRenderTest, ThroughTheScreenPassAFrameGivesItsInputBack)
{
    const PF_PixelFormat format = GetParam();
    World input(7, 5, format);
    World output(7, 5, format);
    // Distinct opaque colours, every third pixel half transparent.
    HostPixels::fill(input, [](A_long x, A_long y, int channel) {
        return channel == 0 ? ((x + 7 * y) % 3 == 2 ? 0.5 : 1.0) : ((x * 5 + y * 11 + channel * 7) % 23) / 22.0;
    });
    PF_InData inData = mHost.inData();
    frame().prepare(7, 5, false, AEOpenGLUtilities::RenderTargetFormat(format));
    frame().beginDrawing();
    unsigned long pixelSize = 0;
    gl::GLenum type = gl::GL_NONE;
    float multiplier = 0.0f;
    const gl::GLuint texture = AEOpenGLUtilities::UploadTexture(format, input.layer(), output.layer(), &inData,
                                                                pixelSize, type, multiplier, false);
    BackgroundRender().draw(texture, multiplier);
    gl::glDeleteTextures(1, &texture);
    frame().endDrawing(multiplier);
    AEOpenGLUtilities::DownloadTexture(7, 5, input.layer(), output.layer(), &inData, format, pixelSize, type);

    const double tolerance = format == PF_PixelFormat_ARGB128 ? 1e-4 : 1.0 / HostPixels::white(format);
    for (A_long y = 0; y < input.height(); ++y) {
        for (A_long x = 0; x < input.width(); ++x) {
            // Opaque pixels come back exactly at integer depths.
            const bool exact = HostPixels::get(input, x, y, 0) == 1.0 && format != PF_PixelFormat_ARGB128;
            for (int channel = 0; channel < 4; ++channel) {
                EXPECT_NEAR(HostPixels::get(output, x, y, channel), HostPixels::get(input, x, y, channel),
                            exact ? 0.0 : tolerance + 1e-9)
                    << "pixel " << x << "," << y << " channel " << channel;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Depths, BackgroundRenderTest,
                         ::testing::Values(PF_PixelFormat_ARGB32, PF_PixelFormat_ARGB64, PF_PixelFormat_ARGB128));

}  // namespace
}  // namespace Halvane::Quorvex::Testing
