#include "RenderingModuleTest.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Halvane::Quorvex::Testing {

using Host::FrameTime;
using Host::World;

namespace {

// The pixels in host units, A,R,G,B, row 0 first.
std::vector<std::array<float, 4>> PixelsOf(World& world)
{
    const double white = HostPixels::white(world.format());
    std::vector<std::array<float, 4>> pixels;
    for (A_long y = 0; y < world.height(); ++y) {
        for (A_long x = 0; x < world.width(); ++x) {
            std::array<float, 4>& pixel = pixels.emplace_back();
            for (int channel = 0; channel < 4; ++channel) {
                pixel[channel] = static_cast<float>(HostPixels::get(world, x, y, channel) * white);
            }
        }
    }
    return pixels;
}

}  // namespace

void RenderingModuleTest::SetUp()
{
    LoadedModuleTestOn<GLContextTest>::SetUp();
    ASSERT_EQ(session.globalSetup(), PF_Err_NONE);
    ASSERT_TRUE(hostIsCurrent()) << "global set-up left the host's context changed";
    ASSERT_EQ(session.paramsSetup(), PF_Err_NONE);
}

void RenderingModuleTest::TearDown()
{
    EXPECT_EQ(session.globalSetdown(), PF_Err_NONE);
    EXPECT_TRUE(hostIsCurrent()) << "global set-down left the host's context changed";
    LoadedModuleTestOn<GLContextTest>::TearDown();
}

std::unique_ptr<World> RenderingModuleTest::makePicture(int width, int height, PF_PixelFormat format, int padding)
{
    auto world = std::make_unique<World>(width, height, format, padding);
    HostPixels::fill(*world, [&](A_long x, A_long y, int channel) {
        const double fx = static_cast<double>(x) / width;
        const double fy = static_cast<double>(y) / height;
        const double argb[4] = {0.55 + 0.45 * (fx + fy) / 2.0, 0.15 + 0.7 * fx, 0.2 + 0.6 * fy,
                                0.5 + 0.35 * std::sin(6.0 * fx + 4.0 * fy)};
        return argb[channel];
    });
    return world;
}

void RenderingModuleTest::mark(World& world)
{
    for (A_long y = 0; y < world.height(); ++y) {
        std::memset(world.row(y), 0x3C, static_cast<std::size_t>(world.width()) * world.pixelSize());
    }
}

std::string RenderingModuleTest::describe(PF_PixelFormat format, GlitchType type, double seconds, double speed)
{
    const char* depth = format == PF_PixelFormat_ARGB32 ? "8-bit" : format == PF_PixelFormat_ARGB64 ? "16-bit" : "float";
    return std::string(depth) + (type == GlitchType::Block ? " Block Glitch" : " Bad TV") + " at " +
           std::to_string(seconds) + " s, Speed " + std::to_string(speed);
}

PF_Err RenderingModuleTest::render(World& input, World& output, double seconds, GlitchType type, double speed)
{
    host.parameter(1).setValue(static_cast<double>(type));
    host.parameter(2).setValue(speed);
    const PF_Err err = session.renderFrame(input, output, FrameTime::atSeconds(seconds, kTimeScale));
    EXPECT_TRUE(hostIsCurrent()) << "the frame left the host's context changed";
    return err;
}

void RenderingModuleTest::expectMatchesModel(World& output, World& input, double seconds, GlitchType type,
                                             double speed, const std::string& what)
{
    // iTime as the module computes it: seconds in single precision, then Speed.
    const FrameTime time = FrameTime::atSeconds(seconds, kTimeScale);
    const float iTime = GlitchFrameValues::shaderTime(static_cast<float>(time.value) / static_cast<float>(time.scale),
                                                      static_cast<float>(speed));
    const GlitchModel glitch(input.width(), input.height(), input.format(), PixelsOf(input));
    const std::vector<ModelPixel> expected =
        type == GlitchType::Block ? glitch.blockGlitch(GlitchFrameValues::blockGlitch(iTime))
                                  : glitch.badTV(GlitchFrameValues::badTV(iTime, input.height()));
    const float limit = input.format() == PF_PixelFormat_ARGB32   ? 1.0f
                        : input.format() == PF_PixelFormat_ARGB64 ? 2.0f
                                                                  : 3.0f / 65535.0f;

    const std::vector<std::array<float, 4>> actual = PixelsOf(output);
    ASSERT_EQ(actual.size(), expected.size()) << what;
    std::size_t certain = 0;
    std::size_t wrong = 0;
    float worst = 0.0f;
    std::string firstWrong;
    const auto width = static_cast<std::size_t>(output.width());
    for (std::size_t i = 0; i < actual.size(); ++i) {
        certain += expected[i].certain ? 1 : 0;
        for (int c = 0; c < 4 && expected[i].certain; ++c) {
            const float difference = std::fabs(actual[i][c] - expected[i].argb[c]);
            worst = std::max(worst, difference);
            if (difference > limit && wrong++ == 0) {
                firstWrong = "pixel (" + std::to_string(i % width) + ", " +
                             std::to_string(i / width) + ") channel " + "ARGB"[c] + ": " +
                             std::to_string(actual[i][c]) + " where the model has " +
                             std::to_string(expected[i].argb[c]);
            }
        }
    }
    EXPECT_EQ(wrong, 0u) << what << ": " << wrong << " channels beyond " << limit << ", first " << firstWrong
                         << "; largest difference " << worst;
    EXPECT_GE(certain, actual.size() * 9 / 10) << what << ": too few pixels the model vouches for";
}

}  // namespace Halvane::Quorvex::Testing
