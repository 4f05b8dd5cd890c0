#include "Commands/RenderCommand.h"

#include "Media/Files/SameFileGuard.h"
#include "Media/SinkFactory.h"
#include "Media/SourceFactory.h"
#include "Media/Video/VideoEncoderChoice.h"
#include "Options/EffectSettings.h"
#include "Options/ImageSequencePattern.h"
#include "Options/NumberText.h"
#include "Options/ToolError.h"
#include "Render/EffectHost.h"
#include "Render/FrameTimeline.h"
#include "Render/InterruptWatcher.h"
#include "Render/ProgressReporter.h"
#include "Render/RenderPipeline.h"

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

bool Reaches(const FrameTimeline& timeline, std::size_t frameCount, std::int64_t nominalStep)
{
    try {
        timeline.timeOf(static_cast<std::int64_t>(frameCount - 1) * nominalStep);
        return true;
    } catch (const ToolError&) {
        return false;
    }
}

void RefuseOutputThatIsAnInput(const std::string& input, bool sequenceInput,
                               const SourceInfo& info, const std::string& output,
                               bool sequenceOutput)
{
    SameFileGuard guard;
    if (sequenceInput) {
        guard.addInputs(ImageSequencePattern(input), info.firstNumber, info.frameCount.value_or(0));
    } else {
        guard.addInput(input);
    }
    if (sequenceOutput) {
        guard.checkOutputs(ImageSequencePattern(output));
    } else {
        guard.checkOutput(output);
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

// A clip whose last frame lies beyond the host's 32-bit time is refused
// before the first frame, not when the render reaches it, naming the option
// that put it there: the frames alone, or the offset added to them.
void CheckLastFrameTime(const FrameTimeline& timeline, const SourceInfo& info,
                        std::int64_t nominalStep, const RenderCommand::Options& options)
{
    const std::size_t frameCount = *info.frameCount;
    if (Reaches(timeline, frameCount, nominalStep)) {
        return;
    }
    const std::string beyond = " beyond the time a host can state";
    if (options.timeOffset.empty() ||
        !Reaches(FrameTimeline::forClip(info.timeBase, nominalStep, 0.0), frameCount,
                 nominalStep)) {
        if (!options.frames.empty()) {
            throw ToolError::usage("--frames: " + options.frames + " reaches" + beyond);
        }
        throw ToolError::runtime("'" + options.input + "' has " + std::to_string(frameCount) +
                                 " frames, more than reach within the time a host can state");
    }
    throw ToolError::usage("--time-offset: " + options.timeOffset + " s puts frame " +
                           std::to_string(frameCount) + " of the input" + beyond);
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
        throw ToolError::usage("--fps does not apply to video input: '" + mOptions.input +
                               "' keeps its own rate (" + info.rate.text() + " fps)");
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
        CheckLastFrameTime(timeline, info, nominalStep, mOptions);
    }
    const PixelDepth depth = chosenDepth.value_or(info.depth);
    RefuseOutputThatIsAnInput(mOptions.input, sequenceInput, info, mOptions.output,
                              outputKind == SinkFactory::Kind::Sequence);

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
    if (!mOptions.quiet) {
        if (encoder && !encoder->note().empty()) {
            std::cerr << "quorvex: note: " << encoder->note() << "\n";
        }
        for (const std::string& note : info.notes) {
            std::cerr << "quorvex: note: " << note << "\n";
        }
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
