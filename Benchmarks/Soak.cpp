// QuorvexSoak [--frames=N] [--module=PATH]
//
// Renders a long clip through the effect as the command-line host does,
// switching glitch type and depth from frame to frame and the size every
// 500 frames, and shows that nothing piles up: resident memory, the host
// runtime's open handles and held suites, and the effect's live GL objects
// after the last frame against those after the first 100, both at
// 1280x720 after alike frames. Between frames the effect keeps its targets
// (final renderbuffer, the level's storage, the resolve texture) for the
// next frame of the same size and depth: both samples count them alike.
// Prints the figures; exits 1 when anything grew, 2 when the soak could not
// run.

#include "ClipPicture.h"
#include "Commands/FrameMemory.h"
#include "Commands/OpenGLReport.h"
#include "Media/Pictures/StandardOutputCapture.h"
#include "ModuleProfiler.h"
#include "Options/EffectSettings.h"
#include "Options/PixelDepth.h"
#include "Render/EffectHost.h"
#include "SoakSample.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace {

using namespace Halvane::Quorvex;
using namespace Halvane::Quorvex::Benchmarks;

constexpr std::size_t kFrames = 2000;
constexpr std::size_t kBaselineFrames = 100;
constexpr std::size_t kFramesPerSize = 500;
constexpr int kFramesPerSecond = 24;

struct Size {
    int mWidth;
    int mHeight;
};

// 1280x720 first and last, so that the baseline and the end compare alike.
constexpr Size kSizes[] = {{1280, 720}, {1920, 1080}, {960, 540}, {1280, 720}};
constexpr std::size_t kSizeCount = sizeof kSizes / sizeof kSizes[0];

// The glitch type alternates every frame and the depth steps 8, 16, 32, 8,
// 16: all six pairs come up every ten frames, and ten divides the 1900
// frames between the baseline and the end, so both follow the same pair.
constexpr std::size_t kPatternFrames = 10;
constexpr Tools::PixelDepth kDepthSteps[] = {Tools::PixelDepth::Eight, Tools::PixelDepth::Sixteen,
                                             Tools::PixelDepth::Float, Tools::PixelDepth::Eight,
                                             Tools::PixelDepth::Sixteen};
static_assert((kFrames - kBaselineFrames) % kPatternFrames == 0);
static_assert(kFrames / kFramesPerSize == kSizeCount);

// What the allocator and the driver may hold beyond the baseline without a
// leak, after the allocator has handed back what it could: heap pages left
// partly used once the 1920x1080 blocks came and went, and llvmpipe's scene
// and tile memory, which grows in steps. Runs on llvmpipe end about 0.5 MiB
// above the baseline. A leak of GL objects shows in their count however
// small; one that leaks every frame or every size change passes this within
// a few frames (a 1280x720 picture is 3.5 MiB at 8 bits).
constexpr long kResidentToleranceBytes = 4L * 1024 * 1024;

std::string SizeText(const Size& size)
{
    return std::to_string(size.mWidth) + "x" + std::to_string(size.mHeight);
}

const Size& SizeOfFrame(std::size_t frame)
{
    return kSizes[(frame / kFramesPerSize) % kSizeCount];
}

bool TakeOption(int argc, char** argv, const std::string& name, std::string& value)
{
    const std::string prefix = "--" + name + "=";
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], prefix.c_str(), prefix.size()) == 0) {
            value = argv[i] + prefix.size();
            return true;
        }
    }
    return false;
}

int Soak(const std::string& modulePath, std::size_t frames)
{
    Tools::EffectHost effect(modulePath);
    const ModuleProfiler profiler(modulePath);
    if (!profiler.available()) {
        std::cerr << "QuorvexSoak: '" << modulePath
                  << "' cannot count its GL objects; load the profiled module QuorvexProfiled.so\n";
        return 2;
    }
    std::cout << "Soak: " << frames << " frames, glitch type and depth changing every frame, size every "
              << kFramesPerSize << " frames\nmodule: " << modulePath << "\n";

    std::vector<SoakSample> samples;
    const auto started = std::chrono::steady_clock::now();
    for (std::size_t frame = 0; frame < frames; ++frame) {
        const Size& size = SizeOfFrame(frame);
        const int glitchType = frame % 2 == 0 ? 1 : 2;
        const Tools::PixelDepth depth = kDepthSteps[(frame % kPatternFrames) % 5];
        const Tools::RgbaFrame picture = ClipPicture::frameAt(frame, size.mWidth, size.mHeight);
        const Host::FrameTime time{static_cast<A_long>(frame), 1, kFramesPerSecond};
        const auto render = [&] {
            effect.apply(Tools::EffectSettings::constant(glitchType));
            effect.render(picture, depth, time, "frame " + std::to_string(frame));
        };
        if (frame == 0) {
            // The module reports its OpenGL as it makes its contexts: at
            // set-up and at the first frame.
            Tools::StandardOutputCapture capture;
            effect.setUp();
            render();
            const Tools::OpenGLReport openGL = Tools::OpenGLReport::parse(capture.finish());
            std::cout << "OpenGL renderer: " << openGL.renderer() << "\n\n";
            SoakSample::printHeading(std::cout);
        } else {
            render();
        }
        const std::size_t done = frame + 1;
        if (done == kBaselineFrames || done % kFramesPerSize == 0 || done == frames) {
            samples.push_back(SoakSample::take(done, SizeText(size), effect.runtime(), profiler));
            samples.back().print(std::cout);
        }
    }
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - started;
    effect.setDown();
    std::cout << "\n" << frames << " frames in " << seconds.count() << " s ("
              << static_cast<double>(frames) / seconds.count() << " frames/s)\n";

    const SoakSample& baseline = samples.front();
    const SoakSample& end = samples.back();
    if (baseline.mSize != end.mSize) {
        std::cout << "The first and last samples are of different sizes; nothing compared.\n";
        return 2;
    }
    const std::vector<std::string> grown = baseline.growthTo(end, kResidentToleranceBytes);
    if (grown.empty()) {
        std::cout << "Nothing grew between frame " << baseline.mFrames << " and frame " << end.mFrames
                  << " (resident memory within " << kResidentToleranceBytes / (1024 * 1024) << " MiB).\n";
        return 0;
    }
    std::cout << "Grew between frame " << baseline.mFrames << " and frame " << end.mFrames << ":\n";
    for (const std::string& line : grown) {
        std::cout << "  " << line << "\n";
    }
    return 1;
}

}  // namespace

int main(int argc, char** argv)
{
    std::string modulePath = QUORVEX_PROFILED_MODULE_PATH;
    std::string framesText;
    TakeOption(argc, argv, "module", modulePath);
    // Frames are measured in a process set up as quorvex sets itself up.
    Halvane::Quorvex::Tools::KeepFrameMemoryBetweenFrames();
    std::size_t frames = kFrames;
    if (TakeOption(argc, argv, "frames", framesText)) {
        frames = std::strtoul(framesText.c_str(), nullptr, 10);
        if (frames < kBaselineFrames) {
            std::cerr << "QuorvexSoak: --frames=" << framesText << ": give at least " << kBaselineFrames << "\n";
            return 2;
        }
    }
    try {
        return Soak(modulePath, frames);
    } catch (const std::exception& error) {
        std::cerr << "QuorvexSoak: " << error.what() << "\n";
        return 2;
    }
}
