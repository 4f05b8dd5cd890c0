#include "FrameBenchmarks.h"

#include "BenchmarkTable.h"
#include "ClipPicture.h"
#include "LoadedEffect.h"
#include "Options/PixelDepth.h"
#include "Render/FrameConverter.h"

#include "Runtime/World.h"

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <exception>
#include <memory>

namespace Halvane::Quorvex::Benchmarks {

namespace {

using Clock = std::chrono::steady_clock;

struct FrameCase {
    int mWidth;
    int mHeight;
    Tools::PixelDepth mDepth;
    int mGlitchType;  // the popup value
};

struct Size {
    int mWidth;
    int mHeight;
};

constexpr Size kSizes[] = {{1280, 720}, {1920, 1080}, {3840, 2160}};
constexpr Tools::PixelDepth kDepths[] = {Tools::PixelDepth::Eight, Tools::PixelDepth::Sixteen,
                                         Tools::PixelDepth::Float};
constexpr int kGlitchTypes[] = {1, 2};

// The first frames at a new size or format remake the render targets, and
// llvmpipe compiles its shader variants at their first use: neither is a
// steady frame.
constexpr int kWarmUpFrames = 3;
// Timed frames of a 1920x1080 case; other sizes get as many as take about
// the same time, within the bounds.
constexpr double kFramesAt1080 = 48.0;
constexpr int kFewestFrames = 6;
constexpr int kMostFrames = 100;
// Synchronised frames for the stage split, as a share of the timed ones.
constexpr int kSplitFramesDivisor = 2;
constexpr int kFramesPerSecond = 24;
constexpr const char* kPageFaultsCounter = "page_faults";
constexpr const char* kCpuCounter = "cpu_ms";

std::unique_ptr<LoadedEffect> gEffect;
std::string gModulePath;

LoadedEffect& Effect()
{
    if (!gEffect) {
        gEffect = std::make_unique<LoadedEffect>(gModulePath);
    }
    return *gEffect;
}

int TimedFrames(const FrameCase& frameCase)
{
    const double scale = 1920.0 * 1080.0 / (static_cast<double>(frameCase.mWidth) * frameCase.mHeight);
    return std::clamp(static_cast<int>(std::lround(kFramesAt1080 * scale)), kFewestFrames, kMostFrames);
}

std::string GlitchName(int glitchType)
{
    return glitchType == 1 ? "BlockGlitch" : "BadTV";
}

std::string DepthLabel(Tools::PixelDepth depth)
{
    switch (depth) {
    case Tools::PixelDepth::Sixteen:
        return "16bit";
    case Tools::PixelDepth::Float:
        return "32bit";
    default:
        return "8bit";
    }
}

// Minor page faults of the whole process so far: memory touched for the
// first time since it was mapped, which llvmpipe's render targets cost
// whenever the allocator hands out fresh pages for them.
long PageFaults()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_minflt;
}

// Seconds of processor time that the whole process (llvmpipe's threads
// included) has used: on a shared machine the work of a frame, where the
// wall clock also counts the time others take.
double ProcessCpuSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Frames of a clip at 24 frames per second, so that the glitch moves on.
Host::FrameTime TimeOfFrame(std::size_t frame)
{
    return Host::FrameTime{static_cast<A_long>(frame), 1, kFramesPerSecond};
}

// The mean stage times of `frames` frames with the markers waiting for GL.
void MeasureStages(benchmark::State& state, LoadedEffect& effect, Host::World& input,
                   Host::World& output, int frames, std::size_t firstFrame)
{
    static const char* const kStageCounters[kQuorvexStageCount] = {
        "prepare_ms", "upload_ms", "effect_draw_ms", "resolve_ms", "screen_pass_ms", "read_back_ms"};
    const ModuleProfiler& profiler = effect.profiler();
    double stageSeconds[kQuorvexStageCount] = {};
    double frameSeconds = 0.0;
    profiler.setSynchronised(true);
    for (int frame = 0; frame < frames; ++frame) {
        effect.render(input, output, TimeOfFrame(firstFrame + static_cast<std::size_t>(frame)));
        const QuorvexFrameProfile profile = profiler.lastFrame().value();
        for (int stage = 0; stage < kQuorvexStageCount; ++stage) {
            stageSeconds[stage] += profile.mStageSeconds[stage];
        }
        frameSeconds += profile.mFrameSeconds;
    }
    profiler.setSynchronised(false);
    for (int stage = 0; stage < kQuorvexStageCount; ++stage) {
        state.counters[kStageCounters[stage]] = stageSeconds[stage] * 1e3 / frames;
    }
    state.counters["synchronised_ms"] = frameSeconds * 1e3 / frames;
}

void RunFrameCase(benchmark::State& state, FrameCase frameCase)
{
    try {
        LoadedEffect& effect = Effect();
        const PF_PixelFormat format = Tools::PixelFormatOf(frameCase.mDepth);
        Host::World input(frameCase.mWidth, frameCase.mHeight, format);
        Host::World output(frameCase.mWidth, frameCase.mHeight, format);
        Tools::FrameConverter::toWorld(ClipPicture::frameAt(0, frameCase.mWidth, frameCase.mHeight), input);
        effect.setGlitchType(frameCase.mGlitchType);
        const ModuleProfiler& profiler = effect.profiler();
        profiler.setSynchronised(false);

        std::size_t frame = 0;
        for (; frame < kWarmUpFrames; ++frame) {
            effect.render(input, output, TimeOfFrame(frame));
        }
        const long faultsBefore = PageFaults();
        const double cpuBefore = ProcessCpuSeconds();
        for (auto _ : state) {
            const Clock::time_point start = Clock::now();
            effect.render(input, output, TimeOfFrame(frame++));
            const std::chrono::duration<double> hostSeconds = Clock::now() - start;
            // The module's own clock covers SmartRender alone; the production
            // module has none, and then the host's whole call is timed.
            const std::optional<QuorvexFrameProfile> profile = profiler.lastFrame();
            state.SetIterationTime(profile ? profile->mFrameSeconds : hostSeconds.count());
        }
        state.counters[kCpuCounter] = (ProcessCpuSeconds() - cpuBefore) * 1e3 / static_cast<double>(state.iterations());
        state.counters[kPageFaultsCounter] =
            static_cast<double>(PageFaults() - faultsBefore) / static_cast<double>(state.iterations());
        if (profiler.available()) {
            const int splitFrames = std::max(kFewestFrames / 2, TimedFrames(frameCase) / kSplitFramesDivisor);
            MeasureStages(state, effect, input, output, splitFrames, frame);
        }
        state.counters[BenchmarkTable::kPixelsCounter] =
            static_cast<double>(frameCase.mWidth) * frameCase.mHeight;
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

}  // namespace

void FrameBenchmarks::registerAll(const std::string& modulePath)
{
    gModulePath = modulePath;
    for (const Size& size : kSizes) {
        for (const Tools::PixelDepth depth : kDepths) {
            for (const int glitchType : kGlitchTypes) {
                const FrameCase frameCase{size.mWidth, size.mHeight, depth, glitchType};
                const std::string name = "Frame/" + GlitchName(glitchType) + "/" +
                                         std::to_string(size.mWidth) + "x" + std::to_string(size.mHeight) +
                                         "/" + DepthLabel(depth);
                benchmark::RegisterBenchmark(name.c_str(), RunFrameCase, frameCase)
                    ->UseManualTime()
                    ->Unit(benchmark::kMillisecond)
                    ->Iterations(TimedFrames(frameCase));
            }
        }
    }
}

std::optional<Tools::OpenGLReport> FrameBenchmarks::openGL()
{
    if (!gEffect) {
        return std::nullopt;
    }
    return gEffect->openGL();
}

void FrameBenchmarks::release()
{
    gEffect.reset();
}

}  // namespace Halvane::Quorvex::Benchmarks
