#include "HostCostBenchmarks.h"

#include "BenchmarkTable.h"
#include "ClipPicture.h"
#include "Media/SinkFactory.h"
#include "Media/SourceFactory.h"
#include "Media/Video/VideoEncoderChoice.h"
#include "Options/PixelDepth.h"
#include "Render/FrameConverter.h"

#include "Runtime/World.h"

#include <benchmark/benchmark.h>

extern "C" {
#include <libavutil/log.h>
}

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <variant>
#include <vector>

namespace Halvane::Quorvex::Benchmarks {

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
// Frames a decode or encode case handles per iteration: a second of a clip,
// enough for the video encoder's look-ahead to fill and drain as in a
// render.
constexpr std::size_t kClipFrames = 24;
constexpr int kConvertIterations = 30;
constexpr const char* kSequenceIn = "in.%04d.png";
constexpr const char* kSequenceOut = "out.%04d.png";
constexpr const char* kVideoIn = "in.mp4";
constexpr const char* kVideoOut = "out.mp4";

// The temporary folder with the inputs, and the clip's pictures.
struct Inputs {
    std::filesystem::path mFolder;
    std::vector<Tools::RgbaFrame> mFrames;
    Tools::SourceInfo mInfo;

    std::string path(const char* name) const { return (mFolder / name).string(); }
};

std::unique_ptr<Inputs> gInputs;

Tools::SourceInfo ClipInfo()
{
    Tools::SourceInfo info;
    info.name = "benchmark clip";
    info.width = kWidth;
    info.height = kHeight;
    info.depth = Tools::PixelDepth::Eight;
    info.hasAlpha = true;
    info.frameCount = kClipFrames;
    return info;
}

// Writes the clip through a sink of `kind` at `target`, as a render does.
void Encode(const Inputs& inputs, const std::string& target, Tools::SinkFactory::Kind kind)
{
    std::optional<Tools::VideoEncoderChoice> encoder;
    Tools::SinkFactory::Request request;
    request.kind = kind;
    request.depth = Tools::PixelDepth::Eight;
    if (kind == Tools::SinkFactory::Kind::Video) {
        encoder = Tools::VideoEncoderChoice::choose(target, "");
        encoder->fitTo(kWidth, kHeight, request.depth, inputs.mInfo.hasAlpha);
        request.encoder = &*encoder;
    }
    const std::unique_ptr<Tools::FrameSink> sink = Tools::SinkFactory::open(target, inputs.mInfo, request);
    for (std::size_t index = 0; index < inputs.mFrames.size(); ++index) {
        sink->write(Tools::SourceFrame{index, inputs.mFrames[index],
                                       static_cast<std::int64_t>(index), 1});
    }
    sink->finish();
}

// Reads every picture of `path`; returns how many.
std::size_t Decode(const std::string& path)
{
    Tools::SourceFactory::Options options;
    if (Tools::SourceFactory::namesImageSequence(path)) {
        options.rate = Tools::FrameRate(Tools::SourceFactory::kDefaultRate, 1);
    }
    const std::unique_ptr<Tools::FrameSource> source = Tools::SourceFactory::open(path, options);
    std::size_t pictures = 0;
    Tools::PipelineItem item;
    while (source->read(item)) {
        pictures += std::holds_alternative<Tools::SourceFrame>(item) ? 1 : 0;
    }
    return pictures;
}

const Inputs& TheInputs()
{
    if (gInputs) {
        return *gInputs;
    }
    auto inputs = std::make_unique<Inputs>();
    std::string folder = (std::filesystem::temp_directory_path() / "quorvex-bench-XXXXXX").string();
    if (!mkdtemp(folder.data())) {
        throw std::runtime_error("cannot make a temporary folder like '" + folder + "'");
    }
    inputs->mFolder = folder;
    inputs->mInfo = ClipInfo();
    for (std::size_t index = 0; index < kClipFrames; ++index) {
        inputs->mFrames.push_back(ClipPicture::frameAt(index, kWidth, kHeight));
    }
    gInputs = std::move(inputs);
    Encode(*gInputs, gInputs->path(kSequenceIn), Tools::SinkFactory::Kind::Sequence);
    Encode(*gInputs, gInputs->path(kVideoIn), Tools::SinkFactory::Kind::Video);
    return *gInputs;
}

void CountFrames(benchmark::State& state, std::size_t frames)
{
    state.counters[BenchmarkTable::kFramesCounter] = static_cast<double>(frames);
    state.counters[BenchmarkTable::kPixelsCounter] = static_cast<double>(kWidth) * kHeight;
}

void RunDecode(benchmark::State& state, const char* input)
{
    try {
        const std::string path = TheInputs().path(input);
        std::size_t pictures = 0;
        for (auto _ : state) {
            pictures = Decode(path);
        }
        if (pictures != kClipFrames) {
            state.SkipWithError(("read " + std::to_string(pictures) + " pictures of " +
                                 std::to_string(kClipFrames) + " from " + path).c_str());
            return;
        }
        CountFrames(state, kClipFrames);
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

void RunEncode(benchmark::State& state, const char* output, Tools::SinkFactory::Kind kind)
{
    try {
        const Inputs& inputs = TheInputs();
        for (auto _ : state) {
            Encode(inputs, inputs.path(output), kind);
        }
        CountFrames(state, kClipFrames);
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

// What the host does around each effect frame: the file's picture into the
// input world at the render's depth, the output world cleared, and the
// output world back into a picture.
void RunConvert(benchmark::State& state, Tools::PixelDepth depth)
{
    try {
        const Tools::RgbaFrame picture = ClipPicture::frameAt(0, kWidth, kHeight);
        const PF_PixelFormat format = Tools::PixelFormatOf(depth);
        Host::World input(kWidth, kHeight, format);
        Host::World output(kWidth, kHeight, format);
        for (auto _ : state) {
            Tools::FrameConverter::toWorld(picture, input);
            for (A_long y = 0; y < output.height(); ++y) {
                std::fill_n(output.row(y), static_cast<std::size_t>(output.width()) * output.pixelSize(), 0);
            }
            benchmark::DoNotOptimize(Tools::FrameConverter::fromWorld(output));
        }
        CountFrames(state, 1);
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

}  // namespace

void HostCostBenchmarks::registerAll()
{
    // The encoder's statistics at the end of each clip would bury the
    // progress lines; errors still show.
    av_log_set_level(AV_LOG_ERROR);
    const std::string size = "/" + std::to_string(kWidth) + "x" + std::to_string(kHeight);
    const auto add = [](const std::string& name, auto function, int iterations, auto... arguments) {
        benchmark::RegisterBenchmark(name.c_str(), function, arguments...)
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond)
            ->Iterations(iterations);
    };
    add("Host/PNGSequence" + size + "/decode", RunDecode, 1, kSequenceIn);
    add("Host/PNGSequence" + size + "/encode", RunEncode, 1, kSequenceOut, Tools::SinkFactory::Kind::Sequence);
    add("Host/H264" + size + "/decode", RunDecode, 1, kVideoIn);
    add("Host/H264" + size + "/encode", RunEncode, 1, kVideoOut, Tools::SinkFactory::Kind::Video);
    add("Host/Convert" + size + "/8bit", RunConvert, kConvertIterations, Tools::PixelDepth::Eight);
    add("Host/Convert" + size + "/16bit", RunConvert, kConvertIterations, Tools::PixelDepth::Sixteen);
    add("Host/Convert" + size + "/32bit", RunConvert, kConvertIterations, Tools::PixelDepth::Float);
}

void HostCostBenchmarks::release()
{
    if (gInputs) {
        std::error_code ignored;
        std::filesystem::remove_all(gInputs->mFolder, ignored);
        gInputs.reset();
    }
}

}  // namespace Halvane::Quorvex::Benchmarks
