// The same frames through this process's GL driver and through Mesa's
// softpipe in a child process: the glitch's randomness is computed once per
// frame on the CPU, so two drivers draw the same glitch and differ only in
// how they filter the texture.
#include "RenderingModuleTest.h"
#include "Tools/Support/ToolProcess.h"

#include <glbinding/gl/gl.h>

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace Halvane::Quorvex::Testing {
namespace {

using Host::World;

// Set in the child: where it writes its frames.
constexpr const char* kFramesFileVariable = "QUORVEX_CROSS_DRIVER_FRAMES";
constexpr int kWidth = 128;
constexpr int kHeight = 72;

struct Case {
    GlitchType type;
    PF_PixelFormat format;
    double seconds;
    double speed;
};

std::vector<Case> Cases()
{
    // From the first frame to three hours: the sine arguments grow with time.
    const double moments[] = {0.0, 0.28, 7.3, 95.04, 1234.56, 3600.0, 5432.1, 10799.88};
    std::vector<Case> cases;
    for (PF_PixelFormat format : kFormats) {
        for (double seconds : moments) {
            cases.push_back({GlitchType::Block, format, seconds, 1.0});
            cases.push_back({GlitchType::BadTV, format, seconds, 1.5});
        }
    }
    return cases;
}

// What a driver made of all cases: its renderer's name, and every frame's
// channels in 8-bit levels, one frame after the other.
struct DriverFrames {
    std::string renderer;
    std::vector<float> levels;
};
constexpr std::size_t kFrameLevels = kWidth * kHeight * 4;

void Write(const DriverFrames& driver, const std::string& path)
{
    std::ofstream file(path, std::ios::binary);
    file << driver.renderer << '\n';
    file.write(reinterpret_cast<const char*>(driver.levels.data()),
               static_cast<std::streamsize>(driver.levels.size() * sizeof(float)));
    file.close();
    ASSERT_TRUE(file) << "cannot write " << path;
}

// No levels where the file does not hold `count` of them.
DriverFrames Read(const std::string& path, std::size_t count)
{
    std::ifstream file(path, std::ios::binary);
    DriverFrames driver{{}, std::vector<float>(count)};
    std::getline(file, driver.renderer);
    if (!file.read(reinterpret_cast<char*>(driver.levels.data()), static_cast<std::streamsize>(count * sizeof(float)))) {
        driver.levels.clear();
    }
    return driver;
}

class CrossDriverTest : public RenderingModuleTest {
protected:
    // Hard edges as well as gradients, so that every tap of the texture filter
    // counts: colour bars across the top, a disc, and a fine checker at the
    // bottom, over the smooth test picture.
    static std::unique_ptr<World> picture(PF_PixelFormat format)
    {
        auto world = makePicture(kWidth, kHeight, format);
        World& smooth = *world;
        HostPixels::fill(smooth, [&smooth](A_long x, A_long y, int channel) {
            const double fx = static_cast<double>(x) / kWidth;
            const double fy = static_cast<double>(y) / kHeight;
            if (channel != 0 && fy < 0.3) {
                return (static_cast<int>(fx * 8.0) >> (channel - 1)) & 1 ? 0.9 : 0.1;
            }
            if (channel != 0 && (fx - 0.6) * (fx - 0.6) + (fy - 0.55) * (fy - 0.55) < 0.03) {
                return channel == 1 ? 0.95 : 0.2;
            }
            if (channel != 0 && fy > 0.8) {
                return ((x / 2 + y / 2) & 1) != 0 ? 0.8 : 0.25;
            }
            return HostPixels::get(smooth, x, y, channel);
        });
        return world;
    }

    DriverFrames renderAll()
    {
        DriverFrames driver;
        driver.renderer = reinterpret_cast<const char*>(gl::glGetString(gl::GL_RENDERER));
        for (const Case& c : Cases()) {
            const auto input = picture(c.format);
            World output(kWidth, kHeight, c.format);
            EXPECT_EQ(render(*input, output, c.seconds, c.type, c.speed), PF_Err_NONE)
                << describe(c.format, c.type, c.seconds, c.speed);
            for (A_long y = 0; y < kHeight; ++y) {
                for (A_long x = 0; x < kWidth; ++x) {
                    for (int channel = 0; channel < 4; ++channel) {
                        driver.levels.push_back(static_cast<float>(HostPixels::get(output, x, y, channel) * 255.0));
                    }
                }
            }
        }
        return driver;
    }
};

// Targets, in 8-bit levels at every depth: Block Glitch within one level on
// 99.9% of each frame's pixels; Bad TV, whose gain of 1.5 and channel
// products amplify the drivers' filtering, within one level on 98.5% and no
// pixel more than 8 apart. A glitch drawn from another random number moves
// whole bands and rows by tens of levels.
TEST_F(CrossDriverTest, FramesAgreeWithSoftpipe)
{
    const DriverFrames here = renderAll();
    if (const char* path = std::getenv(kFramesFileVariable)) {
        Write(here, path);
        return;
    }

    if (here.renderer.find("softpipe") != std::string::npos) {
        GTEST_SKIP() << "this process draws on softpipe itself (GALLIUM_DRIVER): there is no second driver";
    }

    char frames[] = "/tmp/quorvex-cross-driver-XXXXXX";
    const int descriptor = mkstemp(frames);
    ASSERT_GE(descriptor, 0) << "cannot make a temporary file";
    close(descriptor);
    const ::testing::TestInfo* test = ::testing::UnitTest::GetInstance()->current_test_info();
    ToolProcess child(std::filesystem::read_symlink("/proc/self/exe"),
                      {std::string("--gtest_filter=") + test->test_suite_name() + "." + test->name()},
                      {{kFramesFileVariable, frames}, {"GALLIUM_DRIVER", "softpipe"}, {"QUORVEX_EGL_PLATFORM", "surfaceless"}},
                      false);
    const ToolResult result = child.wait();
    const std::vector<Case> cases = Cases();
    const DriverFrames there = Read(frames, cases.size() * kFrameLevels);
    std::remove(frames);
    ASSERT_EQ(result.exitCode, 0) << "the softpipe run failed:\n" << result.out << result.err;
    ASSERT_EQ(there.levels.size(), here.levels.size()) << "the softpipe run left no whole set of frames";
    ASSERT_NE(there.renderer.find("softpipe"), std::string::npos) << "the child ran on " << there.renderer;
    ASSERT_NE(here.renderer, there.renderer) << "both runs drew on one driver";

    for (std::size_t i = 0; i < cases.size(); ++i) {
        const float* a = here.levels.data() + i * kFrameLevels;
        const float* b = there.levels.data() + i * kFrameLevels;
        std::size_t withinOne = 0;
        float worst = 0.0f;
        for (std::size_t pixel = 0; pixel < kFrameLevels; pixel += 4) {
            float difference = 0.0f;
            for (std::size_t channel = pixel; channel < pixel + 4; ++channel) {
                difference = std::max(difference, std::fabs(a[channel] - b[channel]));
            }
            // A hair over one level at 16 bits and float is one level at 8.
            withinOne += difference <= 1.0f + 1e-3f ? 1 : 0;
            worst = std::max(worst, difference);
        }
        const double share = static_cast<double>(withinOne) / static_cast<double>(kFrameLevels / 4);
        const Case& c = cases[i];
        const std::string what = describe(c.format, c.type, c.seconds, c.speed) + " on " + here.renderer + " and " +
                                 there.renderer;
        if (c.type == GlitchType::Block) {
            EXPECT_GE(share, 0.999) << what << ": largest difference " << worst << " levels";
        } else {
            EXPECT_GE(share, 0.985) << what << ": largest difference " << worst << " levels";
            EXPECT_LE(worst, 8.0f) << what << ": " << share * 100.0 << "% within one level";
        }
        std::printf("%s: %.2f%% within one level, largest difference %.1f levels\n", what.c_str(), share * 100.0,
                    static_cast<double>(worst));
    }
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
