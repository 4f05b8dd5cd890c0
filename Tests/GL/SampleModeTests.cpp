// The effect's frames draw single-sample, other callers of the frame buffer may multisample: through a pass
// that changes nothing, both give the input back to the depth's rounding.
#include "RenderContextTest.h"

#include <memory>

namespace Halvane::Quorvex::Testing {
namespace {

using Host::World;

class SampleModeTest : public RenderContextTest, public ::testing::WithParamInterface<PF_PixelFormat> {
protected:
    void runFrame(World& input, World& output, bool multisample)
    {
        PF_InData inData = mHost.inData();
        const PF_PixelFormat format = input.format();
        frame().prepare(input.width(), input.height(), multisample, AEOpenGLUtilities::RenderTargetFormat(format));
        frame().beginDrawing();
        unsigned long pixelSize = 0;
        gl::GLenum type = gl::GL_NONE;
        float multiplier = 0.0f;
        const gl::GLuint texture = AEOpenGLUtilities::UploadTexture(format, input.layer(), output.layer(), &inData,
                                                                    pixelSize, type, multiplier, false);
        mUnchanged->draw(texture, multiplier);
        gl::glDeleteTextures(1, &texture);
        frame().endDrawing(multiplier);
        AEOpenGLUtilities::DownloadTexture(static_cast<unsigned>(input.width()), static_cast<unsigned>(input.height()),
                                           input.layer(), output.layer(), &inData, format, pixelSize, type);
    }

    std::unique_ptr<BackgroundRender> mUnchanged = std::make_unique<BackgroundRender>();
};

TEST_P(SampleModeTest, SingleSampleAndMultisampledFramesAgree)
{
    const PF_PixelFormat format = GetParam();
    World input(7, 5, format);
    // Distinct opaque colours, every third pixel half transparent.
    HostPixels::fill(input, [](A_long x, A_long y, int channel) {
        const A_long index = x + 7 * y;
        return channel == 0 ? (index % 3 == 2 ? 0.5 : 1.0) : ((x * 5 + y * 11 + channel * 7) % 23) / 22.0;
    });
    World multisampled(7, 5, format);
    World singleSample(7, 5, format);
    runFrame(input, multisampled, true);
    frame().destory();  // forgets the size, so that the sample mode can change
    runFrame(input, singleSample, false);
    // The passes made what they need at their first frame, and keep it.
    const auto made = liveObjects();
    runFrame(input, singleSample, false);
    EXPECT_EQ(liveObjects(), made) << "a second frame made or deleted something";
    mUnchanged.reset();
    EXPECT_EQ(liveObjects().size(), made.size() - 3) << "the pass kept its program, vertex array or buffer";

    const double step = 1.0 / HostPixels::white(format);
    const double tolerance = format == PF_PixelFormat_ARGB128 ? 1e-4 : step;
    for (A_long y = 0; y < input.height(); ++y) {
        for (A_long x = 0; x < input.width(); ++x) {
            const bool opaque = HostPixels::get(input, x, y, 0) == 1.0;
            for (int channel = 0; channel < 4; ++channel) {
                SCOPED_TRACE("pixel " + std::to_string(x) + "," + std::to_string(y) + " channel " +
                             std::to_string(channel));
                const double single = HostPixels::get(singleSample, x, y, channel);
                // Opaque pixels come back exactly at integer depths.
                EXPECT_NEAR(single, HostPixels::get(input, x, y, channel),
                            opaque && format != PF_PixelFormat_ARGB128 ? 0.0 : tolerance + 1e-9);
                EXPECT_NEAR(single, HostPixels::get(multisampled, x, y, channel), tolerance + 1e-9);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Depths, SampleModeTest,
                         ::testing::Values(PF_PixelFormat_ARGB32, PF_PixelFormat_ARGB64, PF_PixelFormat_ARGB128));

}  // namespace
}  // namespace Halvane::Quorvex::Testing
