#include "RenderCommand.h"

#include "EffectHost.h"
#include "EffectSettings.h"
#include "FrameTimeline.h"
#include "InterruptWatcher.h"
#include "NumberText.h"
#include "ProgressReporter.h"
#include "RenderPipeline.h"
#include "SinkFactory.h"
#include "SourceFactory.h"
#include "ToolError.h"
#include "VideoEncoderChoice.h"

#include "Runtime/TimeSeed.h"

extern "C" {
#include <libavutil/mathematics.h>
}

#include <filesystem>
#include <iostream>
#include <optional>

namespace Halvane::Quorvex::Tools {

namespace {

std::optional<double> SecondsOption(const std::string& option, const std::string& text)
{
    if (text.empty()) {
        return std::nullopt;
    }
    double seconds = 0.0;
    if (!ParseDouble(text, seconds)) {
        throw ToolError::usage(option + ": '" + text + "' is not a number of seconds");
    }
    return seconds;
}

// A clip whose last frame lies beyond the host's 32-bit time is refused
// before the first frame, not when the render reaches it.
void CheckLastFrameTime(const FrameTimeline& timeline, std::size_t frameCount,
                        std::int64_t nominalStep, const std::string& timeOffset)
{
    try {
        timeline.timeOf(static_cast<std::int64_t>(frameCount - 1) * nominalStep);
    } catch (const ToolError&) {
        throw ToolError::usage("--time-offset: " + (timeOffset.empty() ? "0" : timeOffset) +
                               " s puts frame " + std::to_string(frameCount) +
                               " of the input beyond the time a host can state");
    }
}

Host::TimeSeed SeedOption(const std::string& text)
{
    long number = 0;
    if (!text.empty() &&
        (!ParseInteger(text, number) || number < 0 || number > Host::TimeSeed::kLargest)) {
        throw ToolError::usage("--seed: '" + text + "' is not a seed (a whole number from 0 to " +
                               std::to_string(Host::TimeSeed::kLargest) + ")");
    }
    return Host::TimeSeed(static_cast<int>(number));
}

}  // namespace

RenderCommand::RenderCommand(Options options) : mOptions(std::move(options))
{
}

int RenderCommand::run()
{
    // Before any thread starts, so that every thread leaves signals to it.
    InterruptWatcher interrupts;

    // What the user typed, checked before any file is touched.
    const EffectSettings settings = EffectSettings::parse(mOptions.glitch, mOptions.speed);
    const Host::TimeSeed seed = SeedOption(mOptions.seed);
    const std::optional<PixelDepth> chosenDepth = ParseDepthOption(mOptions.depth);
    const std::optional<double> time = SecondsOption("--time", mOptions.time);
    const std::optional<double> timeOffset = SecondsOption("--time-offset", mOptions.timeOffset);
    SourceFactory::Options sourceOptions;
    if (!mOptions.frames.empty()) {
        sourceOptions.frames = FrameRange::parse(mOptions.frames);
    }
    if (!mOptions.fps.empty()) {
        sourceOptions.rate = FrameRate::parse("--fps", mOptions.fps);
    }
    if (!mOptions.startFrame.empty()) {
        long number = 0;
        if (!ParseInteger(mOptions.startFrame, number) || number < 0) {
            throw ToolError::usage("--start-frame: '" + mOptions.startFrame +
                                   "' is not a frame number (a whole number from 0)");
        }
        sourceOptions.startFrame = number;
    }
    const bool sequenceInput = SourceFactory::namesImageSequence(mOptions.input);
    // Whether a still input's output is a picture or a video shows in its
    // name alone; a pattern in it is settled once the input is open.
    SinkFactory::Kind outputKind = SinkFactory::classify(mOptions.output, sequenceInput);
    std::optional<VideoEncoderChoice> encoder;
    if (outputKind == SinkFactory::Kind::Video) {
        encoder = VideoEncoderChoice::choose(mOptions.output, mOptions.codec);
    } else if (!mOptions.codec.empty()) {
        throw ToolError::usage("--codec: '" + mOptions.output +
                               "' is not a video; --codec applies to video outputs");
    }
    if (sourceOptions.startFrame && !sequenceInput) {
        throw ToolError::usage("--start-frame: '" + mOptions.input +
                               "' is not an image sequence (name one like frame.%04d.png)");
    }

    const std::unique_ptr<FrameSource> source = SourceFactory::open(mOptions.input, sourceOptions);
    const SourceInfo& info = source->info();
    const VideoReader* video = SourceFactory::videoReaderOf(*source);
    if (sourceOptions.frames && info.isStill) {
        throw ToolError::usage("--frames: '" + mOptions.input +
                               "' is a single picture, not an image sequence or a video");
    }
    if (video && sourceOptions.rate) {
        throw ToolError::usage("--fps: '" + mOptions.input + "' is a video and keeps its own rate");
    }
    if (!info.isStill && !sequenceInput) {
        outputKind = SinkFactory::classify(mOptions.output, true);
    }
    if (info.isStill && timeOffset) {
        throw ToolError::usage("--time-offset: '" + mOptions.input +
                               "' is a single picture; give its time with --time");
    }
    if (!info.isStill && time) {
        throw ToolError::usage("--time: '" + mOptions.input +
                               "' is a clip; shift its times with --time-offset");
    }
    if (outputKind == SinkFactory::Kind::Still && info.frameCount && *info.frameCount > 1) {
        throw ToolError::usage("'" + mOptions.output + "' is a single picture but '" +
                               mOptions.input + "' has " + std::to_string(*info.frameCount) +
                               " frames; name an image sequence (frame.%04d.png) or a video");
    }
    const std::int64_t nominalStep =
        info.isStill ? 1 : av_rescale_q(1, info.rate.frameDuration(), info.timeBase);
    const FrameTimeline timeline =
        info.isStill ? FrameTimeline::forStill(time.value_or(1.0))
                     : FrameTimeline::forClip(info.timeBase, nominalStep, timeOffset.value_or(0.0));
    if (!info.isStill && info.frameCount && *info.frameCount > 0) {
        CheckLastFrameTime(timeline, *info.frameCount, nominalStep, mOptions.timeOffset);
    }
    const PixelDepth depth = chosenDepth.value_or(info.depth);

    SinkFactory::Request request;
    request.kind = outputKind;
    request.depth = depth;
    request.halfFloat = !chosenDepth && info.halfFloat;
    request.firstNumber = info.firstNumber;
    request.copyFrom = video;
    request.notes = mOptions.quiet ? nullptr : &std::cerr;
    if (encoder) {
        encoder->fitTo(info.width, info.height, depth, info.hasAlpha);
        request.encoder = &*encoder;
    }
    const std::unique_ptr<FrameSink> sink = SinkFactory::open(mOptions.output, info, request);
    if (encoder && !encoder->note().empty() && !mOptions.quiet) {
        std::cerr << "quorvex: note: " << encoder->note() << "\n";
    }

    EffectHost effect(mOptions.modulePath, mOptions.verbose);
    effect.setUp();
    effect.apply(settings, seed);

    ProgressReporter progress(ProgressReporter::styleFor(mOptions.quiet),
                              std::filesystem::path(mOptions.output).filename().string(),
                              info.frameCount, std::cerr);
    RenderPipeline pipeline(*source, *sink, effect, depth, timeline, progress, interrupts);
    pipeline.run();
    if (const std::string summary = sink->summary(); !summary.empty() && !mOptions.quiet) {
        std::cerr << "quorvex: note: " << summary << "\n";
    }
    effect.setDown();
    return 0;
}

}  // namespace Halvane::Quorvex::Tools
