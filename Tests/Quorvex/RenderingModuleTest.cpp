#include "RenderingModuleTest.h"

#include "RandomProbe.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Halvane::Quorvex::Testing {

using Host::FrameTime;
using Host::World;

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

std::unique_ptr<World> RenderingModuleTest::makePicture(int width, int height, PF_PixelFormat format,
                                                        int padding)
{
    auto world = std::make_unique<World>(width, height, format, padding);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const float fx = static_cast<float>(x) / static_cast<float>(width);
            const float fy = static_cast<float>(y) / static_cast<float>(height);
            const float alpha = 0.55f + 0.45f * (fx + fy) / 2.0f;
            const float red = 0.15f + 0.7f * fx;
            const float green = 0.2f + 0.6f * fy;
            const float blue = 0.5f + 0.35f * std::sin(6.0f * fx + 4.0f * fy);
            switch (format) {
            case PF_PixelFormat_ARGB32: {
                auto value = [](float v) { return static_cast<A_u_char>(std::lround(v * 255.0f)); };
                world->pixel8(x, y) = PF_Pixel8{value(alpha), value(red), value(green), value(blue)};
                break;
            }
            case PF_PixelFormat_ARGB64: {
                auto value = [](float v) { return static_cast<A_u_short>(std::lround(v * 32768.0f)); };
                world->pixel16(x, y) = PF_Pixel16{value(alpha), value(red), value(green), value(blue)};
                break;
            }
            default:
                world->pixelFloat(x, y) = PF_PixelFloat{alpha, red, green, blue};
                break;
            }
        }
    }
    return world;
}

std::vector<std::array<float, 4>> RenderingModuleTest::pixelsOf(World& world)
{
    std::vector<std::array<float, 4>> pixels;
    for (int y = 0; y < world.height(); ++y) {
        for (int x = 0; x < world.width(); ++x) {
            switch (world.format()) {
            case PF_PixelFormat_ARGB32: {
                const PF_Pixel8& p = world.pixel8(x, y);
                pixels.push_back({float(p.alpha), float(p.red), float(p.green), float(p.blue)});
                break;
            }
            case PF_PixelFormat_ARGB64: {
                const PF_Pixel16& p = world.pixel16(x, y);
                pixels.push_back({float(p.alpha), float(p.red), float(p.green), float(p.blue)});
                break;
            }
            default: {
                const PF_PixelFloat& p = world.pixelFloat(x, y);
                pixels.push_back({p.alpha, p.red, p.green, p.blue});
                break;
            }
            }
        }
    }
    return pixels;
}

void RenderingModuleTest::mark(World& world)
{
    for (int y = 0; y < world.height(); ++y) {
        std::memset(world.row(y), 0x3C, static_cast<std::size_t>(world.width()) * world.pixelSize());
    }
}

bool RenderingModuleTest::isMarked(World& world)
{
    for (int y = 0; y < world.height(); ++y) {
        const unsigned char* row = world.row(y);
        for (std::size_t i = 0; i < static_cast<std::size_t>(world.width()) * world.pixelSize(); ++i) {
            if (row[i] != 0x3C) {
                return false;
            }
        }
    }
    return true;
}

PF_Err RenderingModuleTest::render(World& input, World& output, double seconds, GlitchType type,
                                   double speed)
{
    host.parameter(1).setValue(static_cast<double>(type));
    host.parameter(2).setValue(speed);
    const PF_Err err =
        session.renderFrame(input, output, FrameTime::atSeconds(seconds, kTimeScale));
    EXPECT_TRUE(hostIsCurrent()) << "the frame left the host's context changed";
    return err;
}

std::vector<ModelPixel> RenderingModuleTest::model(World& input, double seconds, GlitchType type,
                                                   double speed)
{
    // iTime as the module computes it: seconds in single precision, then Speed.
    const FrameTime time = FrameTime::atSeconds(seconds, kTimeScale);
    const float iTime = static_cast<float>(time.value) / static_cast<float>(time.scale) *
                        static_cast<float>(speed);
    const GlitchModel glitch(input.width(), input.height(), input.format(), pixelsOf(input));
    // The probe draws in the host's context, which is current between frames.
    if (type == GlitchType::Block) {
        return glitch.blockGlitch(RandomProbe::blockGlitch(iTime));
    }
    return glitch.badTV(RandomProbe::badTV(iTime), iTime);
}

float RenderingModuleTest::tolerance(PF_PixelFormat format)
{
    switch (format) {
    case PF_PixelFormat_ARGB32:
        return 1.0f;
    case PF_PixelFormat_ARGB64:
        return 2.0f;
    default:
        return 3.0f / 65535.0f;
    }
}

void RenderingModuleTest::expectMatchesModel(World& output, const std::vector<ModelPixel>& expected,
                                             float limit, const std::string& what)
{
    const std::vector<std::array<float, 4>> actual = pixelsOf(output);
    ASSERT_EQ(actual.size(), expected.size()) << what;
    std::size_t certain = 0;
    std::size_t wrong = 0;
    float worst = 0.0f;
    std::string firstWrong;
    for (std::size_t i = 0; i < actual.size(); ++i) {
        if (!expected[i].certain) {
            continue;
        }
        ++certain;
        for (int c = 0; c < 4; ++c) {
            const float difference = std::fabs(actual[i][c] - expected[i].argb[c]);
            worst = std::max(worst, difference);
            if (difference > limit) {
                if (wrong++ == 0) {
                    const auto x = i % static_cast<std::size_t>(output.width());
                    const auto y = i / static_cast<std::size_t>(output.width());
                    firstWrong = "pixel (" + std::to_string(x) + ", " + std::to_string(y) +
                                 ") channel " + "ARGB"[c] + ": " + std::to_string(actual[i][c]) +
                                 " where the model has " + std::to_string(expected[i].argb[c]);
                }
            }
        }
    }
    EXPECT_EQ(wrong, 0u) << what << ": " << wrong << " channels beyond " << limit << ", first "
                         << firstWrong << "; largest difference " << worst;
    EXPECT_GE(certain, actual.size() * 9 / 10) << what << ": too few pixels the model vouches for";
}

}  // namespace Halvane::Quorvex::Testing
